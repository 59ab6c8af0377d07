// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <Xm/FileSB.h>
#include <Xm/List.h>
#include <Xm/PushB.h>
#include <Xm/TextF.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "app/ui/LayoutChecks.h"
#include "filelist/FileListAdd.h"
#include "filelist/FileListModel.h"
#include "filelist/PanelFields.h"
#include "util/RecordingReporter.h"
#include "util/TempDir.h"
#include "util/UiTestApp.h"
#include "yr/YrApp.h"
#include "yr/YrDialogManager.h"
#include "yr/YrInterruptDialog.h"

namespace {

using Names = std::vector<std::string>;

class FileListAddTest : public ::testing::Test {
 protected:
  void SetUp() override {
    app = std::make_unique<YrApp>("Tamblin", UiTestApp::context(), UiTestApp::display());
    YrDialogManager::setWaitLimit(5000);
    for (const char* f : {"a", "b", "xfile", "dir/x", "dir/sub/y"}) tree.write(f, f);
    shell = newApplicationShell("addShell");
    model = std::make_unique<FileListModel>(reporter);
    ASSERT_TRUE(model->setSourceRoot(tree.path()));
    panel = std::make_unique<FileListAdd>("FileListAdd", shell);
    model->setAddFilesPartner(panel.get());
    panel->connect(*model, reporter);
    panel->setBrowsingDirectory(tree.path().c_str());
    reporter.clear();
  }
  void TearDown() override {
    EXPECT_FALSE(app->isBusy());
    EXPECT_EQ(0u, YrDialogManager::pendingResponders());
    YrDialogManager::clearResponders();
    YrDialogManager::setWaitLimit(0);
    model->setAddFilesPartner(nullptr);
    panel.reset();
    XtDestroyWidget(shell);
    app.reset();
    UiTestApp::flush();
  }

  Widget w(const char* name) { return findWidget(panel->baseWidget(), name); }
  Widget list() { return w("filesList"); }
  int count() {
    int n = 0;
    XtVaGetValues(list(), XmNitemCount, &n, nullptr);
    return n;
  }
  // The entries as the list shows them, marked ones with a "*" in front.
  Names entries() {
    Names out;
    for (int pos = 1; pos <= count(); pos++) {
      bool marked = false;
      std::string text = panel->getEntryText(pos, &marked);
      out.push_back(marked ? "*" + text : text);
    }
    return out;
  }
  Names selected() {
    Names out;
    int* positions = nullptr;
    int n = 0;
    if (XmListGetSelectedPos(list(), &positions, &n)) {
      for (int i = 0; i < n; i++) out.push_back(panel->getEntryText(positions[i], nullptr));
      XtFree(reinterpret_cast<char*>(positions));
    }
    std::sort(out.begin(), out.end());
    return out;
  }
  void select(const Names& names) {
    XmListDeselectAllItems(list());
    XtVaSetValues(list(), XmNselectionPolicy, XmMULTIPLE_SELECT, nullptr);
    for (const std::string& n : names) XmListSelectPos(list(), panel->getEntryPos(n), False);
    XtVaSetValues(list(), XmNselectionPolicy, XmEXTENDED_SELECT, nullptr);
  }
  void filter(const char* text) {
    XmTextFieldSetString(w("selectionTextField"), const_cast<char*>(text));
  }
  void press(const char* name) { XtCallCallbacks(w(name), XmNactivateCallback, nullptr); }
  void doubleClick(const std::string& name) {
    XmListCallbackStruct cbs{};
    cbs.reason = XmCR_DEFAULT_ACTION;
    cbs.item_position = panel->getEntryPos(name);
    XtCallCallbacks(list(), XmNdefaultActionCallback, &cbs);
  }
  Names sourcePaths() {
    Names out;
    for (int i = 0; i < model->idb().count(); i++)
      out.emplace_back(model->idb()[i]->srcpath());
    std::sort(out.begin(), out.end());
    return out;
  }

