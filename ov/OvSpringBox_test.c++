// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include <X11/Shell.h>
#include <Xm/Label.h>

#include "ov/OvGrid.h"
#include "ov/OvSpringBox.h"
#include "util/UiTestApp.h"

namespace {

struct Geometry {
  int x, y, width, height;
};

Geometry geometryOf(Widget w) {
  Position x = 0, y = 0;
  Dimension width = 0, height = 0;
  XtVaGetValues(w, XmNx, &x, XmNy, &y, XmNwidth, &width, XmNheight, &height, nullptr);
  return {x, y, width, height};
}

class OvSpringBoxTest : public ::testing::Test {
 protected:
  void SetUp() override {
    _shell = UiTestApp::newShell("springShell");
    XtVaSetValues(_shell, XmNallowShellResize, True, nullptr);
  }
  void TearDown() override { XtDestroyWidget(_shell); }

  // Children of 20 by 10 that never resize themselves; the last one asks for
  // a cell of its own that the box must ignore.
  std::vector<Widget> fill(Widget box, int n) {
    std::vector<Widget> children;
    for (int i = 0; i < n; ++i)
      children.push_back(XtVaCreateManagedWidget(
          "child", xmLabelWidgetClass, box, XmNrecomputeSize, False, XmNwidth, 20, XmNheight, 10,
          OvNrow, i == n - 1 ? 3 : 0, OvNcolumn, i == n - 1 ? 0 : 7, nullptr));
    return children;
  }
  void realize() {
    XtRealizeWidget(_shell);
    UiTestApp::flush();
  }

  Widget _shell = nullptr;
};

TEST_F(OvSpringBoxTest, NaturalSizeIsTheChildrenSideBySide) {
  Widget box = OvCreateSpringBox(_shell, "springBox", nullptr, 0);
  XtManageChild(box);
  std::vector<Widget> children = fill(box, 3);
  realize();
  // Margins 2, spacing 4.
  Geometry g = geometryOf(box);
  EXPECT_EQ(2 + 20 + 4 + 20 + 4 + 20 + 2, g.width);
  EXPECT_EQ(2 + 10 + 2, g.height);
  const int xs[] = {2, 26, 50};
  for (int i = 0; i < 3; ++i) {
    Geometry c = geometryOf(children[i]);
    EXPECT_EQ(xs[i], c.x) << i;
    EXPECT_EQ(2, c.y) << i;
  }
}

TEST_F(OvSpringBoxTest, ExtraWidthBecomesEqualSpringsAndChildrenKeepTheirSize) {
  Widget box = XtVaCreateManagedWidget("springBox", ovSpringBoxWidgetClass, _shell, XmNwidth, 200,
                                       XmNheight, 30, nullptr);
  std::vector<Widget> children = fill(box, 3);
  realize();
  std::vector<Geometry> g;
  for (Widget c : children) g.push_back(geometryOf(c));
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(20, g[i].width) << i;
    EXPECT_EQ(10, g[i].height) << i;
    EXPECT_EQ(10, g[i].y) << i;  // centred in 30
  }
  // Creation order, left to right, with springs of (nearly) equal length
  // between them and half springs at the ends.
  ASSERT_LT(g[0].x + 20, g[1].x);
  ASSERT_LT(g[1].x + 20, g[2].x);
  int gap1 = g[1].x - (g[0].x + 20), gap2 = g[2].x - (g[1].x + 20);
  EXPECT_LE(std::abs(gap1 - gap2), 1);
  EXPECT_NEAR(g[0].x, 200 - (g[2].x + 20), 2);

  // Hiding the middle child leaves no hole: two children, one spring.
  XtUnmanageChild(children[1]);
  UiTestApp::flush();
  Geometry first = geometryOf(children[0]), last = geometryOf(children[2]);
  EXPECT_NEAR(first.x, 200 - (last.x + 20), 2);
  EXPECT_NEAR(last.x - (first.x + 20), 2 * first.x, 8);  // one spring, two half springs
  EXPECT_GT(first.x, g[0].x);
}

}  // namespace
