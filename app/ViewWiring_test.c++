// The panels of the real main window working on one idb and one spec: the
// menus open both, the tags, permissions and node detail panels edit the
// file list's records, the build panel runs a program on the saved files and
// Create Patch turns a selection into a patch product.  Everything goes
// through the widgets' callbacks.
#include <gtest/gtest.h>

#include <Xm/Label.h>
#include <Xm/List.h>
#include <Xm/Text.h>
#include <Xm/TextF.h>
#include <Xm/ToggleB.h>
#include <sys/stat.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/MainWindow.h"
#include "app/MyApp.h"
#include "app/PatchDialog.h"
#include "app/View.h"
#include "ov/OvList.h"
#include "app/ui/LayoutChecks.h"
#include "build/Generate.h"
#include "filelist/FileListAdd.h"
#include "filelist/FileListAttrs.h"
#include "filelist/FileListModel.h"
#include "filelist/FileListPerms.h"
#include "filelist/FileListTags.h"
#include "idb/Idb.h"
#include "spec/SpecDetail.h"
#include "spec/SpecGraph.h"
#include "spec/SpecGraphModel.h"
#include "spec/SpecNode.h"
#include "util/RecordingReporter.h"
#include "util/TempDir.h"
#include "util/UiTestApp.h"
#include "yr/YrDialogManager.h"
#include "yr/YrFileSelectionDialog.h"
#include "yr/YrMenuItem.h"

namespace {

void expire(XtPointer flag, XtIntervalId*) { *static_cast<bool*>(flag) = true; }

// Processes events until done() holds or 10 s have passed.
bool waitFor(const std::function<bool()>& done) {
  XtAppContext context = UiTestApp::context();
  bool expired = false;
  XtIntervalId timer = XtAppAddTimeOut(context, 10000, expire, &expired);
  while (!done() && !expired) XtAppProcessEvent(context, XtIMAll);
  if (!expired) XtRemoveTimeOut(timer);
  return done();
}

// The rows an OvList draws.
std::vector<std::string> listItems(Widget list) {
  std::vector<std::string> out;
  for (int p = 1; p <= OvListItemCount(list); ++p) {
    size_t length = 0;
    const char* row = OvListRowText(list, p, &length);
    out.emplace_back(row, length);
  }
  return out;
}

class ViewWiringTest : public ::testing::Test {
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
    UiTestApp::flush();
    YrDialogManager::setWaitLimit(5000);  // a forgotten answer fails, not hangs
    view = window->view();
  }
  void TearDown() override {
    EXPECT_EQ(0u, YrDialogManager::pendingResponders());
    YrDialogManager::clearResponders();
    YrDialogManager::setWaitLimit(0);
    getTheErrorDialog()->unpost();
    putUserResource(view->baseWidget(), "*buildProgram:");
    window.reset();
    app.reset();
    UiTestApp::flush();
  }

