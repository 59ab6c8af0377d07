#include <gtest/gtest.h>

#include <X11/Xutil.h>
#include <Xm/Form.h>
#include <Xm/ScrollBar.h>
#include <Xm/ScrolledW.h>
#include <Xm/TextF.h>

#include <cstdio>
#include <string>
#include <vector>

#include "ov/OvList.h"
#include "util/UiTestApp.h"

namespace {

// Rows made on demand: "row N", or given texts when rows is not empty.
struct Rows {
  int count = 0;
  std::vector<std::string> rows;
  std::vector<char> selected;
  std::string buffer;
};

const char* rowText(XtPointer closure, int p, size_t* length) {
  auto* r = static_cast<Rows*>(closure);
  if (!r->rows.empty()) {
    *length = r->rows[p - 1].size();
    return r->rows[p - 1].data();
  }
  r->buffer = "row " + std::to_string(p);
  *length = r->buffer.size();
  return r->buffer.data();
}

Boolean rowSelected(XtPointer closure, int p) {
  auto* r = static_cast<Rows*>(closure);
  return p <= static_cast<int>(r->selected.size()) && r->selected[p - 1];
}

int xErrors = 0;
int countError(Display*, XErrorEvent*) {
  ++xErrors;
  return 0;
}

class OvListTest : public ::testing::Test {
 protected:
  void SetUp() override {
    shell = UiTestApp::newShell("listShell");
    form = XtVaCreateManagedWidget("form", xmFormWidgetClass, shell, nullptr);
    field = XtVaCreateManagedWidget("field", xmTextFieldWidgetClass, form, XmNtopAttachment,
                                    XmATTACH_FORM, nullptr);
    window = XtVaCreateManagedWidget("scrolledWindow", xmScrolledWindowWidgetClass, form,
                                     XmNscrollingPolicy, XmAPPLICATION_DEFINED, XmNtopAttachment,
                                     XmATTACH_WIDGET, XmNtopWidget, field, nullptr);
    list = XtVaCreateManagedWidget("list", ovListWidgetClass, window, XmNwidth, 300,
                                   XmNvisibleItemCount, 8, nullptr);
    const OvListSource source{rowText, rowSelected};
    OvListSetSource(list, &source, &rows);
    XtRealizeWidget(shell);
    UiTestApp::flush();
  }
  void TearDown() override { XtDestroyWidget(shell); }
  int scrollValue(Widget bar, const char* resource) {
    int v = -1;
    XtVaGetValues(bar, resource, &v, nullptr);
    return v;
  }
  Widget bar(const char* resource) {
    Widget w = nullptr;
    XtVaGetValues(window, resource, &w, nullptr);
    return w;
  }

