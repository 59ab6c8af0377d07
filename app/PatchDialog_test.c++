#include <gtest/gtest.h>

#include <Xm/TextF.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <vector>

#include "app/PatchDialog.h"
#include "ov/OvList.h"
#include "filelist/FileListModel.h"
#include "filelist/SpecGraphPartner.h"
#include "spec/SpecGraphModel.h"
#include "util/RecordingReporter.h"
#include "util/TempDir.h"
#include "util/UiTestApp.h"
#include "yr/YrApp.h"

namespace {

class GraphPartner : public SpecGraphPartner {
 public:
  explicit GraphPartner(SpecGraphModel& graph) : _graph(graph) {}
  std::string getProductName() override { return _graph.getProductName(); }
  std::string createPatchSubsystem(const std::string& patchName, const std::string& tag) override {
    return _graph.createPatchSubsystem(patchName, tag);
  }
  void deleteProduct(const std::string& name) override { _graph.deleteProduct(name); }

 private:
  SpecGraphModel& _graph;
};

std::string text(XmString s) {
  char* t = static_cast<char*>(
      XmStringUnparse(s, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
  std::string out = t ? t : "";
  XtFree(t);
  return out;
}

const char kIdb[] =
    "f 0755 root sys usr/bin/a a my_product.sw.base\n"
    "f 0644 root sys usr/lib/b b my_product.sw.base\n"
    "f 0644 root sys usr/man/c c my_product.man.manpages\n";

class PatchDialogTest : public ::testing::Test {
 protected:
  void SetUp() override {
    app = std::make_unique<YrApp>("Tamblin", UiTestApp::context(), UiTestApp::display());
    char cwd[4096];
    ASSERT_TRUE(getcwd(cwd, sizeof cwd));
    _startDir = cwd;
    // The proposal looks in the current directory.
    ASSERT_EQ(0, chdir(dir.path().c_str()));
    graph.defaultGraph();
    fileList.setSpecGraphPartner(&partner);
    ASSERT_TRUE(fileList.open(dir.write("p.idb", kIdb)).ok());
    reporter.clear();
  }
  void TearDown() override {
    dialog.reset();
    app.reset();
    UiTestApp::flush();
    EXPECT_EQ(0, chdir(_startDir.c_str()));
  }
  void post() {
    dialog = std::make_unique<PatchDialog>("patchdialog", fileList, graph.getProductName(), reporter);
    dialog->post();
    UiTestApp::flush();
  }
  // The rows as the list draws them.
  std::vector<std::string> items() {
    std::vector<std::string> out;
    for (int p = 1; p <= OvListItemCount(dialog->list()); ++p) {
      size_t length = 0;
      const char* row = OvListRowText(dialog->list(), p, &length);
      out.emplace_back(row, length);
    }
    return out;
  }
  // What the list reports for a gesture of the user's.
  void gesture(int kind, int position) {
    OvListCallbackStruct cbs{};
    cbs.reason = XmCR_EXTENDED_SELECT;
    cbs.gesture = kind;
    cbs.position = cbs.first = cbs.last = position;
    XtCallCallbacks(dialog->list(), OvNgestureCallback, &cbs);
  }
  // Ctrl-clicks on each position.
  void select(std::initializer_list<int> positions) {
    for (int p : positions) gesture(OvLIST_TOGGLE, p);
  }
  void setName(const char* name) { XmTextFieldSetString(dialog->nameField(), const_cast<char*>(name)); }
  std::string name() {
    char* t = XmTextFieldGetString(dialog->nameField());
    std::string s = t;
    XtFree(t);
    return s;
  }

  std::unique_ptr<YrApp> app;
  TempDir dir;
  RecordingReporter reporter;
  SpecGraphModel graph{&reporter};
  GraphPartner partner{graph};
  FileListModel fileList{reporter};
  std::unique_ptr<PatchDialog> dialog;
  std::string _startDir;
};

TEST_F(PatchDialogTest, ProposesTheFirstFreeNumberHere) {
  struct Case {
    std::vector<const char*> present;
    const char* proposal;
  } cases[] = {
      {{}, "my_product_patch1"},
      {{"my_product_patch1.spec", "my_product_patch2.spec"}, "my_product_patch3"},
      {{"my_product_patch2.spec"}, "my_product_patch1"},
      // Only spec files count, and only here.
      {{"my_product_patch1.idb", "sub/my_product_patch1.spec"}, "my_product_patch1"},
  };
  for (const Case& c : cases) {
    TempDir here;
    ASSERT_EQ(0, chdir(here.path().c_str()));
    for (const char* f : c.present) here.write(f, "");
    EXPECT_EQ(c.proposal, PatchDialog::proposeName("my_product")) << c.present.size();
  }
  ASSERT_EQ(0, chdir(dir.path().c_str()));
  dir.write("my_product_patch1.spec", "");
  post();
  EXPECT_EQ("my_product_patch2", name());
}

TEST_F(PatchDialogTest, ListsTheIdbWithItsTexts) {
  post();
  EXPECT_TRUE(dialog->isPosted());
  EXPECT_EQ((std::vector<std::string>{"my_product.sw.base a", "my_product.sw.base b",
                                      "my_product.man.manpages c"}),
            items());
  char* title = nullptr;
  XtVaGetValues(XtParent(dialog->baseWidget()), XmNtitle, &title, nullptr);
  EXPECT_STREQ("Create Patch", title);
  unsigned char policy = 0;
  XtVaGetValues(dialog->list(), XmNselectionPolicy, &policy, nullptr);
  EXPECT_EQ(XmEXTENDED_SELECT, policy);
  struct Label {
    const char* widget;
    const char* text;
  } labels[] = {
      {"*label1", "Tag                                       Source"},
      {"*label2", "Select files to be included in the patch product.  Use <Ctrl> to select disjoint items."},
      {"*label5", "creates a product and adds the selected files, tagging to the new subsystems."},
      {"*rowcolumn2.label", "Product Name"},
  };
  for (const Label& l : labels) {
    Widget w = XtNameToWidget(dialog->baseWidget(), l.widget);
    ASSERT_NE(nullptr, w) << l.widget;
    XmString s = nullptr;
    XtVaGetValues(w, XmNlabelString, &s, nullptr);
    EXPECT_EQ(l.text, text(s)) << l.widget;
    XmStringFree(s);
  }
}

TEST_F(PatchDialogTest, RefusalsKeepTheDialogUp) {
  struct Case {
    const char* name;
    std::initializer_list<int> selected;
    const char* error;
  } cases[] = {
      {"", {1}, "Specify patch Product Name."},
      {"fix", {}, "Select files in patch."},
  };
  post();
  for (const Case& c : cases) {
    reporter.clear();
    gesture(OvLIST_DESELECT_ALL, 0);
    select(c.selected);
    setName(c.name);
    dialog->press(YrDialogManager::Ok);
    UiTestApp::flush();
    EXPECT_EQ(std::vector<std::string>{c.error}, reporter.texts("error")) << c.name;
    EXPECT_TRUE(dialog->isPosted()) << c.name;
    EXPECT_EQ(3, fileList.idb().count());
  }
}

TEST_F(PatchDialogTest, EmptyIdbShowsAnEmptyListAndRefuses) {
  fileList.clear();
  post();
  EXPECT_TRUE(items().empty());
  dialog->press(YrDialogManager::Ok);
  UiTestApp::flush();
  EXPECT_EQ(std::vector<std::string>{"Select files in patch."}, reporter.texts("error"));
}

TEST_F(PatchDialogTest, OkMakesThePatchFromTheChosenFiles) {
  post();
  select({1, 3});
  EXPECT_EQ((std::vector<int>{1, 3}), dialog->chosen());
  EXPECT_TRUE(OvListRowSelected(dialog->list(), 3));
  EXPECT_FALSE(OvListRowSelected(dialog->list(), 2));
  setName("fix");
  dialog->press(YrDialogManager::Ok);
  UiTestApp::flush();
  EXPECT_FALSE(dialog->isPosted());
  EXPECT_TRUE(reporter.texts("error").empty());
  ASSERT_EQ(2, fileList.idb().count());
  EXPECT_EQ("fix.my_product_sw.base", std::string(fileList.idb()[0]->tag()));
  EXPECT_EQ("a", std::string(fileList.idb()[0]->srcpath()));
  EXPECT_EQ("fix.my_product_man.manpages", std::string(fileList.idb()[1]->tag()));
  EXPECT_TRUE(graph.productExists("fix"));
  EXPECT_FALSE(graph.productExists("my_product"));
  SpecNode* base = graph.getNode("fix.my_product_sw.base");
  ASSERT_NE(nullptr, base);
  EXPECT_EQ("fix.my_product_sw.base", base->mapping());
  // The patch is a new idb: saving asks for a name.
  EXPECT_EQ("", fileList.idbFileName());
  EXPECT_TRUE(fileList.modified());
}

}  // namespace
