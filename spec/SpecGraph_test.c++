// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include "spec/HierarchyTestBench.h"

namespace {

using SpecGraphTest = HierarchyTestBench;

TEST_F(SpecGraphTest, DefaultHierarchyIsMirroredAsButtons) {
  EXPECT_EQ(9, graph->graph().nodeCount());
  const char* tagsInOrder[] = {"my_product", "my_product.sw", "my_product.man",
                               "my_product.books", "my_product.sw.base",
                               "my_product.sw.optional", "my_product.man.manpages",
                               "my_product.man.relnotes", "my_product.books.userguide"};
  for (const char* tag : tagsInOrder) {
    Widget w = widget(tag);
    ASSERT_NE(nullptr, w) << tag;
    EXPECT_EQ(model().getNode(tag), graph->nodeOf(w)) << tag;
    YrNode* n = graph->graph().find(model().getNode(tag)->identity());
    EXPECT_EQ(model().getNode(tag)->name(), n->label()) << tag;
  }
  EXPECT_EQ("my_product", selectedTag());
  EXPECT_FALSE(model().changed());
  EXPECT_EQ("Spec File:  ", graph->specFileLabel());
  // The tags panel learnt the five subsystems.
  EXPECT_EQ((std::vector<std::string>(tagsInOrder + 4, tagsInOrder + 9)), tags->items());
}

TEST_F(SpecGraphTest, SelectionDrivesButtonsDetailAndTags) {
  struct Case {
    const char* tag;  // nullptr: a click on the background
    bool addSensitive, deleteSensitive;
    const char* form;
    const char* currentTag;  // the tags panel's selection
  } cases[] = {
      {"my_product.sw.optional", false, true, "subsysForm", "my_product.sw.optional"},
      {"my_product.man", true, true, "imageForm", "my_product.sw.optional"},
      {"my_product", true, true, "productForm", "my_product.sw.optional"},
      {"my_product.books.userguide", false, true, "subsysForm", "my_product.books.userguide"},
      {nullptr, true, false, "noneForm", "my_product.books.userguide"},
  };
  for (const Case& c : cases) {
    const char* what = c.tag ? c.tag : "(background)";
    if (c.tag)
      click(c.tag);
    else
      clickBackground();
    EXPECT_EQ(c.tag ? c.tag : "", selectedTag()) << what;
    EXPECT_EQ(c.addSensitive, XtIsSensitive(graph->addButton())) << what;
    EXPECT_EQ(c.deleteSensitive, XtIsSensitive(graph->deleteButton())) << what;
    EXPECT_STREQ(c.form, XtName(detail->shownForm())) << what;
    EXPECT_EQ(c.tag ? model().getNode(c.tag) : nullptr, detail->current()) << what;
    EXPECT_EQ(c.currentTag, tags->getCurrent()) << what;
  }
}

TEST_F(SpecGraphTest, AddFollowsTheSelectedLevel) {
  struct Case {
    const char* select;  // nullptr: nothing selected
    const char* addedTag;  // nullptr: nothing added
    const char* id;
  } cases[] = {
      {nullptr, "my_product", "\"My Product\""},
      {"my_product.sw", "my_product.sw.my_subsys", "\"My Subsystem\""},
      {"my_product", "my_product.my_image", "\"My Image\""},
      {"my_product.sw.base", nullptr, nullptr},
  };
  for (const Case& c : cases) {
    const char* what = c.select ? c.select : "(nothing)";
    if (c.select)
      click(c.select);
    else
      clickBackground();
    int before = graph->graph().nodeCount();
    int products = model().rootCount();
    reporter.clear();
    model().setChanged(false);
    press(graph->addButton());
    if (!c.addedTag) {
      EXPECT_EQ(before, graph->graph().nodeCount()) << what;
      EXPECT_EQ(std::vector<std::string>{""}, reporter.texts("bell")) << what;
      EXPECT_FALSE(model().changed()) << what;
      continue;
    }
    EXPECT_EQ(before + 1, graph->graph().nodeCount()) << what;
    EXPECT_TRUE(model().changed()) << what;
    SpecNode* added = static_cast<SpecNode*>(graph->graph().selectedUserData());
    ASSERT_NE(nullptr, added) << what;
    // A second product of the same name may exist: compare the last one.
    if (!c.select) {
      EXPECT_EQ(products + 1, model().rootCount());
      EXPECT_EQ(model().root(model().rootCount() - 1), added);
    } else {
      EXPECT_EQ(c.addedTag, added->getTag()) << what;
      EXPECT_EQ(added, added->parent()->child(added->parent()->childCount() - 1)) << what;
    }
    EXPECT_EQ(c.id, added->id()) << what;
    EXPECT_EQ(added, detail->current()) << what;
    if (added->level() == 3) {
      EXPECT_EQ(c.addedTag, added->mapping());
      EXPECT_EQ("replaces self", added->rules());
      EXPECT_EQ(c.addedTag, tags->items().back());
      EXPECT_EQ(c.addedTag, tags->getCurrent());
      EXPECT_FALSE(XtIsSensitive(graph->addButton()));
    }
  }
}

TEST_F(SpecGraphTest, SubsystemsOfAPatchImageArePatchSubsystems) {
  model().getNode("my_product.sw")->setPatch(true);
  click("my_product.sw");
  press(graph->addButton());
  EXPECT_TRUE(model().getNode("my_product.sw.my_subsys")->patch());
  click("my_product.man");
  press(graph->addButton());
  EXPECT_FALSE(model().getNode("my_product.man.my_subsys")->patch());
}

TEST_F(SpecGraphTest, DeleteSelectsTheParentOrClearsEverything) {
  fileList->clear();
  click("my_product.sw");
  press(graph->deleteButton());
  EXPECT_EQ(nullptr, model().getNode("my_product.sw.base"));
  EXPECT_EQ(6, graph->graph().nodeCount());
  EXPECT_EQ("my_product", selectedTag());
  EXPECT_STREQ("productForm", XtName(detail->shownForm()));
  EXPECT_TRUE(model().changed());
  EXPECT_EQ((std::vector<std::string>{"my_product.man.manpages", "my_product.man.relnotes",
                                      "my_product.books.userguide"}),
            tags->items());

  press(graph->deleteButton());
  EXPECT_EQ(0, graph->graph().nodeCount());
  EXPECT_EQ("", selectedTag());
  EXPECT_EQ(nullptr, detail->current());
  EXPECT_STREQ("noneForm", XtName(detail->shownForm()));
  EXPECT_FALSE(XtIsSensitive(graph->deleteButton()));
  EXPECT_TRUE(tags->items().empty());
  // Nothing selected: Delete does nothing.
  press(graph->deleteButton());
  EXPECT_EQ(0, model().rootCount());
}

TEST_F(SpecGraphTest, AProductNameOfAMegabyteIsKeptWholeAndShownCut) {
  // As the detail panel renames a node.
  const std::string name(1 << 20, 'p');
  SpecNode* product = model().getNode("my_product");
  ASSERT_NE(nullptr, product);
  product->setName(name);
  UiTestApp::flush();  // drawn: the whole name would not fit one X request
  EXPECT_EQ(name, product->name());
  EXPECT_EQ(name, model().getProductName());
  YrNode* shown = graph->graph().find(product->identity());
  EXPECT_EQ(std::string(YrNode::kShownLabelBytes, 'p') + "...", shown->label());
}

TEST_F(SpecGraphTest, SavedSpecReopensToTheSameTree) {
  TempDir dir;
  click("my_product.sw");
  press(graph->addButton());
  model().getNode("my_product.sw.my_subsys")->setRules("replaces self\n\nprereq (\n    a.b.c 1 2\n)\n");
  model().getNode("my_product.man")->setOrder(12);
  const std::string before = written();

  // No file name yet: Save asks for one.
  const std::string path = dir.file("product.spec");
  answerFileDialog(path);
  EXPECT_EQ(1, graph->save(nullptr));
  EXPECT_EQ("Save Spec", dialogTitle);
  ASSERT_GE(proposed.size(), 16u);
  EXPECT_EQ("/my_product.spec", proposed.substr(proposed.size() - 16));
  EXPECT_EQ("Spec File:  " + path, graph->specFileLabel());
  EXPECT_EQ(std::vector<std::string>{"Saved spec '" + path + "'."}, reporter.texts("log"));
  EXPECT_FALSE(model().changed());

  // Open, after dropping an unsaved change with the user's consent.
  click("my_product");
  press(graph->addButton());
  reporter.clear();
  reporter.answer(true);
  answerFileDialog(path);
  EXPECT_EQ(1, graph->showOpenBrowser());
  EXPECT_EQ("Open Spec", dialogTitle);
  EXPECT_EQ(1u, reporter.texts("question").size());
  EXPECT_EQ(std::vector<std::string>{"Opened spec '" + path + "'."}, reporter.texts("log"));
  // What was saved is what the reopened tree writes.
  EXPECT_EQ(before, slurp(path));
  EXPECT_EQ(before, written());
  EXPECT_EQ(10, graph->graph().nodeCount());
  EXPECT_FALSE(model().changed());
}

TEST_F(SpecGraphTest, FileCommandsRefuseAndCancelWithoutLosingAnything) {
  TempDir dir;
  const std::string spec = dir.write("a.spec", "product p\n    id \"P\"\nendproduct\n");
  const std::string before = written();

  // Unsaved changes kept: Open asks nothing else.
  press(graph->addButton());
  reporter.clear();
  reporter.answer(false);
  EXPECT_EQ(0, graph->showOpenBrowser());
  EXPECT_EQ(std::vector<std::string>{
                "There have been changes since you last saved.\nAbandon changes to spec file?\n"},
            reporter.texts("question"));
  EXPECT_EQ(0u, YrDialogManager::pendingResponders());

  // Save As cancelled writes nothing.
  answerFileDialog("");
  EXPECT_EQ(0, graph->showSaveBrowser());
  EXPECT_EQ("Save Spec", dialogTitle);
  EXPECT_TRUE(model().changed());

  // A directory is not a regular file.
  reporter.clear();
  EXPECT_EQ(0, graph->save(dir.path().c_str()));
  EXPECT_EQ(std::vector<std::string>{"'" + dir.path() + "' is not a regular file.\nTry again."},
            reporter.texts("warning"));

  // Nor into the distribution directory, whatever the name.
  model().setDistDirSource([&] { return dir.path(); });
  reporter.clear();
  EXPECT_EQ(0, graph->save(dir.file("other.spec").c_str()));
  ASSERT_EQ(1u, reporter.texts("error").size());
  EXPECT_EQ(0u, reporter.texts("error")[0].find("Save target directory matches Distribution"));
  EXPECT_EQ("Spec File:  ", graph->specFileLabel());
  EXPECT_TRUE(model().changed());

  // Append adds the file's product and keeps the file name.
  reporter.clear();
  answerFileDialog(spec);
  EXPECT_EQ(1, graph->showReadBrowser());
  EXPECT_EQ("Append Spec", dialogTitle);
  EXPECT_EQ(std::vector<std::string>{"Appended spec '" + spec + "'."}, reporter.texts("log"));
  EXPECT_EQ(2, model().rootCount());
  EXPECT_NE(nullptr, widget("p"));
  EXPECT_EQ("Spec File:  ", graph->specFileLabel());
  EXPECT_NE(before, written());
}

}  // namespace