  void choose(const char* path) {
    YrMenuItem* item = window->menuItem(path);
    ASSERT_NE(nullptr, item) << path;
    XmAnyCallbackStruct cbs{};
    cbs.reason = XmCR_ACTIVATE;
    XtCallCallbacks(item->baseWidget(), XmNactivateCallback, &cbs);
  }
  void answerFileDialog(const std::string& file) {
    YrDialogManager::queueResponder([file](YrDialogManager& d) {
      auto& fsb = static_cast<YrFileSelectionDialog&>(d);
      fsb.setSelection(file);
      fsb.press(YrDialogManager::Ok);
    });
  }
  static Widget find(YrComponent* panel, const char* name) {
    return XtNameToWidget(panel->baseWidget(), (std::string("*") + name).c_str());
  }
  static void press(Widget w) {
    ASSERT_NE(nullptr, w);
    XmAnyCallbackStruct cbs{};
    cbs.reason = XmCR_ACTIVATE;
    XtCallCallbacks(w, XmNactivateCallback, &cbs);
    UiTestApp::flush();
  }
  static void type(Widget field, const std::string& text) {
    ASSERT_NE(nullptr, field);
    XmTextFieldSetString(field, const_cast<char*>(text.c_str()));
  }
  static std::string fieldText(Widget field) {
    char* t = XmTextFieldGetString(field);
    std::string out = t ? t : "";
    XtFree(t);
    return out;
  }
  Widget fileListWidget() { return XtNameToWidget(view->baseWidget(), "*FileList*fileList"); }
  // The user selects these entries of the file list (1-based).
  // A click on the first, Ctrl-clicks on the others, as the list reports
  // them.
  void selectEntries(std::vector<int> positions) {
    for (size_t i = 0; i < positions.size(); ++i) {
      OvListCallbackStruct cbs{};
      cbs.reason = XmCR_EXTENDED_SELECT;
      cbs.gesture = i == 0 ? OvLIST_SELECT_ONE : OvLIST_TOGGLE;
      cbs.position = cbs.first = cbs.last = positions[i];
      XtCallCallbacks(fileListWidget(), OvNgestureCallback, &cbs);
    }
  }
  void doubleClickEntry(int position) {
    OvListCallbackStruct cbs{};
    cbs.reason = XmCR_DEFAULT_ACTION;
    cbs.position = cbs.first = cbs.last = position;
    XtCallCallbacks(fileListWidget(), XmNdefaultActionCallback, &cbs);
  }
  void clickNode(const std::string& tag) {
    SpecNode* node = view->specGraph()->model().getNode(tag);
    ASSERT_NE(nullptr, node) << tag;
    press(view->specGraph()->widgetOf(node));
  }
  std::vector<std::string> recordTags() {
    std::vector<std::string> out;
    const Idb& idb = view->fileList()->idb();
    for (int i = 0; i < idb.count(); ++i) out.emplace_back(idb[i]->tag());
    return out;
  }

  std::unique_ptr<MyApp> app;
  std::unique_ptr<MainWindow> window;
  View* view = nullptr;
};

