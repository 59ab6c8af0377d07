#include <gtest/gtest.h>

#include <Xm/ScrolledW.h>

#include "filelist/ListView.h"

#include <string>
#include <vector>

#include "ov/OvList.h"
#include "util/UiTestApp.h"

namespace {

// Rows and selection of the test's own, and every gesture written down.
class Rows : public ListView::Source, public ListView::Gestures {
 public:
  int count() const override { return static_cast<int>(lines.size()); }
  std::string_view text(int p) const override { return lines.at(p - 1); }
  bool isSelected(int p) const override { return selected.at(p - 1) != 0; }
  void activate(int p) override { log.push_back("activate " + std::to_string(p)); }
  void selectOne(int p) override { log.push_back("one " + std::to_string(p)); }
  void toggle(int p) override { log.push_back("toggle " + std::to_string(p)); }
  void selectRange(int a, int b) override {
    log.push_back("range " + std::to_string(a) + "-" + std::to_string(b));
  }
  void setRange(int a, int b, bool on) override {
    log.push_back("set " + std::to_string(a) + "-" + std::to_string(b) + (on ? " on" : " off"));
  }
  void selectAll() override { log.push_back("all"); }
  void deselectAll() override { log.push_back("none"); }

  std::vector<std::string> lines;
  std::vector<char> selected;
  std::vector<std::string> log;
};

class ListViewTest : public ::testing::Test {
 protected:
  void SetUp() override {
    shell = UiTestApp::newShell("listShell");
    Widget window = XtVaCreateManagedWidget("scrolledWindow", xmScrolledWindowWidgetClass, shell,
                                            XmNscrollingPolicy, XmAPPLICATION_DEFINED, nullptr);
    list = XtVaCreateManagedWidget("fileList", ovListWidgetClass, window, XmNwidth, 300,
                                   XmNvisibleItemCount, 5, nullptr);
    XtRealizeWidget(shell);
  }
  void TearDown() override { XtDestroyWidget(shell); }
  Widget shell = nullptr;
  Widget list = nullptr;
};

TEST_F(ListViewTest, ShowsTheSourcesRowsAndSelection) {
  Rows rows;
  rows.lines = {"tool.sw.base build/tool", "tool.sw.lib lib", "x y", "last"};
  rows.selected = {0, 1, 0, 1};
  ListView view(list, rows, rows);
  EXPECT_EQ(4, view.itemCount());
  size_t length = 0;
  const char* text = OvListRowText(list, 2, &length);
  EXPECT_EQ("tool.sw.lib lib", std::string(text, length));
  EXPECT_EQ((std::vector<int>{2, 4}), view.selection());

  rows.selected = {1, 0, 0, 0};
  view.selectionChanged();
  EXPECT_EQ((std::vector<int>{1}), view.selection());
  // The count changes only when the view is told.
  rows.lines.resize(2);
  rows.selected.resize(2);
  view.contentsChanged();
  EXPECT_EQ(2, view.itemCount());
  rows.lines.clear();
  rows.selected.clear();
  view.contentsChanged();
  EXPECT_EQ(0, view.itemCount());
  EXPECT_TRUE(view.selection().empty());
}

TEST_F(ListViewTest, EachCallbackOfTheListBecomesOneGesture) {
  Rows rows;
  rows.lines = {"a", "b", "c", "d", "e"};
  rows.selected.assign(5, 0);
  ListView view(list, rows, rows);
  struct Case {
    int reason, gesture, position, first, last;
    Boolean on;
    const char* expected;
  } cases[] = {
      {XmCR_EXTENDED_SELECT, OvLIST_SELECT_ONE, 3, 3, 3, True, "one 3"},
      {XmCR_EXTENDED_SELECT, OvLIST_TOGGLE, 2, 2, 2, False, "toggle 2"},
      {XmCR_EXTENDED_SELECT, OvLIST_SELECT_RANGE, 4, 2, 4, True, "range 2-4"},
      {XmCR_EXTENDED_SELECT, OvLIST_SET_RANGE, 1, 1, 3, False, "set 1-3 off"},
      {XmCR_EXTENDED_SELECT, OvLIST_SET_RANGE, 5, 4, 5, True, "set 4-5 on"},
      {XmCR_EXTENDED_SELECT, OvLIST_SELECT_ALL, 0, 1, 5, True, "all"},
      {XmCR_EXTENDED_SELECT, OvLIST_DESELECT_ALL, 0, 1, 5, False, "none"},
      {XmCR_DEFAULT_ACTION, 0, 4, 4, 4, True, "activate 4"},
  };
  for (const Case& c : cases) {
    rows.log.clear();
    OvListCallbackStruct cbs{};
    cbs.reason = c.reason;
    cbs.gesture = c.gesture;
    cbs.position = c.position;
    cbs.first = c.first;
    cbs.last = c.last;
    cbs.on = c.on;
    if (c.reason == XmCR_DEFAULT_ACTION)
      view.handle(cbs);  // the panel routes the default action itself
    else
      XtCallCallbacks(list, OvNgestureCallback, &cbs);
    EXPECT_EQ(std::vector<std::string>{c.expected}, rows.log) << c.expected;
  }
}

TEST_F(ListViewTest, AViewOutlivingItsListIsHarmless) {
  Rows rows;
  rows.lines = {"a"};
  rows.selected = {0};
  ListView view(list, rows, rows);
  XtDestroyWidget(XtParent(list));
  UiTestApp::flush();
  EXPECT_EQ(nullptr, view.widget());
  view.contentsChanged();
  view.selectionChanged();
  EXPECT_EQ(0, view.itemCount());
}

}  // namespace
