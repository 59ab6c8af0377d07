#include <gtest/gtest.h>

#include <Xm/RowColumn.h>
#include <Xm/Text.h>
#include <Xm/Xm.h>

#include <sys/stat.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/TabPixmaps.h"
#include "app/View.h"
#include "app/ui/LayoutChecks.h"
#include "build/DistDirCheck.h"
#include "build/Generate.h"
#include "filelist/FileListAdd.h"
#include "filelist/FileListAttrs.h"
#include "filelist/FileListModel.h"
#include "filelist/FileListPerms.h"
#include "filelist/IdbDocument.h"
#include "spec/SpecDocument.h"
#include "spec/SpecGraph.h"
#include "spec/SpecGraphModel.h"
#include "util/RecordingReporter.h"
#include "util/TempDir.h"
#include "util/UiTestApp.h"
#include "yr/YrApp.h"
#include "yr/YrDialogManager.h"
#include "yr/YrMenu.h"
#include "yr/YrTabPanel.h"

namespace {

// An idb and a spec that only count what is asked of them.
class CountingIdb : public IdbDocument {
 public:
  void clear() override {}
  int abandonChanges() override { return 1; }
  int open(const char*) override { return 1; }
  int showOpenBrowser() override { return 1; }
  int showReadBrowser() override { return 1; }
  int showSaveBrowser() override { return 1; }
  int save(const char*) override { return 1; }
  int recordCount() override { return records; }
  void refresh() override { ++refreshes; }
  int records = 0;
  int refreshes = 0;
};

class FixedSpec : public SpecDocument {
 public:
  int abandonChanges() override { return 1; }
  int open(const char*) override { return 1; }
  int showOpenBrowser() override { return 1; }
  int showReadBrowser() override { return 1; }
  int showSaveBrowser() override { return 1; }
  int save(const char*) override { return 1; }
  std::string getProductName() override { return "product"; }
  bool subsystemExists() override { return subsystem; }
  bool subsystem = false;
};

class ViewTest : public ::testing::Test {
 protected:
  void SetUp() override {
    app = std::make_unique<YrApp>("Tamblin", UiTestApp::context(), UiTestApp::display());
    shell = UiTestApp::newShell("viewTestShell");
  }
  void TearDown() override {
    view.reset();
    XtDestroyWidget(shell);
    app.reset();
    UiTestApp::flush();
  }
  View& makeView() {
    view = std::make_unique<View>("view", shell);
    view->setIdbDocument(&idb);
    view->setSpecDocument(&spec);
    view->show();
    XtRealizeWidget(shell);
    XtMapWidget(shell);
    UiTestApp::flush();
    return *view;
  }
  // The top-most of the given sibling widgets, by their windows' stacking.
  static Widget topMost(const std::vector<Widget>& siblings) {
    Window root, parent, *children = nullptr;
    unsigned int n = 0;
    XQueryTree(UiTestApp::display(), XtWindow(siblings[0]), &root, &parent, &children, &n);
    XFree(children);
    XQueryTree(UiTestApp::display(), parent, &root, &parent, &children, &n);
    Widget top = nullptr;
    for (unsigned int i = 0; i < n; ++i)  // bottom to top
      for (Widget w : siblings)
        if (XtWindow(w) == children[i]) top = w;
    XFree(children);
    return top;
  }
  Pixmap tabPixmap(int index) {
    Pixmap p = 0;
    XtVaGetValues(view->tabPanel()->tab(index), XmNlabelPixmap, &p, nullptr);
    return p;
  }