#include <Xm/Xm.h>

#include "app/MainWindow.h"
#include "app/MyApp.h"
#include "app/View.h"
#include "filelist/IdbDocument.h"
#include "yr/YrMenuItem.h"

namespace {

// An idb that only counts how often it was cleared.
class CountingIdb : public IdbDocument {
 public:
  void clear() override { ++cleared; }
  int abandonChanges() override { return 1; }
  int open(const char*) override { return 1; }
  int showOpenBrowser() override { return 1; }
  int showReadBrowser() override { return 1; }
  int showSaveBrowser() override { return 1; }
  int save(const char*) override { return 1; }
  int recordCount() override { return 0; }
  void refresh() override {}
  int cleared = 0;
};

// The File menus of the program's window reaching the hierarchy panel, with
// the questions answered in the real dialogs.
class SpecMenuTest : public ::testing::Test {
 protected:
  void SetUp() override {
    int argc = 1;
    char name[] = "tamblin";
    char* argv[] = {name, nullptr};
    app = std::make_unique<MyApp>("Tamblin", UiTestApp::context(), UiTestApp::display(), &argc,
                                  argv, "ORVEX_TAMBLIN");
    window = std::make_unique<MainWindow>("tamblin");
    window->initialize();
    window->show();
    window->view()->setIdbDocument(&idb);
    UiTestApp::flush();
  }
  void TearDown() override {
    window.reset();
    app.reset();
    YrDialogManager::clearResponders();
    UiTestApp::flush();
  }
  void choose(const char* path) {
    YrMenuItem* item = window->menuItem(path);
    ASSERT_NE(nullptr, item) << path;
    XmAnyCallbackStruct cbs{};
    cbs.reason = XmCR_ACTIVATE;
    XtCallCallbacks(item->baseWidget(), XmNactivateCallback, &cbs);
  }
  void answer(YrDialogManager::Answer a) {
    YrDialogManager::queueResponder([this, a](YrDialogManager& d) {
      asked = d.message();
      d.press(a);
    });
  }