TEST_F(ViewWiringTest, PanelsEditOneIdbAndSpecFromOpenToBuildAndPatch) {
  TempDir dir;
  for (const char* f : {"src/a", "src/b", "src/c"}) dir.write(f, f);
  {
    RecordingReporter reporter;
    SpecGraphModel spec(&reporter);
    spec.defaultGraph();
    ASSERT_TRUE(spec.save(dir.file("p.spec").c_str()).ok());
  }
  const std::string idbFile = dir.write("p.idb",
                                        "f 0644 root sys usr/bin/a src/a my_product.sw.base\n"
                                        "f 0644 root sys usr/bin/b src/b my_product.sw.base\n"
                                        "f 0644 root sys usr/man/c src/c my_product.man.manpages postop(true)\n");
  FileListModel& fileList = *view->fileList();
  ASSERT_TRUE(fileList.setSourceRoot(dir.path()));

  // File > Open > Both: the spec, then the idb.
  answerFileDialog(dir.file("p.spec"));
  answerFileDialog(idbFile);
  choose("File/Open/Both");
  ASSERT_EQ(3, fileList.idb().count());
  EXPECT_EQ("Spec File:  " + dir.file("p.spec"), view->specGraph()->specFileLabel());
  EXPECT_EQ("Spec File:  " + dir.file("p.spec"), labelText(find(view->buildPanel(), "label")));
  YrMenuItem* createPatch = window->menuItem("File/Create Patch...");
  ASSERT_NE(nullptr, createPatch);
  // Only the hierarchy's own edits make Create Patch available.
  EXPECT_FALSE(createPatch->isActive());

  // Tag Files: two entries selected, a tag chosen, Assign.
  view->setView(1);
  selectEntries({1, 2});
  FileListTags* tags = view->tagsPanel();
  std::vector<std::string> offered = tags->items();
  int manpages = 0;
  for (size_t i = 0; i < offered.size(); ++i)
    if (offered[i] == "my_product.man.manpages") manpages = static_cast<int>(i) + 1;
  ASSERT_NE(0, manpages) << "the hierarchy's tags are offered";
  XmListSelectPos(tags->tagsList(), manpages, True);
  press(find(tags, "arrowButton"));
  EXPECT_EQ((std::vector<std::string>{"my_product.man.manpages", "my_product.man.manpages",
                                      "my_product.man.manpages"}),
            recordTags());
  EXPECT_EQ((std::vector<std::string>{"my_product.man.manpages src/a",
                                      "my_product.man.manpages src/b",
                                      "my_product.man.manpages src/c"}),
            listItems(fileListWidget()));
  EXPECT_FALSE(getTheErrorDialog()->isPosted());

  // A double click hands the entry to every panel.
  XmListDeselectAllItems(tags->tagsList());
  doubleClickEntry(3);
  EXPECT_EQ("my_product.man.manpages", tags->getCurrent());
  EXPECT_EQ(dir.file("src"), view->addPanel()->browsingDirectory());
  EXPECT_EQ("0644", fieldText(find(view->permsPanel(), "modeTextField")));
  EXPECT_EQ("usr/man", fieldText(find(view->permsPanel(), "destDirTextField")));
  char* postop = XmTextGetString(find(view->attrsPanel(), "attrsPostOpText"));
  EXPECT_STREQ("true", postop);
  XtFree(postop);

  // Edit Permissions & Destinations: the double-clicked entry gets a new
  // mode; the list follows.
  view->setView(2);
  selectEntries({3});
  type(find(view->permsPanel(), "modeTextField"), "0755");
  press(find(view->permsPanel(), "assignArrowButton"));
  EXPECT_EQ(0755u, fileList.idb()[2]->mode());
  EXPECT_EQ(0644u, fileList.idb()[0]->mode());
  EXPECT_EQ("f 0755 root sys usr/man/c", listItems(fileListWidget()).at(2));

  // Add Attributes: the same entry gets noshare, the others keep theirs.
  view->setView(3);
  selectEntries({3});
  XmToggleButtonSetState(find(view->attrsPanel(), "attrsNoShareToggleButton"), True, False);
  press(find(view->attrsPanel(), "attrsAssignArrowButton"));
  auto hasNoshare = [&](int i) {
    std::vector<std::string> attrs = fileList.idb()[i]->attrs();
    return std::find(attrs.begin(), attrs.end(), "noshare") != attrs.end();
  };
  EXPECT_TRUE(hasNoshare(2));
  EXPECT_FALSE(hasNoshare(0));

  // Create Product Hierarchy: renaming the image retags its files.
  view->setView(0);
  clickNode("my_product.man");
  type(find(view->specDetail(), "imageNameTextField"), "docs");
  press(find(view->specDetail(), "applyArrowButton"));
  EXPECT_EQ((std::vector<std::string>{"my_product.docs.manpages", "my_product.docs.manpages",
                                      "my_product.docs.manpages"}),
            recordTags());
  offered = tags->items();
  EXPECT_NE(offered.end(), std::find(offered.begin(), offered.end(), "my_product.docs.manpages"));
  EXPECT_EQ(offered.end(), std::find(offered.begin(), offered.end(), "my_product.man.manpages"));
  // An image added under the product: now there is something to patch.
  clickNode("my_product");
  press(view->specGraph()->addButton());
  EXPECT_TRUE(createPatch->isActive());

  // Build Product: both files saved, the program's output in the log.
  const std::string program = dir.write("forge", "#!/bin/sh\necho \"forged $*\"\n");
  ASSERT_EQ(0, chmod(program.c_str(), 0755));
  putUserResource(view->baseWidget(), ("*buildProgram: " + program).c_str());
  view->setView(4);
  view->buildPanel()->setDistDir(dir.file("dist"));
  press(find(view->buildPanel(), "allPushButton"));
  ASSERT_TRUE(waitFor([&] { return view->messages().find("\nDone.") != std::string::npos; }))
      << view->messages();
  const std::string log = view->messages();
  EXPECT_NE(std::string::npos, log.find("\nforged ")) << log;
  EXPECT_NE(std::string::npos, log.find("-idb " + idbFile)) << log;
  EXPECT_NE(std::string::npos, log.find("-spec " + dir.file("p.spec"))) << log;
  EXPECT_NE(std::string::npos, dir.read("p.idb").find("f 0755 root sys usr/man/c src/c my_product.docs.manpages postop(true)"))
      << dir.read("p.idb");
  EXPECT_NE(std::string::npos, dir.read("p.spec").find("docs")) << dir.read("p.spec");
  EXPECT_FALSE(fileList.modified());

  // Create Patch: one entry kept, filed under the new patch product.
  choose("File/Create Patch...");
  PatchDialog* dialog = window->patchDialog();
  ASSERT_NE(nullptr, dialog);
  ASSERT_TRUE(dialog->isPosted());
  EXPECT_EQ(3u, listItems(dialog->list()).size());
  const std::string patch = fieldText(dialog->nameField());
  ASSERT_EQ(0u, patch.rfind("my_product_patch", 0)) << patch;
  {
    OvListCallbackStruct click{};  // what the list reports for a click on row 3
    click.reason = XmCR_EXTENDED_SELECT;
    click.gesture = OvLIST_SELECT_ONE;
    click.position = click.first = click.last = 3;
    XtCallCallbacks(dialog->list(), OvNgestureCallback, &click);
  }
  dialog->press(YrDialogManager::Ok);
  EXPECT_FALSE(dialog->isPosted());
  ASSERT_EQ(1, fileList.idb().count());
  EXPECT_EQ("src/c", fileList.idb()[0]->srcpath());
  EXPECT_EQ((std::vector<std::string>{patch + ".my_product_docs.manpages"}), recordTags());
  EXPECT_EQ(patch, view->specGraph()->model().getProductName());
  EXPECT_EQ(1, view->specGraph()->model().rootCount());
  EXPECT_EQ(1u, listItems(fileListWidget()).size());
}

}  // namespace

