#include <gtest/gtest.h>

#include <Xm/Label.h>
#include <Xm/TextF.h>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <X11/Xutil.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "app/MainWindow.h"
#include "app/MyApp.h"
#include "app/View.h"
#include "filelist/FileList.h"
#include "filelist/FileListModel.h"
#include "ov/OvList.h"
#include "util/TempDir.h"
#include "util/UiTestApp.h"
#include "yr/YrDialogManager.h"
#include "yr/YrFileSelectionDialog.h"
#include "yr/YrMenuItem.h"

namespace {

const char kThree[] =
    "f 0644 root sys usr/bin/a src/a tool.sw.base\n"
    "f 0755 bin bin usr/bin/b src/b tool.sw.lib config(noupdate)\n"
    "d 0755 root sys usr/lib/c src/c other.sw.base\n";

// The whole main window, driven through its menus, buttons and dialogs.
class FileListTest : public ::testing::Test {
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
    YrDialogManager::setWaitLimit(5000);
    list = dynamic_cast<FileList*>(window->view()->idbDocument());
    ASSERT_NE(nullptr, list);
  }
  void TearDown() override {
    EXPECT_EQ(0u, YrDialogManager::pendingResponders());
    YrDialogManager::clearResponders();
    YrDialogManager::setWaitLimit(0);
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
  // The next file selection dialog picks file (or is cancelled for "").
  void answerFileDialog(const std::string& file, std::string* proposed = nullptr) {
    YrDialogManager::queueResponder([file, proposed](YrDialogManager& d) {
      auto& fsb = static_cast<YrFileSelectionDialog&>(d);
      if (proposed) *proposed = fsb.selection();
      if (file.empty()) return fsb.press(YrDialogManager::Cancel);
      fsb.setSelection(file);
      fsb.press(YrDialogManager::Ok);
    });
  }
  void answerQuestion(bool yes, std::string* asked = nullptr) {
    YrDialogManager::queueResponder([yes, asked](YrDialogManager& d) {
      if (asked) *asked = d.message();
      d.press(yes ? YrDialogManager::Ok : YrDialogManager::Cancel);
    });
  }
  void press(const char* button) {
    Widget w = XtNameToWidget(list->baseWidget(), (std::string("*") + button).c_str());
    ASSERT_NE(nullptr, w) << button;
    XmAnyCallbackStruct cbs{};
    cbs.reason = XmCR_ACTIVATE;
    XtCallCallbacks(w, XmNactivateCallback, &cbs);
  }
  void setView(int view) { window->view()->setView(view); }
  Widget widget(const char* name) {
    return XtNameToWidget(list->baseWidget(), (std::string("*") + name).c_str());
  }
  // The rows as the list draws them.
  std::vector<std::string> lines() {
    Widget w = widget("fileList");
    std::vector<std::string> out;
    for (int p = 1; p <= OvListItemCount(w); ++p) {
      size_t length = 0;
      const char* row = OvListRowText(w, p, &length);
      out.emplace_back(row, length);
    }
    return out;
  }
  // Types expression into the filter field and presses Return.
  void filter(const char* expression) {
    Widget field = widget("selectionTextField");
    XmTextFieldSetString(field, const_cast<char*>(expression));
    XmAnyCallbackStruct cbs{};
    cbs.reason = XmCR_ACTIVATE;
    XtCallCallbacks(field, XmNactivateCallback, &cbs);
  }
  std::string label() {
    XmString s = nullptr;
    XtVaGetValues(widget("label"), XmNlabelString, &s, nullptr);
    char* t = static_cast<char*>(
        XmStringUnparse(s, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
    std::string out = t;
    XtFree(t);
    XmStringFree(s);
    return out;
  }
  std::string lastLog() {
    std::string log = window->view()->messages();
    size_t nl = log.rfind('\n');
    return nl == std::string::npos ? log : log.substr(nl + 1);
  }
  void openThree() {
    answerFileDialog(dir.write("three.idb", kThree));
    choose("File/Open/Idb");
  }

  TempDir dir;
  std::unique_ptr<MyApp> app;
  std::unique_ptr<MainWindow> window;
  FileList* list = nullptr;
};

TEST_F(FileListTest, OpenShowsTheLinesOfEachViewAndTheName) {
  setView(1);
  openThree();
  EXPECT_EQ("Opened idb '" + dir.file("three.idb") + "'.", lastLog());
  EXPECT_EQ("Idb File:  " + dir.file("three.idb"), label());
  using V = std::vector<std::string>;
  struct Case {
    int view;
    V lines;
  } cases[] = {
      {1, {"tool.sw.base src/a", "tool.sw.lib src/b", "other.sw.base src/c"}},
      {2, {"f 0644 root sys usr/bin/a", "f 0755 bin bin usr/bin/b", "d 0755 root sys usr/lib/c"}},
      {3, {"usr/bin/a", "usr/bin/b config(noupdate)", "usr/lib/c"}},
      // The hierarchy view leaves the list as it was.
      {0, {"usr/bin/a", "usr/bin/b config(noupdate)", "usr/lib/c"}},
  };
  for (const Case& c : cases) {
    setView(c.view);
    EXPECT_EQ(c.lines, lines()) << c.view;
  }
}

TEST_F(FileListTest, RefusedOpensChangeNothingAndSayWhy) {
  setView(1);
  openThree();
  std::vector<std::string> before = lines();
  answerFileDialog(dir.mkdir("adir.idb"));
  choose("File/Open/Idb");
  EXPECT_TRUE(getTheWarningDialog()->isPosted());
  EXPECT_EQ("'" + dir.file("adir.idb") + "' is not a regular file.\nTry again.",
            getTheWarningDialog()->message());
  getTheWarningDialog()->press(YrDialogManager::Ok);
  answerFileDialog(dir.file("missing.idb"));
  choose("File/Open/Idb");
  EXPECT_EQ("Couldn't open idb '" + dir.file("missing.idb") + "' (No such file or directory).",
            lastLog());
  EXPECT_TRUE(window->view()->messagesShown());
  answerFileDialog("");  // cancelled
  choose("File/Open/Idb");
  EXPECT_EQ(before, lines());
  EXPECT_EQ("Idb File:  " + dir.file("three.idb"), label());
}

// Stands in for the list as the model's busy indicator and, at the first
// sign of life during the work, covers and uncovers the list with a window
// of its own; the list must be drawn again before the work ends.
class CoverDuringWork : public BusyIndicator {
 public:
  CoverDuringWork(FileList* list, Widget listWidget) : _list(list), _listWidget(listWidget) {}
  void busy(const std::string& message) override { _list->busyIndicator().busy(message); }
  void notBusy() override { _list->busyIndicator().notBusy(); }
  void stillBusy() override {
    if (!_covered) {
      _covered = true;
      Display* d = UiTestApp::display();
      Window root = DefaultRootWindow(d), child;
      int x = 0, y = 0;
      XTranslateCoordinates(d, XtWindow(_listWidget), root, 0, 0, &x, &y, &child);
      XSetWindowAttributes a{};
      a.override_redirect = True;
      a.background_pixel = BlackPixel(d, DefaultScreen(d));
      Window cover = XCreateWindow(d, root, x, y, 400, 300, 0, CopyFromParent, InputOutput,
                                   CopyFromParent, CWOverrideRedirect | CWBackPixel, &a);
      XMapRaised(d, cover);
      XSync(d, False);
      XDestroyWindow(d, cover);
      XSync(d, False);
      inkAfterUncover = ink();
    }
    _list->busyIndicator().stillBusy();
    if (inkAfterRedraw < 0) inkAfterRedraw = ink();
  }
  // Pixels of the first rows' text (not the list's background).
  int ink() {
    Pixel background = 0;
    XtVaGetValues(_listWidget, XmNbackground, &background, nullptr);
    const int h = 3 * OvListRowHeight(_listWidget);
    XImage* image =
        XGetImage(UiTestApp::display(), XtWindow(_listWidget), 10, 6, 120, h, AllPlanes, ZPixmap);
    if (!image) return -1;
    int n = 0;
    for (int y = 0; y < h; y++)
      for (int x = 0; x < 120; x++) n += XGetPixel(image, x, y) != background;
    XDestroyImage(image);
    return n;
  }

  int inkAfterUncover = -1;
  int inkAfterRedraw = -1;

 private:
  FileList* _list;
  Widget _listWidget;
  bool _covered = false;
};

TEST_F(FileListTest, TheListIsDrawnAgainDuringALongOpen) {
  setView(1);
  openThree();
  UiTestApp::flush();
  CoverDuringWork spy(list, widget("fileList"));
  list->model().setBusyIndicator(&spy);
  ASSERT_GT(spy.ink(), 0) << "the rows are drawn to begin with";
  answerFileDialog(dir.write("other.idb", kThree));
  choose("File/Open/Idb");
  list->model().setBusyIndicator(&list->busyIndicator());
  EXPECT_EQ("Opened idb '" + dir.file("other.idb") + "'.", lastLog());
  EXPECT_EQ(0, spy.inkAfterUncover) << "uncovered, the list is blank until it is drawn";
  EXPECT_GT(spy.inkAfterRedraw, 0) << "drawn again before the open ended";
}

TEST_F(FileListTest, AppendAndSaveAsGoThroughTheFileDialog) {
  setView(1);
  openThree();
  std::string proposed;
  answerFileDialog(dir.write("more.idb", "f 0644 root sys usr/bin/d src/d tool.sw.base\n"),
                   &proposed);
  choose("File/Append/Idb");
  EXPECT_EQ(".idb", proposed.substr(proposed.size() - 4));  // "<product>.idb"
  EXPECT_EQ("Appended idb '" + dir.file("more.idb") + "'.", lastLog());
  EXPECT_EQ(4u, lines().size());
  EXPECT_EQ("Idb File:  " + dir.file("three.idb"), label());  // appending keeps the name

  answerFileDialog(dir.file("saved.idb"));
  choose("File/SaveAs/Idb");
  EXPECT_EQ("Saved idb '" + dir.file("saved.idb") + "'.", lastLog());
  EXPECT_EQ("Idb File:  " + dir.file("saved.idb"), label());
  // Saved sorted by destination path.
  EXPECT_EQ(
      "f 0644 root sys usr/bin/a src/a tool.sw.base\n"
      "f 0755 bin bin usr/bin/b src/b tool.sw.lib config(noupdate)\n"
      "f 0644 root sys usr/bin/d src/d tool.sw.base\n"
      "d 0755 root sys usr/lib/c src/c other.sw.base\n",
      dir.read("saved.idb"));
  // Nothing unsaved now: Quit does not ask.
  choose("File/Quit");
  EXPECT_TRUE(app->quitRequested());
}

TEST_F(FileListTest, UnsavedChangesAreOnlyDroppedWithConsent) {
  setView(1);
  openThree();
  press("allPushButton");
  press("removePushButton");
  EXPECT_TRUE(lines().empty());

  std::string asked;
  answerQuestion(false, &asked);
  choose("File/Quit");
  EXPECT_FALSE(app->quitRequested());
  EXPECT_EQ("There have been changes since you last saved.\nAbandon changes to idb file '" +
                dir.file("three.idb") + "'?\n",
            asked);
  answerQuestion(false);
  choose("File/New/Idb");
  EXPECT_EQ("Idb File:  " + dir.file("three.idb"), label());  // kept
  answerQuestion(true);
  choose("File/New/Idb");
  EXPECT_EQ("Idb File:  ", label());
  EXPECT_TRUE(lines().empty());
  // Only opening or saving clears the changed state: Quit still asks.
  answerQuestion(true, &asked);
  choose("File/Quit");
  EXPECT_EQ("There have been changes since you last saved.\nAbandon changes to idb file?\n", asked);
  EXPECT_TRUE(app->quitRequested());
}

TEST_F(FileListTest, FilterSelectsByTheLinesOfTheCurrentView) {
  openThree();
  struct Case {
    int view;
    const char* expression;
    std::vector<int> selected;
  } cases[] = {
      {1, "^tool", {1, 2}},
      {2, "^d", {3}},
      {2, "^tool", {}},  // the same expression, other lines
      {3, "config", {2}},
      {1, "[", {2}},  // does not compile: bell, selection kept
  };
  std::vector<int> previous;
  for (const Case& c : cases) {
    setView(c.view);
    XmTextFieldSetString(widget("selectionTextField"), const_cast<char*>("^$"));
    EXPECT_EQ(previous, list->model().selectedPositions()) << "typing alone selects nothing";
    filter(c.expression);
    previous = c.selected;
    EXPECT_EQ(c.selected, list->listView().selection()) << c.view << " " << c.expression;
    EXPECT_EQ(c.selected, list->model().selectedPositions()) << c.view << " " << c.expression;
  }
  press("allPushButton");
  EXPECT_EQ((std::vector<int>{1, 2, 3}), list->listView().selection());
  press("nonePushButton");
  EXPECT_TRUE(list->listView().selection().empty());
}

TEST_F(FileListTest, UndoTwiceRedoes) {
  setView(1);
  openThree();
  std::vector<std::string> all = lines();
  filter("^other");
  press("removePushButton");
  std::vector<std::string> removed = lines();
  EXPECT_EQ((std::vector<std::string>{"tool.sw.base src/a", "tool.sw.lib src/b"}), removed);
  press("undoPushButton");
  EXPECT_EQ(all, lines());
  press("undoPushButton");
  EXPECT_EQ(removed, lines());
}

TEST_F(FileListTest, TheUsersSelectionInTheListReachesTheModel) {
  setView(1);
  openThree();
  // Click on 1, Ctrl-click on 3, as the list reports them.
  struct Gesture {
    int kind, position;
  } gestures[] = {{OvLIST_SELECT_ONE, 1}, {OvLIST_TOGGLE, 3}};
  for (const Gesture& g : gestures) {
    OvListCallbackStruct cbs{};
    cbs.reason = XmCR_EXTENDED_SELECT;
    cbs.gesture = g.kind;
    cbs.position = cbs.first = cbs.last = g.position;
    XtCallCallbacks(widget("fileList"), OvNgestureCallback, &cbs);
  }
  EXPECT_EQ((std::vector<int>{1, 3}), list->model().selectedPositions());
  EXPECT_EQ((std::vector<int>{1, 3}), list->listView().selection());
  press("removePushButton");
  EXPECT_EQ((std::vector<std::string>{"tool.sw.lib src/b"}), lines());
}

TEST_F(FileListTest, DoubleClickWithSourcesMissingSelectsAndNamesThem) {
  setView(1);
  openThree();  // src/a, src/b, src/c exist under no source root here
  OvListCallbackStruct cbs{};
  cbs.reason = XmCR_DEFAULT_ACTION;
  cbs.position = cbs.first = cbs.last = 2;
  XtCallCallbacks(widget("fileList"), XmNdefaultActionCallback, &cbs);
  EXPECT_TRUE(getTheErrorDialog()->isPosted());
  EXPECT_EQ("No files found under Source Root " + list->model().sourceRoot() + ".",
            getTheErrorDialog()->message());
  getTheErrorDialog()->press(YrDialogManager::Ok);
  EXPECT_EQ((std::vector<int>{1, 2, 3}), list->listView().selection());
}

// The list driven by real X events: xdotool's mouse and keys go through the
// server to the program's windows, and what the list then draws is read
// back from the screen.
class FileListEventsTest : public FileListTest {
 protected:
  void SetUp() override {
    FileListTest::SetUp();
    std::string idb;
    for (int i = 1; i <= 40; ++i) {
      char line[128];
      std::snprintf(line, sizeof line, "f 0644 root sys usr/f%02d src/f%02d tool.sw.%s\n", i, i,
                    i % 2 ? "base" : "lib");
      idb += line;
    }
    setView(1);
    answerFileDialog(dir.write("forty.idb", idb));
    choose("File/Open/Idb");
    settle();
    fileList = widget("fileList");
    ASSERT_EQ(40, OvListItemCount(fileList));
  }

  // Runs xdotool with args on the test's display while the program keeps
  // handling its events, then lets the events it caused arrive.
  void xdo(std::vector<std::string> args) {
    std::vector<char*> argv;
    args.insert(args.begin(), "xdotool");
    for (std::string& a : args) argv.push_back(a.data());
    argv.push_back(nullptr);
    std::string display = std::string("DISPLAY=") + DisplayString(UiTestApp::display());
    char* envp[] = {display.data(), nullptr};
    pid_t pid = 0;
    ASSERT_EQ(0, posix_spawnp(&pid, "xdotool", nullptr, nullptr, argv.data(), envp));
    int status = 0;
    while (waitpid(pid, &status, WNOHANG) == 0) {
      UiTestApp::flush();
      usleep(2000);
    }
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << args[1];
    settle();
  }
  // xdotool's requests may still wait in the server when it has exited;
  // the events they make arrive over a few rounds.
  void settle() {
    for (int i = 0; i < 10; ++i) {
      XSync(UiTestApp::display(), False);
      UiTestApp::flush();
      usleep(10000);
    }
  }
  // Root coordinates of the middle of list row p (visible).
  std::vector<std::string> at(int p) {
    Position x = 0, y = 0;
    int row = p - OvListTopPosition(fileList);
    XtTranslateCoords(fileList, 60, static_cast<Position>(6 + row * OvListRowHeight(fileList) +
                                                          OvListRowHeight(fileList) / 2),
                      &x, &y);
    return {"mousemove", std::to_string(x), std::to_string(y)};
  }
  void click(int p, const char* modifier = nullptr) {
    std::vector<std::string> a = at(p);
    if (modifier) a.insert(a.end(), {"keydown", modifier});
    a.insert(a.end(), {"click", "1"});
    if (modifier) a.insert(a.end(), {"keyup", modifier});
    xdo(a);
  }
  // Whether row p is drawn selected: the ground at the row's right end
  // (beyond its short text) is the list's foreground there.
  bool drawnSelected(int p) {
    Dimension width = 0;
    Pixel foreground = 0;
    XtVaGetValues(fileList, XmNwidth, &width, XmNforeground, &foreground, nullptr);
    int row = p - OvListTopPosition(fileList);
    int y = 6 + row * OvListRowHeight(fileList) + OvListRowHeight(fileList) / 2;
    XImage* image = XGetImage(UiTestApp::display(), XtWindow(fileList), width - 12, y, 1, 1,
                              AllPlanes, ZPixmap);
    if (!image) return false;
    unsigned long pixel = XGetPixel(image, 0, 0);
    XDestroyImage(image);
    return pixel == foreground;
  }
  // The model, the list's idea of the selection and the screen agree.
  void expectSelection(const std::vector<int>& expected, const std::string& step) {
    EXPECT_EQ(expected, list->model().selectedPositions()) << step;
    EXPECT_EQ(expected, list->listView().selection()) << step;
    std::set<int> chosen(expected.begin(), expected.end());
    int top = OvListTopPosition(fileList);
    for (int p = top; p < top + OvListVisibleRows(fileList) && p <= 40; ++p)
      EXPECT_EQ(chosen.count(p) == 1, drawnSelected(p)) << step << ": row " << p << " on screen";
  }
  static std::vector<int> range(int first, int last) {
    std::vector<int> out;
    for (int p = first; p <= last; ++p) out.push_back(p);
    return out;
  }

  Widget fileList = nullptr;
};

TEST_F(FileListEventsTest, MouseAndKeysSelectAsInAMotifList) {
  click(3);
  expectSelection({3}, "click");
  click(5, "ctrl");
  expectSelection({3, 5}, "ctrl-click");
  click(8, "shift");
  expectSelection(range(5, 8), "shift-click from the last ctrl-click");
  std::vector<std::string> drag = at(2);
  drag.insert(drag.end(), {"mousedown", "1"});
  for (const std::string& a : at(4)) drag.push_back(a);
  drag.insert(drag.end(), {"mouseup", "1"});
  xdo(drag);
  expectSelection(range(2, 4), "drag from 2 to 4");
  xdo({"key", "Down"});
  expectSelection({5}, "Down");
  xdo({"key", "shift+Down", "shift+Down"});
  expectSelection(range(5, 7), "shift+Down twice");
  xdo({"key", "ctrl+Down", "ctrl+space"});
  expectSelection(range(5, 8), "ctrl+Down moves only, ctrl+space toggles");
  xdo({"key", "ctrl+slash"});
  expectSelection(range(1, 40), "ctrl+/");
  xdo({"key", "ctrl+backslash"});
  expectSelection({}, "ctrl+\\");
  xdo({"key", "End"});
  expectSelection({40}, "End");
  EXPECT_GT(OvListTopPosition(fileList), 1) << "End scrolls the last row into view";
  xdo({"key", "Home", "Next"});
  const int page = OvListVisibleRows(fileList) - 1;
  EXPECT_EQ(1, OvListTopPosition(fileList)) << "a page down from the top stays on the first page";
  expectSelection({1 + page}, "Home, Page Down");
  xdo({"key", "space"});
  expectSelection({1 + page}, "space selects the cursor's row");

  // The filter, typed and run with Return, selects without any gesture;
  // afterwards a click replaces the selection as extended selection does.
  Position fx = 0, fy = 0;
  XtTranslateCoords(widget("selectionTextField"), 10, 10, &fx, &fy);
  xdo({"mousemove", std::to_string(fx), std::to_string(fy), "click", "1", "type", "lib src"});
  expectSelection({1 + page}, "typing alone selects nothing");
  xdo({"key", "Return"});
  std::vector<int> even;
  for (int p = 2; p <= 40; p += 2) even.push_back(p);
  expectSelection(even, "filter lib src");
  click(3);
  expectSelection({3}, "a click after the filter");
  unsigned char policy = 0;
  XtVaGetValues(fileList, XmNselectionPolicy, &policy, nullptr);
  EXPECT_EQ(XmEXTENDED_SELECT, policy);
  XtVaSetValues(fileList, XmNselectionPolicy, XmMULTIPLE_SELECT, nullptr);
  click(6);
  click(7);
  click(3);
  expectSelection({6, 7}, "multiple selection: clicks toggle");
  XtVaSetValues(fileList, XmNselectionPolicy, XmEXTENDED_SELECT, nullptr);

  // Another tab refills the list and keeps the selection.
  setView(2);
  settle();
  EXPECT_EQ("f 0644 root sys usr/f06", lines().at(5));
  expectSelection({6, 7}, "Edit Permissions tab");
}

TEST_F(FileListEventsTest, DoubleClickAndReturnAreTheDefaultAction) {
  // src/f.. exist under no source root here, so the default action reports
  // the missing files and selects them.
  const std::string expected = "No files found under Source Root " + list->model().sourceRoot() + ".";
  std::vector<std::string> twice = at(6);
  twice.insert(twice.end(), {"click", "--repeat", "2", "--delay", "60", "1"});
  xdo(twice);
  ASSERT_TRUE(getTheErrorDialog()->isPosted()) << "double click";
  EXPECT_EQ(expected, getTheErrorDialog()->message());
  getTheErrorDialog()->press(YrDialogManager::Ok);
  settle();
  expectSelection(range(1, 40), "missing files selected");
  click(9);
  expectSelection({9}, "click");
  xdo({"key", "Return"});
  ASSERT_TRUE(getTheErrorDialog()->isPosted()) << "Return";
  getTheErrorDialog()->press(YrDialogManager::Ok);
  settle();
}

}  // namespace
