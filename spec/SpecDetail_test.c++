// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include "spec/HierarchyTestBench.h"

#include "app/ui/LayoutChecks.h"

#include <Xm/List.h>
#include <Xm/Text.h>
#include <Xm/TextF.h>
#include <Xm/ToggleB.h>

namespace {

class SpecDetailTest : public HierarchyTestBench {
 protected:
  Widget find(const char* name) {
    Widget w = XtNameToWidget(detail->baseWidget(), (std::string("*") + name).c_str());
    EXPECT_NE(nullptr, w) << name;
    return w;
  }
  std::string text(const char* name) {
    Widget w = find(name);
    char* t = XmIsTextField(w) ? XmTextFieldGetString(w) : XmTextGetString(w);
    std::string out = t;
    XtFree(t);
    return out;
  }
  void type(const char* name, const std::string& value) {
    Widget w = find(name);
    if (XmIsTextField(w))
      XmTextFieldSetString(w, const_cast<char*>(value.c_str()));
    else
      XmTextSetString(w, const_cast<char*>(value.c_str()));
  }
  void assign() { press(find("applyArrowButton")); }
  std::vector<std::string> idbTags() {
    std::unique_ptr<StringSet> set = fileList->getTags();
    std::vector<std::string> out;
    for (int i = 0; i < set->count(); ++i) out.push_back((*set)[i]);
    return out;
  }
  void loadIdb(const TempDir& dir) {
    ASSERT_TRUE(fileList->open(dir.write(
        "a.idb",
        "f 0755 root sys usr/bin/a build/a my_product.sw.base\n"
        "f 0644 root sys usr/lib/b build/b my_product.sw.optional\n"
        "f 0644 root sys usr/share/c build/c my_product.man.manpages\n")).ok());
  }
};

TEST_F(SpecDetailTest, DescriptionsNeedQuotedBlanksAndMatchedQuotes) {
  struct Case {
    const char* text;
    int ok;
    const char* message;
  } cases[] = {
      {"", 1, nullptr},
      {"\"My Product\"", 1, nullptr},
      {"'My Product'", 1, nullptr},
      {"My\\ Product", 1, nullptr},
      {"\"Bob's Product\"", 1, nullptr},
      {"2\\\"\\ Tape\\ Player", 1, nullptr},
      {"tab\tinside", 1, nullptr},
      {"My Product", 0, SpecDetail::kUnquotedBlank},
      {"\"a\" b", 0, SpecDetail::kUnquotedBlank},
      {"\"abc", 0, SpecDetail::kUnmatchedQuote},
      {"'it\"s", 0, SpecDetail::kUnmatchedQuote},
  };
  for (const Case& c : cases) {
    reporter.clear();
    EXPECT_EQ(c.ok, detail->okDescription(c.text)) << c.text;
    std::vector<std::string> expected;
    if (c.message) expected.push_back(c.message);
    EXPECT_EQ(expected, reporter.texts("error")) << c.text;
  }
}

TEST_F(SpecDetailTest, EachLevelFillsItsForm) {
  SpecNode* base = model().getNode("my_product.sw.base");
  base->setPatch(true);
  base->setMiniroot(true);
  model().getNode("my_product.man")->setOrder(5);
  model().getNode("my_product.books")->setOrder(12345);

  click("my_product");
  EXPECT_EQ("my_product", text("productNameTextField"));
  EXPECT_EQ("\"My Product Description\"", text("productIdTextField"));

  click("my_product.man");
  EXPECT_STREQ("imageForm", XtName(detail->shownForm()));
  EXPECT_EQ("man", text("imageNameTextField"));
  EXPECT_EQ("1", text("versionTextField"));
  EXPECT_EQ("5", text("orderTextField"));
  EXPECT_EQ((std::vector<std::string>{"0005 my_product.man", "12345 my_product.books",
                                      "9999 my_product.sw"}),
            detail->orderItems());

  click("my_product.sw.base");
  EXPECT_EQ("\"Base Software\"", text("subsysIdTextField"));
  EXPECT_TRUE(XmToggleButtonGetState(find("patchToggleButton")));
  EXPECT_TRUE(XmToggleButtonGetState(find("minirootToggleButton")));
  EXPECT_FALSE(XmToggleButtonGetState(find("defaultToggleButton")));
  EXPECT_FALSE(XtIsSensitive(find("requiredToggleButton")));
  // Offered only when the resource asks for it.
  EXPECT_FALSE(XtIsManaged(find("requiredToggleButton")));
  EXPECT_EQ("my_product.sw.base", text("mappingText"));
  EXPECT_EQ("replaces self", text("rulesText"));

  click("my_product.sw.optional");
  EXPECT_TRUE(XtIsSensitive(find("requiredToggleButton")));
}

TEST_F(SpecDetailTest, RenamingAnImageRewritesMappingsAndRetagsTheIdb) {
  TempDir dir;
  loadIdb(dir);
  // A mapping the user chose stays; its records are still retagged.
  model().getNode("my_product.sw.optional")->setMapping("custom");
  click("my_product.sw");
  type("imageNameTextField", "base");
  type("versionTextField", "7");
  type("orderTextField", "abc");
  assign();
  EXPECT_EQ("my_product.base.base", model().getNode("my_product.base.base")->mapping());
  EXPECT_EQ("custom", model().getNode("my_product.base.optional")->mapping());
  EXPECT_EQ((std::vector<std::string>{"my_product.base.base", "my_product.base.optional",
                                      "my_product.man.manpages"}),
            idbTags());
  SpecNode* image = model().getNode("my_product.base");
  EXPECT_EQ("7", image->version());
  EXPECT_EQ(0, image->order());
  EXPECT_EQ("base", graph->graph().find(image->identity())->label());
  EXPECT_EQ("0000 my_product.base", detail->orderItems().front());
  // The tags panel shows the idb's tags first, then the hierarchy's others.
  EXPECT_EQ((std::vector<std::string>{"my_product.base.base", "my_product.base.optional",
                                      "my_product.man.manpages", "my_product.man.relnotes",
                                      "my_product.books.userguide"}),
            tags->items());
  EXPECT_TRUE(model().changed());
}

TEST_F(SpecDetailTest, RenamingAProductOrSubsystemRenamesItsTags) {
  TempDir dir;
  loadIdb(dir);
  click("my_product");
  type("productNameTextField", "tool");
  type("productIdTextField", "'Tool'");
  assign();
  EXPECT_EQ("'Tool'", model().getNode("tool")->id());
  for (const char* tag : {"tool.sw.base", "tool.sw.optional", "tool.man.manpages",
                          "tool.man.relnotes", "tool.books.userguide"})
    EXPECT_EQ(tag, model().getNode(tag)->mapping());
  EXPECT_EQ((std::vector<std::string>{"tool.sw.base", "tool.sw.optional", "tool.man.manpages"}),
            idbTags());

  // A subsystem whose mapping is being edited keeps the edit.
  click("tool.sw.optional");
  type("subsysNameTextField", "extra");
  type("mappingText", "tool.sw.optional\ntool.sw.more");
  XmToggleButtonSetState(find("defaultToggleButton"), True, False);
  assign();
  SpecNode* extra = model().getNode("tool.sw.extra");
  ASSERT_NE(nullptr, extra);
  EXPECT_EQ("tool.sw.optional\ntool.sw.more", extra->mapping());
  EXPECT_TRUE(extra->isDefault());
  EXPECT_EQ((std::vector<std::string>{"tool.sw.base", "tool.sw.extra", "tool.man.manpages"}),
            idbTags());

  // An untouched mapping follows the rename, in the form as well.
  click("tool.sw.base");
  type("subsysNameTextField", "core");
  assign();
  EXPECT_EQ("tool.sw.core", model().getNode("tool.sw.core")->mapping());
  EXPECT_EQ("tool.sw.core", text("mappingText"));
}

TEST_F(SpecDetailTest, RefusedAssignChangesNothing) {
  click("my_product.sw.base");
  type("subsysNameTextField", "renamed");
  type("subsysIdTextField", "Base Software");
  assign();
  EXPECT_EQ(std::vector<std::string>{SpecDetail::kUnquotedBlank}, reporter.texts("error"));
  EXPECT_NE(nullptr, model().getNode("my_product.sw.base"));
  EXPECT_EQ("\"Base Software\"", model().getNode("my_product.sw.base")->id());
  EXPECT_FALSE(model().changed());

  clickBackground();
  reporter.clear();
  assign();
  EXPECT_EQ(std::vector<std::string>{SpecDetail::kNoNodeSelected}, reporter.texts("error"));
  EXPECT_STREQ("noneForm", XtName(detail->shownForm()));
}

TEST_F(SpecDetailTest, AssignRefusesValuesThatWouldNotReadBack) {
  struct Case {
    const char* node;
    const char* field;
    const char* value;
    const char* error;  // null: accepted
  } cases[] = {
      {"my_product.sw.base", "subsysIdTextField", "default",
       "The Description 'default' cannot be saved in a spec file:\n'default' is a word of the "
       "spec format there; put it in double quotes.\n\nChange it and Assign again."},
      {"my_product.sw", "versionTextField", "patch",
       "The Version 'patch' cannot be saved in a spec file:\n'patch' is a word of the spec format "
       "there; put it in double quotes.\n\nChange it and Assign again."},
      {"my_product", "productNameTextField", "my\tproduct",
       "The Name 'my\tproduct' cannot be saved in a spec file:\na name is one word, without "
       "blanks, tabs or line breaks.\n\nChange it and Assign again."},
      {"my_product.sw.base", "rulesText", "prereq (a 0 oldvers)",
       "The Rules 'prereq (a 0 oldvers)' cannot be saved in a spec file:\nreading it back stops "
       "at '(a': a parenthesis of a prereq group must stand alone, with blanks around it.\n\n"
       "Change it and Assign again."},
      {"my_product.sw", "versionTextField", "1(2)", nullptr},
      {"my_product.sw.base", "subsysIdTextField", "v1.0(beta)", nullptr},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.field) + " " + c.value);
    model().setChanged(false);
    reporter.clear();
    click(c.node);
    SpecNode* node = model().getNode(c.node);
    ASSERT_NE(nullptr, node);
    std::string id = node->id(), version = node->version(), rules = node->rules();
    type(c.field, c.value);
    // A rename in the same Assign must wait for the other fields too.
    if (node->level() == 3) type("subsysNameTextField", "renamed");
    assign();
    if (c.error) {
      EXPECT_EQ(std::vector<std::string>{c.error}, reporter.texts("error"));
      EXPECT_EQ(node, model().getNode(c.node));
      EXPECT_EQ(id, node->id());
      EXPECT_EQ(version, node->version());
      EXPECT_EQ(rules, node->rules());
      EXPECT_FALSE(model().changed());
    } else {
      EXPECT_TRUE(reporter.texts("error").empty());
      EXPECT_TRUE(model().changed());
      EXPECT_EQ(c.value, node->level() == 2 ? node->version() : node->id());
    }
  }
}