  TempDir tree;
  RecordingReporter reporter;
  std::unique_ptr<YrApp> app;
  Widget shell = nullptr;
  std::unique_ptr<FileListModel> model;
  std::unique_ptr<FileListAdd> panel;
};

TEST_F(FileListAddTest, BrowsingDirectoryFromTypedTexts) {
  char saved[4096];
  ASSERT_NE(nullptr, getcwd(saved, sizeof saved));
  ASSERT_EQ(0, chdir(tree.file("dir").c_str()));
  struct Case {
    const char* typed;
    std::string browsing;  // afterwards
    std::string field;     // the directory field afterwards
    std::string error;
  } cases[] = {
      {"~", tree.file("dir"), tree.file("dir"), ""},
      {"sub", tree.file("dir/sub"), tree.file("dir/sub"), ""},
      {"", tree.file("dir"), tree.file("dir"), ""},
      {"x", tree.file("dir"), "x", ""},         // a file: ignored, the text stays
      {"missing", tree.file("dir"), "missing", ""},
      {"../..", tree.file("dir"), tree.file("dir"),
       "'" + tree.file("").substr(0, tree.path().rfind('/')) + "' is outside Source Root '" +
           tree.path() + "'"},
  };
  for (const Case& c : cases) {
    reporter.clear();
    XmTextFieldSetString(w("directoryTextField"), const_cast<char*>(c.typed));
    press("directoryTextField");
    EXPECT_EQ(c.browsing, panel->browsingDirectory()) << c.typed;
    EXPECT_EQ(c.field, fieldText(w("directoryTextField"))) << c.typed;
    EXPECT_EQ(c.error.empty() ? Names{} : Names{c.error}, reporter.texts("error")) << c.typed;
  }
  ASSERT_EQ(0, chdir(saved));
}

TEST_F(FileListAddTest, FilterSelectsMatchesButNeverDotEntries) {
  struct Case {
    const char* typed;
    Names selected;
  } cases[] = {
      {"x", {"xfile"}},
      {"press All", {"a", "b", "dir/", "xfile"}},
      {"\\.", {}},  // only ./ and ../ hold a dot
      {"(", {}},     // does not compile: selection kept from before
      {"press None", {}},
      {"^[ab]$", {"a", "b"}},
  };
  for (const Case& c : cases) {
    if (std::string(c.typed) == "press All")
      press("allPushButton");
    else if (std::string(c.typed) == "press None")
      press("nonePushButton");
    else
      filter(c.typed);
    EXPECT_EQ(c.selected, selected()) << c.typed;
  }
  EXPECT_EQ("^[ab]$", fieldText(w("selectionTextField")));
}

TEST_F(FileListAddTest, AddingFilesAndADirectoryHandsOverEverythingBelow) {
  EXPECT_EQ((Names{"../", "./", "a", "b", "dir/", "xfile"}), entries());
  select({"a", "b", "dir"});
  press("arrowButton");
  EXPECT_EQ((Names{"a", "b", "dir", "dir/sub", "dir/sub/y", "dir/x"}), sourcePaths());
  EXPECT_EQ((Names{"../", "./", "*a", "*b", "*dir/", "xfile"}), entries());
  EXPECT_EQ(Names{}, selected());
  EXPECT_FALSE(getTheInterruptDialog()->isPosted());
  // Adding again merges nothing twice into one Add, and nothing selected is
  // refused with the message.
  press("arrowButton");
  ASSERT_EQ(1u, reporter.texts("error").size());
  EXPECT_EQ(0u, reporter.texts("error")[0].find("You haven't selected any files in the browser"));
  // The marks follow the idb: a directory read shows them, removal clears
  // them through refresh.
  // (The record of the directory itself, whose source directory is ".",
  // marks "./" too.)
  panel->setBrowsingDirectory(tree.file("dir").c_str());
  EXPECT_EQ((Names{"../", "*./", "*sub/", "*x"}), entries());
  model->undo();
  panel->refresh();
  EXPECT_EQ((Names{"../", "./", "sub/", "x"}), entries());
}

TEST_F(FileListAddTest, RootItselfParentAndNamesAnIdbCannotHold) {
  tree.write("with space", "");
  panel->setBrowsingDirectory(nullptr);
  // "../" at the source root lies outside it: not searched, nothing added.
  select({"../"});
  press("arrowButton");
  EXPECT_EQ(Names{}, sourcePaths());
  const std::string parent = tree.path().substr(0, tree.path().rfind('/'));
  EXPECT_EQ(Names{"Skipped '" + parent + "': it is outside Source Root '" + tree.path() + "'."},
            reporter.texts("log"));
  // "./" adds what lies below the root, never the root as an empty path;
  // the name with a blank is skipped and stays unmarked.
  reporter.clear();
  select({"./"});
  press("arrowButton");
  EXPECT_EQ((Names{"a", "b", "dir", "dir/sub", "dir/sub/y", "dir/x", "xfile"}), sourcePaths());
  EXPECT_EQ(Names{"Skipped '" + tree.file("with space") +
                  "': its name holds a blank, which an idb line cannot hold."},
            reporter.texts("log"));
  // The root is no record, so "./" stays unmarked.
  EXPECT_EQ((Names{"../", "./", "*a", "*b", "*dir/", "with space", "*xfile"}), entries());
}

TEST_F(FileListAddTest, InterruptedAddAddsNothingAndDropsItsMarks) {
  for (int i = 0; i < 350; i++) tree.write("big/f" + std::to_string(i), "");
  panel->setBrowsingDirectory(nullptr);
  Names progress;
  auto note = [&](YrDialogManager& d) { progress.push_back(d.message()); };
  YrDialogManager::queueResponder(note);
  YrDialogManager::queueResponder(note);
  YrDialogManager::queueResponder([&](YrDialogManager& d) {
    note(d);
    d.press(YrDialogManager::Cancel);
  });
  select({"a", "big"});
  press("arrowButton");
  EXPECT_EQ((Names{"Searching, Please wait...\n100 files added",
                   "Searching, Please wait...\n200 files added",
                   "Searching, Please wait...\n300 files added"}),
            progress);
  EXPECT_EQ(Names{}, sourcePaths());
  EXPECT_EQ((Names{"../", "./", "a", "b", "big/", "dir/", "xfile"}), entries());
}

TEST_F(FileListAddTest, RemovalUnderRootSlashUnmarks) {
  ASSERT_TRUE(model->setSourceRoot("/"));
  panel->setBrowsingDirectory(tree.path().c_str());
  model->add({tree.file("a"), tree.file("b")});
  panel->setBrowsingDirectory(nullptr);
  EXPECT_EQ((Names{"../", "./", "*a", "*b", "dir/", "xfile"}), entries());
  model->setSelectedPositions({1});
  model->removeSelected();
  EXPECT_EQ((Names{"../", "./", "a", "*b", "dir/", "xfile"}), entries());
}

TEST_F(FileListAddTest, DoubleClickAndSetCurrentMoveTheBrowser) {
  doubleClick("xfile");
  EXPECT_EQ(tree.path(), panel->browsingDirectory());
  doubleClick("dir/");
  EXPECT_EQ(tree.file("dir"), panel->browsingDirectory());
  doubleClick("../");
  EXPECT_EQ(tree.path(), panel->browsingDirectory());
  doubleClick("../");
  EXPECT_EQ(tree.path(), panel->browsingDirectory());
  EXPECT_EQ(1u, reporter.texts("error").size());

  panel->setCurrent(tree.file("dir/sub/y"));
  EXPECT_EQ(tree.file("dir/sub"), panel->browsingDirectory());
  EXPECT_EQ(Names{"y"}, selected());
  panel->setCurrent(tree.file("dir/gone"));
  EXPECT_EQ(Names{}, selected());
  EXPECT_EQ(Names{tree.file("dir") + "/gone does not exist."}, reporter.texts("log"));
  EXPECT_EQ(1u, reporter.texts("show").size());
}

// The directory chooser comes from the browser's popup menu; OK moves the
// browser to the directory typed into it, Cancel and a window manager's
// Close leave it where it was, and each takes the chooser down.
TEST_F(FileListAddTest, DirectoryChooserAnswers) {
  enum Way { Ok, Cancel, Close };
  struct Case {
    Way way;
    const char* typed;
    const char* expected;
  } cases[] = {
      {Ok, "dir", "dir"},
      {Cancel, "dir/sub", "dir"},
      {Close, ".", "dir"},
      {Ok, "dir/sub", "dir/sub"},
  };
  XtRealizeWidget(shell);
  Widget entry = XtNameToWidget(list(), "*browsingDirectory");
  ASSERT_NE(nullptr, entry);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.typed);
    XtCallCallbacks(entry, XmNactivateCallback, nullptr);
    Widget chooser = XtNameToWidget(panel->baseWidget(), "*fileListBrowser");
    ASSERT_NE(nullptr, chooser);
    ASSERT_TRUE(XtIsManaged(chooser));
    char* title = nullptr;
    XtVaGetValues(XtParent(chooser), XmNtitle, &title, nullptr);
    EXPECT_STREQ("Browsing Directory", title);
    EXPECT_FALSE(XtIsManaged(XmFileSelectionBoxGetChild(chooser, XmDIALOG_HELP_BUTTON)));
    XmTextFieldSetString(XmFileSelectionBoxGetChild(chooser, XmDIALOG_TEXT),
                         const_cast<char*>(tree.file(c.typed).c_str()));
    if (c.way == Close) {
      UiTestApp::flush();
      UiTestApp::sendWindowClose(XtParent(chooser));
    } else {
      Widget button =
          XmFileSelectionBoxGetChild(chooser, c.way == Ok ? XmDIALOG_OK_BUTTON : XmDIALOG_CANCEL_BUTTON);
      XEvent event{};
      event.xbutton.type = ButtonRelease;
      event.xbutton.display = XtDisplayOfObject(button);
      event.xbutton.window = XtWindowOfObject(button);
      XmPushButtonCallbackStruct cbs{};
      cbs.reason = XmCR_ACTIVATE;
      cbs.event = &event;
      cbs.click_count = 1;
      XtCallCallbacks(button, XmNactivateCallback, &cbs);
    }
    for (int i = 0; i < 100 && XtIsManaged(chooser); i++) {
      UiTestApp::flush();
      if (XtIsManaged(chooser)) usleep(10000);
    }
    EXPECT_FALSE(XtIsManaged(chooser));
    EXPECT_EQ(tree.file(c.expected), panel->browsingDirectory());
  }
  EXPECT_EQ(0u, reporter.texts("error").size());
}

}  // namespace
