// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <X11/IntrinsicP.h>
#include <X11/Shell.h>
#include <Xm/Label.h>

#include "ov/OvGrid.h"
#include "util/UiTestApp.h"

namespace {

struct Rect {
  int x, y, width, height;
  bool operator==(const Rect& o) const {
    return x == o.x && y == o.y && width == o.width && height == o.height;
  }
};

std::ostream& operator<<(std::ostream& os, const Rect& r) {
  return os << r.width << "x" << r.height << "+" << r.x << "+" << r.y;
}

Rect rectOf(Widget w) {
  Position x = 0, y = 0;
  Dimension width = 0, height = 0;
  XtVaGetValues(w, XmNx, &x, XmNy, &y, XmNwidth, &width, XmNheight, &height, nullptr);
  return {x, y, width, height};
}

bool overlap(const Rect& a, const Rect& b) {
  return a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height &&
         b.y < a.y + a.height;
}

// A child of a given size that never resizes itself.
struct ChildSpec {
  const char* name;
  int row, column;
  Dimension width, height;
  Boolean resizeHorizontal = True, resizeVertical = True;
  int gravity = 5;
};

Widget makeChild(Widget grid, const ChildSpec& c) {
  Widget w = XtVaCreateManagedWidget(
      c.name, xmLabelWidgetClass, grid, XmNrecomputeSize, False, XmNwidth, c.width, XmNheight,
      c.height, XmNborderWidth, 0, OvNrow, c.row, OvNcolumn, c.column, OvNresizeHorizontal,
      c.resizeHorizontal, OvNresizeVertical, c.resizeVertical, OvNgravity, c.gravity, nullptr);
  return w;
}

class OvGridTest : public ::testing::Test {
 protected:
  void SetUp() override { begin(); }
  void TearDown() override { end(); }
  // Table-driven tests start a fresh shell per case.
  void begin() {
    end();
    _shell = UiTestApp::newShell("gridShell");
    XtVaSetValues(_shell, XmNallowShellResize, True, nullptr);
  }
  void end() {
    if (_shell) XtDestroyWidget(_shell);
    _shell = nullptr;
  }

  // A grid without margins or spacing (so the figures below stay readable)
  // of the given size (0: its natural size).
  Widget makeGrid(Dimension width, Dimension height, int rows = 2) {
    Arg args[6];
    Cardinal n = 0;
    XtSetArg(args[n], XmNmarginWidth, 0), ++n;
    XtSetArg(args[n], XmNmarginHeight, 0), ++n;
    XtSetArg(args[n], XmNspacing, 0), ++n;
    XtSetArg(args[n], OvNnumRows, rows), ++n;
    if (width) XtSetArg(args[n], XmNwidth, width), ++n;
    if (height) XtSetArg(args[n], XmNheight, height), ++n;
    Widget grid = OvCreateGrid(_shell, "grid", args, n);
    XtManageChild(grid);
    return grid;
  }
  void realize() {
    XtRealizeWidget(_shell);
    UiTestApp::flush();
  }
  static void expectNoOverlap(const std::vector<Widget>& children) {
    for (size_t i = 0; i < children.size(); ++i)
      for (size_t j = i + 1; j < children.size(); ++j)
        EXPECT_FALSE(overlap(rectOf(children[i]), rectOf(children[j])))
            << XtName(children[i]) << " " << rectOf(children[i]) << " overlaps "
            << XtName(children[j]) << " " << rectOf(children[j]);
  }