TEST_F(SpecDetailTest, AssignStoresValuesAsTheyReadBack) {
  click("my_product.sw.base");
  type("rulesText", "replaces self\n\nprereq ( my_product.sw.x 0 oldvers )\n");
  type("mappingText", "my_product.sw.base\n\n   other.tag  ");
  assign();
  EXPECT_TRUE(reporter.texts("error").empty());
  SpecNode* base = model().getNode("my_product.sw.base");
  const char* rules = "replaces self\nprereq (\n    my_product.sw.x 0 oldvers\n)";
  EXPECT_EQ(rules, base->rules());
  EXPECT_EQ(rules, text("rulesText"));
  EXPECT_EQ("my_product.sw.base\nother.tag", base->mapping());
  EXPECT_EQ("my_product.sw.base\nother.tag", text("mappingText"));
}

TEST_F(SpecDetailTest, OrderListSelectsTheImage) {
  click("my_product.man");
  Widget list = find("orderList");
  XmListSelectPos(list, 3, True);  // "9999 my_product.sw"
  UiTestApp::flush();
  EXPECT_EQ("my_product.sw", selectedTag());
  EXPECT_EQ(model().getNode("my_product.sw"), detail->current());
}

TEST_F(SpecDetailTest, RuleTemplatesGoInAtTheInsertionPoint) {
  struct Case {
    const char* button;
    const char* inserted;
  } cases[] = {
      {"prereqPushButton", "prereq (\n    my_product.sw.base 0 oldvers\n)\n"},
      {"incompatPushButton", "incompat my_product.sw.base 0 oldvers\n"},
      {"replacesPushButton", "replaces my_product.sw.base 0 oldvers\n"},
  };
  click("my_product.sw.base");
  for (const Case& c : cases) {
    type("rulesText", "first\nlast");
    XmTextSetInsertionPosition(find("rulesText"), 6);
    press(find(c.button));
    EXPECT_EQ(std::string("first\n") + c.inserted + "last", text("rulesText")) << c.button;
    EXPECT_EQ(static_cast<XmTextPosition>(6 + std::string(c.inserted).size()),
              XmTextGetInsertionPosition(find("rulesText")))
        << c.button;
  }
}

TEST_F(SpecDetailTest, RequiredToggleIsOfferedWhenTheResourceAsks) {
  // A site that offers the toggle says so under the class name.
  Widget appShell = newApplicationShell("requiredShell");
  putUserResource(appShell, "Tamblin*offering*showRequiredToggleButton: True");
  auto offering = std::make_unique<SpecDetail>("offering", appShell, reporter);
  offering->connect(*graph, *fileList, *tags);
  SpecNode* base = model().getNode("my_product.sw.base");
  base->setRequired(true);
  offering->setCurrent(base);
  Widget required = XtNameToWidget(offering->baseWidget(), "*requiredToggleButton");
  ASSERT_NE(nullptr, required);
  EXPECT_TRUE(XtIsManaged(required));
  EXPECT_TRUE(XmToggleButtonGetState(required));
  XmToggleButtonSetState(required, False, False);
  XtCallCallbacks(XtNameToWidget(offering->baseWidget(), "*applyArrowButton"), XmNactivateCallback,
                  nullptr);
  EXPECT_FALSE(base->required());
  offering.reset();
  XtDestroyWidget(appShell);
}

}  // namespace