  std::unique_ptr<YrApp> app;
  Widget shell = nullptr;
  std::unique_ptr<View> view;
  CountingIdb idb;
  FixedSpec spec;
};

// A menu bar of its own, for the menu objects the main window would hand
// over.
struct MenuBar {
  MenuBar() {
    shell = UiTestApp::newShell("menuShell");
    bar = XmCreateMenuBar(shell, const_cast<char*>("menuBar"), nullptr, 0);
    XtManageChild(bar);
  }
  ~MenuBar() {
    XtDestroyWidget(shell);
    pane.reset();
  }
  YrMenu& add(const char* label) {
    pane = std::make_unique<YrMenu>(bar, label);
    return *pane;
  }
  Widget shell, bar;
  std::unique_ptr<YrMenu> pane;
};

void press(Widget w) {
  XmAnyCallbackStruct cbs{};
  cbs.reason = XmCR_ACTIVATE;
  XtCallCallbacks(w, XmNactivateCallback, &cbs);
}

TEST_F(ViewTest, ChoosingATabRaisesItsBodiesAndRefreshesTheFileList) {
  View& v = makeView();
  std::vector<Widget> bodies;
  for (int i = 0; i < View::kNumViews; ++i) bodies.push_back(v.leftBody(i));
  Widget rightForm = XtNameToWidget(v.baseWidget(), "*rightForm");
  Widget rightFrame = XtNameToWidget(v.baseWidget(), "*rightFrame");
  // Pixmaps of the normal state, as the view shows them before any choice.
  std::vector<Pixmap> normal;
  for (int i = 0; i < View::kNumViews; ++i) normal.push_back(tabPixmap(i));

  struct Case {
    int view;
    const char* body;
    Widget right;
    int refreshes;  // total so far
  } cases[] = {
      {1, "filesBody", rightFrame, 1}, {2, "permsBody", rightFrame, 2},
      {0, "specBody", rightForm, 2},   {3, "attrsBody", rightFrame, 3},
      {4, "generateBody", rightFrame, 4}, {4, "generateBody", rightFrame, 5},
      {0, "specBody", rightForm, 5},
  };
  for (const Case& c : cases) {
    press(v.tabPanel()->tab(c.view));  // as the user's click would
    UiTestApp::flush();
    EXPECT_EQ(c.view, v.currentView());
    EXPECT_STREQ(c.body, XtName(topMost(bodies))) << c.view;
    EXPECT_EQ(c.right, topMost({rightForm, rightFrame})) << c.view;
    EXPECT_EQ(c.refreshes, idb.refreshes) << c.view;
    for (int i = 0; i < View::kNumViews; ++i) {
      if (i == c.view)
        EXPECT_NE(normal[i], tabPixmap(i)) << "tab " << i << " should look selected";
      else
        EXPECT_EQ(normal[i], tabPixmap(i)) << "tab " << i << " should look normal";
    }
  }
}

TEST_F(ViewTest, EveryPanelIsShownInItsOwnBody) {
  View& v = makeView();
  struct Case {
    const char* panel;
    const char* body;
  } cases[] = {
      {"FileList", "rightFrame"},     {"FileListTags", "tagsBody"},
      {"SpecGraph", "specBody"},      {"SpecDetail", "rightForm"},
      {"FileListAdd", "addBody"},     {"FileListPerms", "permsBody"},
      {"FileListAttrs", "attrsBody"}, {"Generate", "generateBody"},
  };
  for (const Case& c : cases) {
    Widget panel = XtNameToWidget(v.baseWidget(), (std::string("*") + c.panel).c_str());
    ASSERT_NE(nullptr, panel) << c.panel;
    EXPECT_STREQ(c.body, XtName(XtParent(panel))) << c.panel;
    EXPECT_TRUE(XtIsManaged(panel)) << c.panel;
  }
}

// The browser and the tag list share the "Tag Files" tab; at the window's
// own size neither may be squeezed down to a row or two.
TEST_F(ViewTest, TagListAndBrowserBothKeepSeveralRows) {
  View& v = makeView();
  for (const char* name : {"*tagsList", "*filesList"}) {
    Widget list = XtNameToWidget(v.baseWidget(), name);
    ASSERT_NE(nullptr, list) << name;
    int rows = 0;
    XtVaGetValues(list, XmNvisibleItemCount, &rows, nullptr);
    EXPECT_GE(rows, 4) << name;
  }
}

TEST_F(ViewTest, MessageLogColourComesFromTheReadOnlyBackgroundResource) {
  struct Case {
    const char* resource;  // null: the default
    const char* colour;
  } cases[] = {{nullptr, "yellow"}, {"*readOnlyBackground: red", "red"}};
  for (const Case& c : cases) {
    XrmDatabase db = XtDatabase(UiTestApp::display());
    if (c.resource) XrmPutLineResource(&db, c.resource);
    View& v = makeView();
    XColor expected, exact;
    Colormap map = DefaultColormap(UiTestApp::display(), DefaultScreen(UiTestApp::display()));
    ASSERT_TRUE(XAllocNamedColor(UiTestApp::display(), map, c.colour, &expected, &exact));
    Pixel background = 0;
    XtVaGetValues(v.messageText(), XmNbackground, &background, nullptr);
    EXPECT_EQ(expected.pixel, background) << c.colour;
    view.reset();
    if (c.resource) XrmPutLineResource(&db, "*readOnlyBackground: yellow");
  }
}

TEST_F(ViewTest, UnknownViewIsReportedAfterDeselectingEveryTab) {
  View& v = makeView();
  v.setView(3);
  Pixmap selected3 = tabPixmap(3);
  testing::internal::CaptureStderr();
  v.setView(5);
  EXPECT_EQ("View::setView\tUnrecognized view: 5\n", testing::internal::GetCapturedStderr());
  EXPECT_EQ(3, v.currentView());
  EXPECT_NE(selected3, tabPixmap(3));  // deselected all the same
  int refreshes = idb.refreshes;
  v.initialView();
  EXPECT_EQ(0, v.currentView());
  EXPECT_EQ(refreshes, idb.refreshes);  // view 0 does not refresh the list
}

TEST_F(ViewTest, MessageLogSeparatesLinesWithOneNewline) {
  struct Case {
    std::vector<const char*> messages;
    std::string log;
  } cases[] = {
      {{}, ""},
      {{""}, ""},
      {{"Opened idb 'a.idb'."}, "Opened idb 'a.idb'."},
      {{"", "first", "", "second"}, "first\nsecond"},
      {{"one\ntwo", "three"}, "one\ntwo\nthree"},
  };
  for (const Case& c : cases) {
    View& v = makeView();
    for (const char* m : c.messages) v.logMessage(m);
    EXPECT_EQ(c.log, v.messages());
    view.reset();
  }
}

TEST_F(ViewTest, MessageAreaAndTogglesFollowShowAndHide) {
  View& v = makeView();
  MenuBar bar;
  YrMenu& pane = bar.add("View");
  YrMenuToggle* messages = pane.addToggle("Show Messages", nullptr, nullptr);
  YrMenuToggle* names = pane.addToggle("Show Orvex Board Names", nullptr, nullptr);
  v.hideMessages();  // without toggles: only the area
  EXPECT_FALSE(v.messagesShown());
  v.setShowMessagesToggle(messages);
  v.setShowInternalNamesToggle(names);
  v.showMessages();
  EXPECT_TRUE(v.messagesShown());
  EXPECT_TRUE(messages->state());
  v.showMessages();  // already shown: stays so
  EXPECT_TRUE(v.messagesShown());
  v.hideMessages();
  EXPECT_FALSE(v.messagesShown());
  EXPECT_FALSE(messages->state());
  v.showInternalNames();
  EXPECT_TRUE(names->state());
  v.hideInternalNames();
  EXPECT_FALSE(names->state());
  view.reset();  // before the pane's shell goes
}

TEST_F(ViewTest, CreatePatchNeedsRecordsAndASubsystem) {
  View& v = makeView();
  MenuBar bar;
  YrMenu& pane = bar.add("File");
  YrMenuItem* patch = pane.addItem("Create Patch...", nullptr, nullptr);
  v.setCreatePatchItem(patch);
  struct Case {
    int records;
    bool subsystem;
    bool active;
  } cases[] = {{0, false, false}, {3, false, false}, {0, true, false}, {3, true, true}, {1, false, false}};
  for (const Case& c : cases) {
    idb.records = c.records;
    spec.subsystem = c.subsystem;
    v.refreshCreatePatchMenuAction();
    EXPECT_EQ(c.active, patch->isActive()) << c.records << " " << c.subsystem;
  }
  view.reset();
}

TEST_F(ViewTest, TabImagesAre130By33AndAnyBrokenOneMeansTextTabs) {
  View& v = makeView();
  EXPECT_FALSE(v.usesTextLabels());
  for (int i = 0; i < View::kNumViews; ++i) {
    v.selectTab(i);
    for (Pixmap p : {tabPixmap(i), (v.deselectAllTabs(), tabPixmap(i))}) {
      Window root;
      int x, y;
      unsigned int w = 0, h = 0, border, depth;
      ASSERT_TRUE(XGetGeometry(UiTestApp::display(), p, &root, &x, &y, &w, &h, &border, &depth));
      EXPECT_EQ(130u, w);
      EXPECT_EQ(33u, h);
    }
  }
  view.reset();

  static const char* const broken[] = {"not an image", nullptr};
  const char* const* normal[5] = {normalTabXpm[0], normalTabXpm[1], broken, normalTabXpm[3],
                                  normalTabXpm[4]};
  View::useTabImages(normal, nullptr);
  View& t = makeView();
  View::useTabImages(nullptr, nullptr);
  EXPECT_TRUE(t.usesTextLabels());
  t.setView(2);
  const char* labels[] = {"Create Product Hierarchy", "Tag Files", "Edit Permissions & Destinations",
                          "Add Attributes", "Build Product"};
  for (int i = 0; i < View::kNumViews; ++i) {
    unsigned char type = 0;
    XmString s = nullptr;
    XtVaGetValues(t.tabPanel()->tab(i), XmNlabelType, &type, XmNlabelString, &s, nullptr);
    char* text = static_cast<char*>(
        XmStringUnparse(s, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
    EXPECT_EQ(XmSTRING, type);
    EXPECT_STREQ(labels[i], text);
    XtFree(text);
    XmStringFree(s);
  }
}

TEST_F(ViewTest, ReporterWritesTheLogAndUsesTheSharedDialogs) {
  View& v = makeView();
  Reporter& r = v.reporter();
  r.logMessage("Saved idb 'x.idb'.");
  v.hideMessages();
  r.showMessages();
  EXPECT_TRUE(v.messagesShown());
  EXPECT_EQ("Saved idb 'x.idb'.", v.messages());
  r.error("Source Root '/nope' is not a directory.");
  EXPECT_TRUE(getTheErrorDialog()->isPosted());
  EXPECT_EQ("Source Root '/nope' is not a directory.", getTheErrorDialog()->message());
  getTheErrorDialog()->press(YrDialogManager::Ok);
  r.warning("'x' is not a regular file.\nTry again.");
  EXPECT_EQ("'x' is not a regular file.\nTry again.", getTheWarningDialog()->message());
  getTheWarningDialog()->press(YrDialogManager::Ok);
  for (YrDialogManager::Answer a : {YrDialogManager::Ok, YrDialogManager::Cancel}) {
    YrDialogManager::queueResponder([a](YrDialogManager& d) { d.press(a); });
    EXPECT_EQ(a == YrDialogManager::Ok, r.question("Abandon changes to idb file?\n"));
  }
}

TEST_F(ViewTest, FilePanelsConnectedAndBoardNamesFollowTheMenu) {
  View& v = makeView();
  ASSERT_NE(nullptr, v.addPanel());
  ASSERT_NE(nullptr, v.attrsPanel());
  Widget cpuBoards = XtNameToWidget(v.attrsPanel()->baseWidget(), "*attrsCpuBoardRowColumn");
  ASSERT_NE(nullptr, cpuBoards);
  EXPECT_FALSE(XtIsManaged(cpuBoards));  // hidden from the start
  v.showInternalNames();
  EXPECT_TRUE(XtIsManaged(cpuBoards));
  v.hideInternalNames();
  EXPECT_FALSE(XtIsManaged(cpuBoards));

  // Connected, the panels follow the file list: the browser moves into the
  // source root and the permissions panel shows it.
  TempDir tree;
  tree.write("f", "");
  RecordingReporter reporter;
  FileListModel model(reporter);
  ASSERT_TRUE(model.setSourceRoot(tree.path()));
  v.connectFileList(model);
  EXPECT_EQ(tree.path(), v.addPanel()->browsingDirectory());
  Widget sourceRoot = XtNameToWidget(v.permsPanel()->baseWidget(), "*sourceRootTextField");
  char* shown = XmTextGetString(sourceRoot);
  EXPECT_EQ(tree.path(), std::string(shown));
  XtFree(shown);
  model.setSourceRoot("/");
  EXPECT_EQ(tree.path(), v.addPanel()->browsingDirectory());  // still inside: stays
  model.setAddFilesPartner(nullptr);
  model.setPermsPartner(nullptr);
  model.setAttrsPartner(nullptr);
}

TEST_F(ViewTest, TheBuildPanelFollowsTheHierarchyFromTheStart) {
  View& v = makeView();
  EXPECT_EQ(v.specGraph()->specFileLabel(),
            labelText(findWidget(v.buildPanel()->baseWidget(), "label")));

  // The hierarchy asks the build panel where the distribution goes and
  // will not save the spec there.
  TempDir dist;
  v.buildPanel()->setDistDir(dist.path());
  const std::string spec = dist.file("p.spec");
  Outcome refusal = checkDistDir(DistDirUse::Save, spec, dist.path());
  ASSERT_FALSE(refusal.ok());
  EXPECT_FALSE(v.specGraph()->model().save(spec.c_str()).ok());
  EXPECT_TRUE(getTheErrorDialog()->isPosted());
  EXPECT_EQ(refusal.message(), getTheErrorDialog()->message());
  getTheErrorDialog()->press(YrDialogManager::Ok);
  struct stat st;
  EXPECT_NE(0, stat(spec.c_str(), &st));
}

}  // namespace