  Rows rows;
  Widget shell = nullptr, form = nullptr, field = nullptr, window = nullptr, list = nullptr;
};

TEST_F(OvListTest, AMillionRowsScrollThroughTheListsOwnScrollBar) {
  rows.count = 1000000;
  OvListSetItemCount(list, rows.count);
  Widget vertical = bar(XmNverticalScrollBar);
  ASSERT_NE(nullptr, vertical);
  const int visible = OvListVisibleRows(list);
  EXPECT_EQ(8, visible);
  EXPECT_EQ(1000000, scrollValue(vertical, XmNmaximum));
  EXPECT_EQ(visible, scrollValue(vertical, XmNsliderSize));
  // No window grows with the list.
  Dimension height = 0;
  XtVaGetValues(list, XmNheight, &height, nullptr);
  EXPECT_LT(height, 400);

  struct Case {
    const char* what;
    void (*act)(Widget);
    int top;
  } cases[] = {
      {"bottom", [](Widget w) { OvListSetBottomPosition(w, 0); }, 1000000 - 8 + 1},
      {"middle", [](Widget w) { OvListSetTopPosition(w, 500000); }, 500000},
      {"past the end", [](Widget w) { OvListSetTopPosition(w, 2000000); }, 1000000 - 8 + 1},
      {"before the start", [](Widget w) { OvListSetTopPosition(w, -5); }, 1},
  };
  for (const Case& c : cases) {
    c.act(list);
    EXPECT_EQ(c.top, OvListTopPosition(list)) << c.what;
    EXPECT_EQ(c.top - 1, scrollValue(vertical, XmNvalue)) << c.what;
  }
  // The bar moves the list.
  XmScrollBarSetValues(vertical, 123455, visible, 1, visible - 1, True);
  EXPECT_EQ(123456, OvListTopPosition(list));
  const int firstRowY = 2 + 2 + 2 + 1;  // highlight, shadow, margin
  EXPECT_EQ(123456, OvListPositionAt(list, firstRowY));
  EXPECT_EQ(123457, OvListPositionAt(list, firstRowY + OvListRowHeight(list)));
  size_t length = 0;
  const char* text = OvListRowText(list, 123457, &length);
  EXPECT_EQ("row 123457", std::string(text, length));
  EXPECT_EQ(nullptr, OvListRowText(list, 1000001, &length));

  // Fewer rows: the top and the cursor stay inside.
  rows.count = 3;
  OvListSetItemCount(list, 3);
  EXPECT_EQ(1, OvListTopPosition(list));
  EXPECT_LE(OvListCursorPosition(list), 3);
  rows.count = 0;
  OvListSetItemCount(list, 0);
  EXPECT_EQ(0, OvListCursorPosition(list));
  EXPECT_EQ(0, OvListPositionAt(list, firstRowY));
}

TEST_F(OvListTest, LongAndBrokenRowsAreDrawnCutWithinProtocolLimits) {
  rows.rows = {std::string(1 << 20, 'x'),                     // a 1 MB line
               "caf\xC3\xA9 \xE2\x82\xAC \xF0\x9D\x84\x9E ok",  // two, three and four bytes
               "bad \xC3 \xFF\xFE \xED\xA0\x80 end",           // invalid sequences
               "short"};
  rows.count = 4;
  OvListSetItemCount(list, 4);
  XErrorHandler old = XSetErrorHandler(countError);
  xErrors = 0;
  OvListRedraw(list);
  XSync(UiTestApp::display(), False);
  UiTestApp::flush();

  // Scrolled to the far right, the cut line ends in the mark, a box in the
  // selection colours; the short row has none.
  Widget horizontal = bar(XmNhorizontalScrollBar);
  ASSERT_NE(nullptr, horizontal);
  int maximum = scrollValue(horizontal, XmNmaximum), slider = scrollValue(horizontal, XmNsliderSize);
  EXPECT_GT(maximum, slider) << "the long row widens the scroll range";
  XmScrollBarSetValues(horizontal, maximum - slider, slider, 10, slider, True);
  XSync(UiTestApp::display(), False);
  UiTestApp::flush();
  EXPECT_EQ(0, xErrors);
  XSetErrorHandler(old);

  Pixel foreground = 0;
  Dimension width = 0;
  XtVaGetValues(list, XmNforeground, &foreground, XmNwidth, &width, nullptr);
  // The mark is a solid box: some column of the row is foreground from its
  // top to its bottom, which no glyph of text fills.
  auto solidColumns = [&](int p) {
    int y = 7 + (p - 1) * OvListRowHeight(list);
    XImage* image = XGetImage(UiTestApp::display(), XtWindow(list), 6, y + 1, width - 12,
                              OvListRowHeight(list) - 4, AllPlanes, ZPixmap);
    int solid = 0;
    for (int xx = 0; xx < image->width; ++xx) {
      bool all = true;
      for (int yy = 0; yy < image->height && all; ++yy) all = XGetPixel(image, xx, yy) == foreground;
      solid += all;
    }
    XDestroyImage(image);
    return solid;
  };
  EXPECT_GT(solidColumns(1), 3) << "the cut mark shows";
  for (int p = 2; p <= 4; ++p) EXPECT_EQ(0, solidColumns(p)) << "no mark on row " << p;
}

TEST_F(OvListTest, TabReachesTheListAndPoliciesAreResources) {
  XmProcessTraversal(field, XmTRAVERSE_CURRENT);
  XmProcessTraversal(field, XmTRAVERSE_NEXT_TAB_GROUP);
  EXPECT_EQ(list, XmGetFocusWidget(shell));
  unsigned char policy = 0;
  XtVaGetValues(list, XmNselectionPolicy, &policy, nullptr);
  EXPECT_EQ(XmEXTENDED_SELECT, policy);
  XtVaSetValues(list, XmNselectionPolicy, XmMULTIPLE_SELECT, nullptr);
  XtVaGetValues(list, XmNselectionPolicy, &policy, nullptr);
  EXPECT_EQ(XmMULTIPLE_SELECT, policy);
}

}  // namespace
