#include <gtest/gtest.h>

#include <Xm/List.h>

#include <string>
#include <vector>

#include "filelist/ListView.h"
#include "util/UiTestApp.h"

namespace {

std::string itemText(Widget list, int position) {
  XmStringTable items = nullptr;
  XtVaGetValues(list, XmNitems, &items, nullptr);
  char* t = static_cast<char*>(XmStringUnparse(items[position - 1], nullptr, XmCHARSET_TEXT,
                                               XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
  std::string out = t;
  XtFree(t);
  return out;
}

TEST(ListViewTest, ItemsAndWholeSelectionsReplaceWhatWasThere) {
  Widget shell = UiTestApp::newShell("listShell");
  Widget list = XmCreateScrolledList(shell, const_cast<char*>("fileList"), nullptr, 0);
  XtVaSetValues(list, XmNselectionPolicy, XmEXTENDED_SELECT, nullptr);
  XtManageChild(list);
  XtRealizeWidget(shell);
  ListView view(list);
  std::vector<std::string> lines = {"tool.sw.base build/tool", "tool.sw.lib lib", "x y", "last"};
  view.setItems(4, [&](int p) { return std::string_view(lines[p - 1]); });
  ASSERT_EQ(4, view.itemCount());
  EXPECT_EQ("tool.sw.lib lib", itemText(list, 2));

  struct Case {
    std::vector<int> set, expected;
  } cases[] = {
      {{1, 3}, {1, 3}}, {{2}, {2}}, {{}, {}}, {{1, 2, 3, 4}, {1, 2, 3, 4}}, {{4, 1}, {1, 4}},
  };
  for (const Case& c : cases) {
    view.setSelection(c.set);
    EXPECT_EQ(c.expected, view.selection());
  }
  unsigned char policy = 0;
  XtVaGetValues(list, XmNselectionPolicy, &policy, nullptr);
  EXPECT_EQ(XmEXTENDED_SELECT, policy);  // back to what the user works with

  view.setItems(2, [&](int p) { return std::string_view(lines[p + 1]); });
  EXPECT_EQ(2, view.itemCount());
  EXPECT_EQ("x y", itemText(list, 1));
  EXPECT_TRUE(view.selection().empty());
  view.setItems(0, [&](int) { return std::string_view(); });
  EXPECT_EQ(0, view.itemCount());
  XtDestroyWidget(shell);
}

}  // namespace