  Widget _shell = nullptr;
};

struct LayoutCase {
  const char* what;
  Dimension gridWidth, gridHeight;  // 0: natural size
  std::vector<ChildSpec> children;
  std::vector<Rect> expected;  // one per child
  Rect expectedGrid;
};

TEST_F(OvGridTest, PlacesChildrenInCellsAndSharesExtraSpace) {
  const std::vector<LayoutCase> cases = {
      {"natural size: rows as high as the highest child, columns as wide as the widest",
       0,
       0,
       {{"a", 0, 0, 50, 20}, {"b", 0, 1, 30, 10}, {"c", 1, 0, 40, 30}},
       {{0, 0, 50, 20}, {50, 0, 30, 20}, {0, 20, 50, 30}},
       {0, 0, 80, 50}},
      {"a row whose only child may not grow keeps its height; the other takes the rest",
       200,
       100,
       {{"label", 0, 0, 50, 20, True, False, 7}, {"list", 1, 0, 60, 30}},
       {{0, 0, 200, 20}, {0, 20, 200, 80}},
       {0, 0, 200, 100}},
      {"two growing rows share the extra height equally",
       100,
       100,
       {{"top", 0, 0, 10, 10}, {"bottom", 1, 0, 10, 10}},
       {{0, 0, 100, 50}, {0, 50, 100, 50}},
       {0, 0, 100, 100}},
      {"a shortfall is taken from the growing column, not the fixed one",
       70,
       20,
       {{"fixed", 0, 0, 40, 20, False, True}, {"grows", 0, 1, 60, 20}},
       {{0, 0, 40, 20}, {40, 0, 30, 20}},
       {0, 0, 70, 20}},
      {"cells outside numRows extend the grid",
       0,
       0,
       {{"first", 0, 0, 10, 10}, {"far", 3, 2, 10, 10}},
       {{0, 0, 10, 10}, {10, 10, 10, 10}},
       {0, 0, 20, 20}},
  };
  for (const LayoutCase& c : cases) {
    SCOPED_TRACE(c.what);
    begin();
    Widget grid = makeGrid(c.gridWidth, c.gridHeight);
    std::vector<Widget> children;
    for (const ChildSpec& spec : c.children) children.push_back(makeChild(grid, spec));
    realize();
    EXPECT_EQ(c.expectedGrid, rectOf(grid));
    for (size_t i = 0; i < children.size(); ++i)
      EXPECT_EQ(c.expected[i], rectOf(children[i])) << XtName(children[i]);
    expectNoOverlap(children);
  }
}

TEST_F(OvGridTest, GravityPlacesAChildThatDoesNotFillItsCell) {
  // The cell of "small" is 60 by 40 (its neighbours set the row and column);
  // "small" keeps its 20 by 10.
  const struct {
    int gravity;
    int x, y;
  } cases[] = {{1, 0, 0},  {2, 20, 0},  {3, 40, 0},  {4, 0, 15}, {5, 20, 15},
               {6, 40, 15}, {7, 0, 30}, {8, 20, 30}, {9, 40, 30}, {0, 20, 15}};
  for (const auto& c : cases) {
    SCOPED_TRACE("gravity " + std::to_string(c.gravity));
    begin();
    Widget grid = makeGrid(0, 0);
    Widget small = makeChild(grid, {"small", 0, 0, 20, 10, False, False, c.gravity});
    makeChild(grid, {"tall", 0, 1, 30, 40});
    makeChild(grid, {"wide", 1, 0, 60, 10});
    realize();
    EXPECT_EQ((Rect{c.x, c.y, 20, 10}), rectOf(small));
  }
}

TEST_F(OvGridTest, FixedRowsAndColumnsStopGrowingAndResizingRelaysOut) {
  Widget grid = makeGrid(100, 100);
  Widget top = makeChild(grid, {"top", 0, 0, 10, 10});
  Widget bottom = makeChild(grid, {"bottom", 1, 0, 10, 10});
  Widget right = makeChild(grid, {"right", 1, 1, 10, 10});
  realize();
  EXPECT_EQ((Rect{0, 0, 50, 50}), rectOf(top));
  OvGridSetRowResizable(grid, 0, False);
  OvGridSetColumnResizable(grid, 1, False);
  EXPECT_EQ((Rect{0, 0, 90, 10}), rectOf(top));
  EXPECT_EQ((Rect{0, 10, 90, 90}), rectOf(bottom));
  EXPECT_EQ((Rect{90, 10, 10, 90}), rectOf(right));

  // The grid made larger by its parent: the growing row and column take it.
  XtResizeWidget(grid, 200, 150, 0);
  UiTestApp::flush();
  EXPECT_EQ((Rect{0, 0, 190, 10}), rectOf(top));
  EXPECT_EQ((Rect{0, 10, 190, 140}), rectOf(bottom));
  EXPECT_EQ((Rect{190, 10, 10, 140}), rectOf(right));
  expectNoOverlap({top, bottom, right});

  // Setting them resizable again shares the space once more.
  OvGridSetRowResizable(grid, 0, True);
  EXPECT_EQ((Rect{0, 0, 190, 75}), rectOf(top));
}

TEST_F(OvGridTest, AChildThatGrowsAfterRealizingWidensItsColumnAndTheGrid) {
  Widget grid = makeGrid(0, 0);
  Widget left = makeChild(grid, {"left", 0, 0, 40, 20});
  Widget right = makeChild(grid, {"right", 0, 1, 30, 20});
  Widget below = makeChild(grid, {"below", 1, 0, 10, 10});
  realize();
  EXPECT_EQ((Rect{0, 0, 70, 30}), rectOf(grid));
  XtVaSetValues(left, XmNwidth, 100, nullptr);
  UiTestApp::flush();
  EXPECT_EQ((Rect{0, 0, 130, 30}), rectOf(grid));
  EXPECT_EQ((Rect{0, 0, 100, 20}), rectOf(left));
  EXPECT_EQ((Rect{100, 0, 30, 20}), rectOf(right));
  EXPECT_EQ((Rect{0, 20, 100, 10}), rectOf(below));
  expectNoOverlap({left, right, below});
}

TEST_F(OvGridTest, NestedGridsReportTheirSizeAndMarginsAndSpacingCount) {
  Widget outer = makeGrid(0, 0);
  Widget title = makeChild(outer, {"title", 0, 0, 30, 10});
  // The inner grid keeps the default margins (2) and spacing (4).
  Widget inner = XtVaCreateManagedWidget("inner", ovGridWidgetClass, outer, OvNrow, 1,
                                         XmNnumColumns, 2, nullptr);
  Widget one = makeChild(inner, {"one", 0, 0, 20, 10});
  Widget two = makeChild(inner, {"two", 0, 1, 20, 10});
  realize();
  // 2 + 20 + 4 + 20 + 2 wide, 2 + 10 + 2 high.
  EXPECT_EQ((Rect{0, 10, 48, 14}), rectOf(inner));
  EXPECT_EQ((Rect{0, 0, 48, 10}), rectOf(title));
  EXPECT_EQ((Rect{2, 2, 20, 10}), rectOf(one));
  EXPECT_EQ((Rect{26, 2, 20, 10}), rectOf(two));
  EXPECT_EQ((Rect{0, 0, 48, 24}), rectOf(outer));
}

}  // namespace
