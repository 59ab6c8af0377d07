#include "spec/SpecGraphModel.h"

#include <cstdio>
#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "util/BusyIndicator.h"
#include "util/RecordingReporter.h"
#include "util/TempDir.h"

namespace {

std::string written(const SpecGraphModel& graph) {
  char* buf = nullptr;
  size_t len = 0;
  std::FILE* fp = open_memstream(&buf, &len);
  graph.writeAll(fp);
  std::fclose(fp);
  std::string text(buf, len);
  std::free(buf);
  return text;
}

template <typename Write>
std::string capture(Write write) {
  char* buf = nullptr;
  size_t len = 0;
  std::FILE* fp = open_memstream(&buf, &len);
  write(fp);
  std::fclose(fp);
  std::string text(buf, len);
  std::free(buf);
  return text;
}

std::vector<std::string> tags(const SpecGraphModel& graph) {
  std::vector<std::string> out;
  for (SpecNode* n : graph.nodes()) out.push_back(n->getTag());
  return out;
}

std::vector<std::string> items(const StringSet& set) {
  std::vector<std::string> out;
  for (int i = 0; i < set.count(); ++i) out.push_back(set[i]);
  return out;
}

// Records what a view would hear, one line per notification.
class LogObserver : public SpecGraphObserver {
 public:
  std::vector<std::string> events;
  void nodeAttached(SpecNode* n) override { events.push_back("attach " + n->getTag()); }
  void nodeRemoving(SpecNode* n) override { events.push_back("remove " + n->getTag()); }
  void selectionChanged(SpecNode* n) override {
    events.push_back("select " + (n ? n->getTag() : std::string("-")));
  }
  void tagAdded(const std::string& tag) override { events.push_back("tag " + tag); }
};

// Adds the busy state to the observer's log, so that its order among the
// notifications shows.
class LogBusy : public BusyIndicator {
 public:
  explicit LogBusy(LogObserver& log) : _log(log) {}
  void busy(const std::string&) override { _log.events.push_back("busy"); }
  void notBusy() override { _log.events.push_back("idle"); }

 private:
  LogObserver& _log;
};

class SpecGraphModelTest : public ::testing::Test {
 protected:
  RecordingReporter reporter;
  SpecGraphModel graph{&reporter};

