// The File menu's Create Patch entry and the Help menu, on the real window.
#include <gtest/gtest.h>

#include <Xm/List.h>
#include <Xm/RowColumn.h>
#include <Xm/TextF.h>

#include <memory>
#include <string>

#include "app/MainWindow.h"
#include "app/MyApp.h"
#include "app/PatchDialog.h"
#include "ov/OvList.h"
#include "app/View.h"
#include "build/Generate.h"
#include "filelist/FileListModel.h"
#include "idb/Idb.h"
#include "spec/SpecGraph.h"
#include "spec/SpecGraphModel.h"
#include "help/HelpClient.h"
#include "util/RecordingReporter.h"
#include "util/TempDir.h"
#include "util/UiTestApp.h"
#include "yr/YrDialogManager.h"
#include "yr/YrMenuItem.h"

namespace {

class MainWindowMenusTest : public ::testing::Test {
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
  }
  void TearDown() override {
    window.reset();
    app.reset();
    if (server) XDestroyWindow(UiTestApp::display(), server);
    UiTestApp::flush();
  }
  void choose(const char* path) {
    YrMenuItem* item = window->menuItem(path);
    ASSERT_NE(nullptr, item) << path;
    XmAnyCallbackStruct cbs{};
    cbs.reason = XmCR_ACTIVATE;
    XtCallCallbacks(item->baseWidget(), XmNactivateCallback, &cbs);
  }

  std::unique_ptr<MyApp> app;
  std::unique_ptr<MainWindow> window;
  Window server = 0;
};

TEST_F(MainWindowMenusTest, CreatePatchPostsANewDialogOverTheIdbAndBuildsThePatch) {
  // The dialog lists the idb of the file list panel and builds the patch
  // in the panel's hierarchy.
  TempDir dir;
  FileListModel& fileList = *window->view()->fileList();
  ASSERT_TRUE(fileList.open(dir.write(
      "p.idb", "f 0644 root sys a src/a my_product.sw.base\nf 0644 root sys b src/b my_product.man.manpages\n")).ok());
  choose("File/Create Patch...");
  PatchDialog* first = window->patchDialog();
  ASSERT_NE(nullptr, first);
  EXPECT_TRUE(first->isPosted());
  EXPECT_EQ(2, OvListItemCount(first->list()));
  first->unpost();

  // A new dialog each time.
  choose("File/Create Patch...");
  PatchDialog* dialog = window->patchDialog();
  ASSERT_TRUE(dialog->isPosted());
  char* proposed = XmTextFieldGetString(dialog->nameField());
  const std::string patch = proposed;
  XtFree(proposed);
  EXPECT_EQ(0u, patch.rfind("my_product_patch", 0)) << patch;
  OvListCallbackStruct click{};  // what the list reports for a click on row 2
  click.reason = XmCR_EXTENDED_SELECT;
  click.gesture = OvLIST_SELECT_ONE;
  click.position = click.first = click.last = 2;
  XtCallCallbacks(dialog->list(), OvNgestureCallback, &click);
  dialog->press(YrDialogManager::Ok);
  EXPECT_FALSE(dialog->isPosted());

  ASSERT_EQ(1, fileList.idb().count());
  const idb& kept = *fileList.idb()[0];
  EXPECT_EQ("src/b", kept.srcpath());
  const std::string tag(kept.tag());
  EXPECT_EQ(patch + ".my_product_man.manpages", tag);
  SpecGraphModel& graph = window->view()->specGraph()->model();
  EXPECT_EQ(patch, graph.getProductName());
  EXPECT_EQ(1, graph.rootCount());
  EXPECT_NE(nullptr, graph.getNode(tag));
}

TEST_F(MainWindowMenusTest, HelpMenuAtTheRightSendsIndexAndContextRequests) {
  Widget helpCascade = nullptr;
  XtVaGetValues(window->menuBar(), XmNmenuHelpWidget, &helpCascade, nullptr);
  ASSERT_NE(nullptr, helpCascade);
  ASSERT_NE(nullptr, window->menuItem("Help/On Context"));

  Display* display = UiTestApp::display();
  server = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 1, 1, 0, 0, 0);
  XSetSelectionOwner(display, XInternAtom(display, "ORVEX_HELP_SERVER", False), server, CurrentTime);
  choose("Help/Index");
  Atom property = XInternAtom(display, "ORVEX_HELP_REQUEST", False);
  Atom type = 0;
  int format = 0;
  unsigned long items = 0, after = 0;
  unsigned char* data = nullptr;
  ASSERT_EQ(Success, XGetWindowProperty(display, server, property, 0, 4096, True, AnyPropertyType,
                                        &type, &format, &items, &after, &data));
  ASSERT_NE(nullptr, data);
  std::string request(reinterpret_cast<char*>(data));
  XFree(data);
  EXPECT_EQ("client=\"tamblin\" command=\"list\" separator=\";\" book=\"Tamblin\" title=\"tamblin\"",
            request);

  // Context help names the widget by its path under the window.
  Widget all = XtNameToWidget(window->view()->buildPanel()->baseWidget(), "*allPushButton");
  std::string key = MainWindow::helpKey(all);
  const std::string tail = "leftForm.generateBody.Generate.buttonGrid.allPushButton";
  ASSERT_GE(key.size(), tail.size());
  EXPECT_EQ(tail, key.substr(key.size() - tail.size()));
  EXPECT_EQ(std::string::npos, key.find("tamblin"));
}

}  // namespace