namespace {

struct Rect {
  int left, top, right, bottom;
};

// Where a widget lies on the screen.
Rect screenRect(Widget w) {
  Position x = 0, y = 0;
  XtTranslateCoords(w, 0, 0, &x, &y);
  Dimension width = 0, height = 0;
  XtVaGetValues(w, XmNwidth, &width, XmNheight, &height, nullptr);
  return {x, y, x + width, y + height};
}

// At the window's default size a subsystem's details show every control,
// mapping and rules with several lines each, and the attributes panel needs
// no horizontal scrolling.  (Both were cut off at the window's edge, and
// the layout tests, which check names and parents, could not see it.)
TEST_F(ViewWiringTest, PanelsFitTheDefaultWindow) {
  clickNode("my_product.sw.base");
  UiTestApp::flush();
  Rect window = screenRect(view->baseWidget());
  for (const char* name : {"subsysNameTextField", "subsysIdTextField", "patchToggleButton",
                           "mappingText", "rulesText", "prereqPushButton", "incompatPushButton",
                           "replacesPushButton", "applyArrowButton"}) {
    Widget w = find(view->specDetail(), name);
    ASSERT_NE(nullptr, w) << name;
    EXPECT_TRUE(XtIsManaged(w) && XtIsRealized(w)) << name;
    Rect r = screenRect(w);
    EXPECT_LE(r.bottom, window.bottom) << name;
    EXPECT_LE(r.right, window.right) << name;
  }
  // A line of the text font is about 17 pixels.
  EXPECT_GE(screenRect(find(view->specDetail(), "mappingText")).bottom -
                screenRect(find(view->specDetail(), "mappingText")).top,
            40);
  EXPECT_GE(screenRect(find(view->specDetail(), "rulesText")).bottom -
                screenRect(find(view->specDetail(), "rulesText")).top,
            60);

  view->setView(3);
  UiTestApp::flush();
  Widget scrolled = XtNameToWidget(view->baseWidget(), "*FileListAttrs.scrolledWindow");
  ASSERT_NE(nullptr, scrolled);
  Widget clip = nullptr;
  XtVaGetValues(scrolled, XmNclipWindow, &clip, nullptr);
  Dimension clipWidth = 0, contentWidth = 0;
  XtVaGetValues(clip, XmNwidth, &clipWidth, nullptr);
  XtVaGetValues(XtNameToWidget(scrolled, "*rowColumn"), XmNwidth, &contentWidth, nullptr);
  EXPECT_LE(contentWidth, clipWidth);
}

}  // namespace