  CountingIdb idb;
  std::unique_ptr<MyApp> app;
  std::unique_ptr<MainWindow> window;
  std::string asked;
};

TEST_F(SpecMenuTest, NewBothClearsTheIdbEvenWhenTheSpecIsKept) {
  SpecGraph* graph = window->view()->specGraph();
  ASSERT_NE(nullptr, graph);
  EXPECT_EQ(graph, window->view()->specDocument());
  EXPECT_EQ(9u, graph->model().nodes().size());
  SpecGraphModel& model = graph->model();
  model.deleteProduct("my_product");
  ASSERT_TRUE(model.changed());

  answer(YrDialogManager::Cancel);
  choose("File/New/Both");
  EXPECT_EQ("There have been changes since you last saved.\nAbandon changes to spec file?\n",
            asked);
  EXPECT_EQ(0, model.rootCount());
  EXPECT_EQ(1, idb.cleared);

  answer(YrDialogManager::Ok);
  choose("File/New/Both");
  EXPECT_EQ(9u, model.nodes().size());
  EXPECT_EQ(9, graph->graph().nodeCount());
  EXPECT_FALSE(model.changed());
  EXPECT_EQ(2, idb.cleared);

  // Nothing changed since: no question at all.
  asked.clear();
  answer(YrDialogManager::Cancel);
  choose("File/New/Spec");
  EXPECT_EQ("", asked);
  EXPECT_EQ(1u, YrDialogManager::pendingResponders());
}

}  // namespace