  SpecNode* product(const std::string& name) {
    return graph.addRoot(graph.add(name));
  }
  SpecNode* child(SpecNode* parent, const std::string& name) {
    return graph.addChild(parent, graph.add(name));
  }
};

TEST_F(SpecGraphModelTest, NodeDefaults) {
  SpecNode plain;
  SpecNode named("7", "base");
  struct Case {
    const SpecNode* node;
    const char* identity;
    const char* name;
  } cases[] = {{&plain, "", "Name"}, {&named, "7", "base"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(c.identity, c.node->identity());
    EXPECT_EQ(c.name, c.node->name());
    EXPECT_EQ(c.name, c.node->label());
    EXPECT_EQ("\"Description\"", c.node->id());
    EXPECT_EQ("1", c.node->version());
    EXPECT_EQ(9999, c.node->order());
    EXPECT_FALSE(c.node->required() || c.node->isDefault() || c.node->miniroot() ||
                 c.node->patch());
    EXPECT_EQ("", c.node->rules());
    EXPECT_EQ("", c.node->mapping());
    EXPECT_EQ(nullptr, c.node->parent());
    EXPECT_EQ(1, c.node->level());
  }
}

TEST_F(SpecGraphModelTest, DefaultHierarchy) {
  graph.setChanged(true);
  graph.defaultGraph();
  struct Row {
    const char* tag;
    const char* id;
    const char* rules;
    const char* mapping;
    int level;
  } rows[] = {
      {"my_product", "\"My Product Description\"", "", "", 1},
      {"my_product.sw", "\"Software\"", "", "", 2},
      {"my_product.sw.base", "\"Base Software\"", "replaces self", "my_product.sw.base", 3},
      {"my_product.sw.optional", "\"Optional Software\"", "replaces self",
       "my_product.sw.optional", 3},
      {"my_product.man", "\"Man Pages\"", "", "", 2},
      {"my_product.man.manpages", "\"Man Pages\"", "replaces self", "my_product.man.manpages", 3},
      {"my_product.man.relnotes", "\"Release Notes\"", "replaces self", "my_product.man.relnotes",
       3},
      {"my_product.books", "\"Books\"", "", "", 2},
      {"my_product.books.userguide", "\"User Guide\"", "replaces self",
       "my_product.books.userguide", 3},
  };
  std::vector<SpecNode*> nodes = graph.nodes();
  ASSERT_EQ(9u, nodes.size());
  for (size_t i = 0; i < nodes.size(); ++i) {
    SCOPED_TRACE(rows[i].tag);
    EXPECT_EQ(rows[i].tag, nodes[i]->getTag());
    EXPECT_EQ(rows[i].id, nodes[i]->id());
    EXPECT_EQ(rows[i].rules, nodes[i]->rules());
    EXPECT_EQ(rows[i].mapping, nodes[i]->mapping());
    EXPECT_EQ(rows[i].level, graph.getLevel(nodes[i]));
    EXPECT_EQ("1", nodes[i]->version());
    EXPECT_EQ(9999, nodes[i]->order());
  }
  // Identities follow creation order: the product, the three images, then
  // the five subsystems.
  EXPECT_EQ("1", nodes[0]->identity());
  EXPECT_EQ("4", nodes[7]->identity());
  EXPECT_EQ("5", nodes[2]->identity());
  EXPECT_EQ("9", nodes[8]->identity());
  EXPECT_EQ(9, graph.nodeCounter());
  EXPECT_EQ(nodes[0], graph.selected());
  EXPECT_FALSE(graph.changed());
  EXPECT_TRUE(graph.abandonChanges());
  EXPECT_TRUE(reporter.events().empty());
}

TEST_F(SpecGraphModelTest, QueriesOnTheHierarchy) {
  EXPECT_EQ("", graph.getProductName());
  EXPECT_FALSE(graph.subsystemExists());
  EXPECT_EQ(0, graph.getTags()->count());
  SpecNode* p = product("p");
  SpecNode* a = child(p, "a");
  EXPECT_FALSE(graph.subsystemExists());
  SpecNode* s = child(a, "s");
  SpecNode* q = product("q");
  child(child(q, "b"), "t");
  child(a, "u");  // added later under an earlier image

  EXPECT_EQ("p", graph.getProductName());
  EXPECT_TRUE(graph.subsystemExists());
  EXPECT_EQ("p", p->getTag());
  EXPECT_EQ("p.a.s", s->getTag());
  EXPECT_EQ((std::vector<std::string>{"p.a.s", "p.a.u", "q.b.t"}), items(*graph.getTags()));
  EXPECT_EQ("Tags in Spec Graph", graph.getTags()->name());
  EXPECT_EQ(s, graph.getNode("p.a.s"));
  EXPECT_EQ(nullptr, graph.getNode("p.a.x"));
  EXPECT_EQ(nullptr, graph.getNode(""));
  EXPECT_TRUE(graph.productExists("q"));
  EXPECT_FALSE(graph.productExists("b"));
  EXPECT_EQ(a, graph.findIdentity(a->identity()));
}

TEST_F(SpecGraphModelTest, GetNodeFollowsEditsAndTraversalOrder) {
  SpecNode* first = product("p");
  SpecNode* second = product("p");
  SpecNode* late = child(second, "i");
  EXPECT_EQ(first, graph.getNode("p"));
  EXPECT_EQ(late, graph.getNode("p.i"));
  // The same tag under the earlier product now comes first.
  SpecNode* early = child(first, "i");
  EXPECT_EQ(early, graph.getNode("p.i"));

  early->setName("j");
  EXPECT_EQ(early, graph.getNode("p.j"));
  EXPECT_EQ(late, graph.getNode("p.i"));
  first->setName("r");
  EXPECT_EQ(early, graph.getNode("r.j"));
  EXPECT_EQ(nullptr, graph.getNode("p.j"));

  graph.remove(late);
  EXPECT_EQ(nullptr, graph.getNode("p.i"));
  EXPECT_EQ(nullptr, graph.findIdentity("3"));
}

TEST_F(SpecGraphModelTest, ImageOrdering) {
  struct Case {
    int order;
    const char* entry;
  } cases[] = {{5, "0005 p.a"}, {10, "0010 p.b"}, {12345, "12345 p.c"}, {0, "0000 p.d"}};
  SpecNode* p = product("p");
  std::vector<SpecNode*> images;
  for (const Case& c : cases) {
    SpecNode* image = child(p, std::string(c.entry).substr(c.entry[4] == ' ' ? 7 : 8));
    image->setOrder(c.order);
    images.push_back(image);
  }
  SpecNode* other = child(product("q"), "z");
  other->setOrder(1);
  for (size_t i = 0; i < images.size(); ++i) {
    std::string out = "untouched";
    auto set = graph.getOrdering(images[i], &out);
    EXPECT_EQ(cases[i].entry, out);
    EXPECT_EQ("Image ordering", set->name());
    // Sorted as strings: the five-digit order sorts before 2.
    EXPECT_EQ((std::vector<std::string>{"0000 p.d", "0001 q.z", "0005 p.a", "0010 p.b",
                                        "12345 p.c"}),
              items(*set));
  }
  std::string out = "untouched";
  graph.getOrdering(p, &out);
  EXPECT_EQ("untouched", out);
}

TEST_F(SpecGraphModelTest, RemoveAndDeleteProduct) {
  LogObserver log;
  graph.setObserver(&log);
  SpecNode* p = product("p");
  SpecNode* i = child(p, "i");
  child(i, "s");
  child(p, "j");
  product("p");
  product("keep");
  graph.select(i);
  log.events.clear();

  graph.deleteProduct("p");
  EXPECT_TRUE(graph.changed());
  EXPECT_EQ((std::vector<std::string>{"keep"}), tags(graph));
  EXPECT_EQ(nullptr, graph.selected());
  // The later duplicate goes first (removal runs backwards), children
  // before their parents, the selection cleared before its node goes.
  EXPECT_EQ((std::vector<std::string>{"remove p", "remove p.i.s", "select -", "remove p.i",
                                      "remove p.j", "remove p"}),
            log.events);
  graph.setObserver(nullptr);
}

TEST_F(SpecGraphModelTest, AddUnderSelection) {
  LogObserver log;
  LogBusy busy(log);
  graph.setObserver(&log);
  graph.setBusyIndicator(&busy);
  SpecNode* p = graph.addUnderSelection();
  EXPECT_EQ("my_product", p->name());
  EXPECT_EQ("\"My Product\"", p->id());
  EXPECT_TRUE(graph.changed());
  p->setPatch(true);
  SpecNode* image = graph.addUnderSelection();
  EXPECT_EQ("my_product.my_image", image->getTag());
  EXPECT_EQ("\"My Image\"", image->id());
  EXPECT_TRUE(image->patch());
  SpecNode* subsys = graph.addUnderSelection();
  EXPECT_EQ("\"My Subsystem\"", subsys->id());
  EXPECT_EQ("replaces self", subsys->rules());
  EXPECT_EQ("my_product.my_image.my_subsys", subsys->mapping());
  EXPECT_TRUE(subsys->patch());
  EXPECT_EQ(subsys, graph.selected());
  // Nothing goes under a subsystem.
  reporter.clear();
  EXPECT_EQ(nullptr, graph.addUnderSelection());
  EXPECT_EQ((std::vector<std::string>{""}), reporter.texts("bell"));
  EXPECT_EQ(3u, graph.nodes().size());
  // A second product of the same name is allowed and does not inherit.
  graph.select(nullptr);
  SpecNode* again = graph.addUnderSelection();
  EXPECT_EQ("my_product", again->name());
  EXPECT_FALSE(again->patch());
  EXPECT_NE(p, again);
  std::vector<std::string> expected = {"busy", "attach my_product", "select my_product", "idle"};
  EXPECT_EQ(expected, std::vector<std::string>(log.events.begin(), log.events.begin() + 4));
  EXPECT_NE(log.events.end(),
            std::find(log.events.begin(), log.events.end(), "tag my_product.my_image.my_subsys"));
  graph.setObserver(nullptr);
  graph.setBusyIndicator(nullptr);
}

TEST_F(SpecGraphModelTest, DeleteSelection) {
  graph.defaultGraph();
  EXPECT_FALSE(graph.changed());
  SpecNode* sw = graph.getNode("my_product.sw");
  graph.select(sw);
  EXPECT_TRUE(graph.deleteSelection());
  EXPECT_TRUE(graph.changed());
  EXPECT_EQ(graph.getNode("my_product"), graph.selected());
  EXPECT_EQ(nullptr, graph.getNode("my_product.sw.base"));
  EXPECT_TRUE(graph.deleteSelection());
  EXPECT_EQ(nullptr, graph.selected());
  EXPECT_EQ(0, graph.rootCount());
  EXPECT_FALSE(graph.deleteSelection());
}

TEST_F(SpecGraphModelTest, AbandonChangesAsks) {
  graph.setChanged(true);
  reporter.answer(false);
  EXPECT_FALSE(graph.abandonChanges());
  graph.setSpecFileName("p.spec");
  reporter.answer(true);
  EXPECT_TRUE(graph.abandonChanges());
  EXPECT_EQ((std::vector<std::string>{
                "There have been changes since you last saved.\nAbandon changes to spec file?\n",
                "There have been changes since you last saved.\nAbandon changes to spec file "
                "'p.spec'?\n"}),
            reporter.texts("question"));
}

TEST_F(SpecGraphModelTest, CreatePatchSubsystem) {
  graph.defaultGraph();
  graph.setSpecFileName("old.spec");
  int before = graph.nodeCounter();

  std::string tag = graph.createPatchSubsystem("p_patch1", "my_product.sw.base");
  EXPECT_EQ("p_patch1.my_product_sw.base", tag);
  EXPECT_EQ(before + 3, graph.nodeCounter());
  EXPECT_EQ("", graph.specFileName());
  EXPECT_TRUE(graph.changed());
  EXPECT_EQ((std::vector<std::string>{"Created patch product 'p_patch1'."}),
            reporter.texts("log"));
  SpecNode* product = graph.getNode("p_patch1");
  SpecNode* image = graph.getNode("p_patch1.my_product_sw");
  SpecNode* subsys = graph.getNode(tag);
  ASSERT_TRUE(product && image && subsys);
  EXPECT_EQ("\"My Patch Product\"", product->id());
  EXPECT_EQ("\"My Patch Image\"", image->id());
  EXPECT_EQ("\"My Patch Subsystem\"", subsys->id());
  EXPECT_TRUE(product->patch() && image->patch() && subsys->patch());
  EXPECT_EQ("follows my_product.sw.base 1 1", subsys->rules());
  EXPECT_EQ(tag, subsys->mapping());
  EXPECT_EQ(subsys, graph.selected());

  // The same source again: nothing new.
  EXPECT_EQ(tag, graph.createPatchSubsystem("p_patch1", "my_product.sw.base"));
  EXPECT_EQ(before + 3, graph.nodeCounter());
  // Another subsystem of the same image reuses the patch image.
  graph.getNode("my_product.sw")->setVersion("7");
  EXPECT_EQ("p_patch1.my_product_sw.optional",
            graph.createPatchSubsystem("p_patch1", "my_product.sw.optional"));
  EXPECT_EQ(before + 4, graph.nodeCounter());
  EXPECT_EQ("follows my_product.sw.optional 7 7",
            graph.getNode("p_patch1.my_product_sw.optional")->rules());
  EXPECT_EQ(2, image->childCount());
  EXPECT_EQ(1u, reporter.texts("log").size());
}

TEST_F(SpecGraphModelTest, CreatePatchSubsystemSourceForms) {
  struct Case {
    const char* source;
    const char* result;
    const char* rules;
  } cases[] = {
      {"gone.img.sub", "pp.gone_img.sub", "follows gone.img.sub 0 maxint"},
      {"gone.img.a.b", "pp.gone_img.a.b", "follows gone.img.a.b 0 maxint"},
      {"lone", "pp.lone_.", "follows lone.. 0 maxint"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.source);
    std::string tag = graph.createPatchSubsystem("pp", c.source);
    EXPECT_EQ(c.result, tag);
    SpecNode* node = graph.getNode(tag);
    ASSERT_NE(nullptr, node);
    EXPECT_EQ(c.rules, node->rules());
    EXPECT_EQ(3, node->level());
  }
  EXPECT_EQ(1, graph.rootCount());
}

TEST_F(SpecGraphModelTest, PatchImageGoesUnderAnExistingPatchProduct) {
  SpecNode* other = product("other");
  SpecNode* patch = product("pp");
  patch->setPatch(true);
  product("later");
  std::string tag = graph.createPatchSubsystem("pp", "x.y.z");
  SpecNode* image = graph.getNode("pp.x_y");
  ASSERT_NE(nullptr, image);
  EXPECT_EQ(patch, image->parent());
  EXPECT_EQ(0, other->childCount());
  EXPECT_TRUE(reporter.texts("log").empty());
  EXPECT_EQ("pp.x_y.z", tag);
}

TEST(SpecWriterTest, MultiLineTexts) {
  struct Case {
    const char* text;
    const char* rules;
    const char* exp;
  } cases[] = {
      {"", "", ""},
      {"replaces self", "            replaces self\n", "            exp replaces self\n"},
      {"a\n\n\nb\n", "            a\n            b\n", "            exp a\n                b\n"},
      {"\n\nx", "            x\n", "            exp x\n"},
      {"prereq (\n    a 0 oldvers\n)", "            prereq (\n                a 0 oldvers\n"
                                       "            )\n",
       "            exp prereq (\n                    a 0 oldvers\n                )\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(c.rules, capture([&](std::FILE* fp) { SpecGraphModel::saveRules(fp, c.text); }));
    EXPECT_EQ(c.exp, capture([&](std::FILE* fp) { SpecGraphModel::saveExp(fp, c.text); }));
  }
  StringSet set("s");
  set.add("a");
  set.add("b");
  EXPECT_EQ("            <a>\n            <b>\n",
            capture([&](std::FILE* fp) { SpecGraphModel::saveSet(fp, set, "<", ">"); }));
}

TEST_F(SpecGraphModelTest, WriterLayout) {
  SpecNode* p = product("p");
  p->setId("\"P\"");
  SpecNode* i = child(p, "i");
  i->setVersion("3");
  i->setOrder(-5);
  SpecNode* s = child(i, "s");
  s->setPatch(true);
  s->setMiniroot(true);
  s->setRequired(true);
  s->setDefault(true);
  s->setMapping("m1\nm2");
  child(i, "t");
  EXPECT_EQ(
      "product p\n"
      "    id \"P\"\n"
      "    image i\n"
      "        id \"Description\"\n"
      "        version 3\n"
      "        order -5\n"
      "        subsys s required default miniroot patch\n"
      "            id \"Description\"\n"
      "            exp m1\n"
      "                m2\n"
      "        endsubsys\n"
      "        subsys t\n"
      "            id \"Description\"\n"
      "        endsubsys\n"
      "    endimage\n"
      "endproduct\n",
      written(graph));
}

TEST_F(SpecGraphModelTest, SaveWritesAndReports) {
  TempDir dir;
  graph.defaultGraph();
  std::string path = dir.file("p.spec");
  ASSERT_TRUE(graph.save(path.c_str()).ok());
  EXPECT_EQ(written(graph), dir.read("p.spec"));
  EXPECT_EQ(path, graph.specFileName());
  EXPECT_FALSE(graph.changed());
  EXPECT_EQ((std::vector<std::string>{"Saved spec '" + path + "'."}), reporter.texts("log"));

  // A null path saves to the stored name again.
  graph.getNode("my_product")->setId("\"New\"");
  graph.setChanged(true);
  ASSERT_TRUE(graph.save(nullptr).ok());
  EXPECT_NE(std::string::npos, dir.read("p.spec").find("id \"New\""));
}

TEST_F(SpecGraphModelTest, SaveRefusals) {
  TempDir dir;
  dir.mkdir("dist");
  dir.mkdir("adir");
  graph.defaultGraph();
  graph.setChanged(true);
  graph.setDistDirSource([&] { return dir.file("dist"); });
  struct Case {
    std::string path;
    const char* kind;
    std::string text;
  } cases[] = {
      {dir.file("dist/other.spec"), "error",
       "Save target directory matches Distribution Directory.\nThe build operation creates a "
       "binary version of the idb file in\nthe distribution directory.  Pick another directory "
       "to save your\nascii files into."},
      {dir.file("adir"), "warning", "'" + dir.file("adir") + "' is not a regular file.\nTry again."},
      {dir.file("missing/p.spec"), "log",
       "Couldn't open spec '" + dir.file("missing/p.spec") + "' (No such file or directory)."},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.path);
    reporter.clear();
    Outcome saved = graph.save(c.path.c_str());
    EXPECT_FALSE(saved.ok());
    EXPECT_EQ((std::vector<std::string>{c.text}), reporter.texts(c.kind));
    EXPECT_EQ(c.text, saved.message());  // what the user was shown
    EXPECT_TRUE(graph.changed());
    EXPECT_EQ("", graph.specFileName());
  }
  EXPECT_EQ("<missing>", dir.read("dist/other.spec"));
  EXPECT_EQ(1u, reporter.texts("show").size());
}

TEST_F(SpecGraphModelTest, SaveAsksForAName) {
  TempDir dir;
  graph.defaultGraph();
  EXPECT_FALSE(graph.save(nullptr).ok());  // no one to ask

  std::vector<std::string> asked;
  bool accept = false;
  graph.setFileChooser([&](const std::string& title, const std::string& filter,
                           const std::string& proposed, std::string* chosen) {
    asked = {title, filter, proposed};
    *chosen = dir.file("chosen.spec");
    return accept;
  });
  EXPECT_FALSE(graph.save(nullptr).ok());
  EXPECT_EQ((std::vector<std::string>{"Save Spec", "*spec", "my_product.spec"}), asked);
  EXPECT_EQ("<missing>", dir.read("chosen.spec"));
  accept = true;
  EXPECT_TRUE(graph.save(nullptr).ok());
  EXPECT_EQ(dir.file("chosen.spec"), graph.specFileName());
  EXPECT_EQ(written(graph), dir.read("chosen.spec"));
}

}  // namespace

namespace {

TEST(SpecWriterDeathTest, NodeBelowASubsystemIsAProgrammingError) {
  RecordingReporter reporter;
  SpecGraphModel graph(&reporter);
  SpecNode* s = graph.addChild(graph.addChild(graph.addRoot(graph.add("p")), graph.add("i")),
                               graph.add("s"));
  SpecNode* deep = graph.addChild(s, graph.add("x"));
  EXPECT_EQ(4, graph.getLevel(deep));
  EXPECT_DEATH(graph.saveTree(stderr, deep),
               "SpecGraph.c\\+\\+: assertion failed: \\(level >= 1\\) && \\(level <= 3\\)");
}

}  // namespace
