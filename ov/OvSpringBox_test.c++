// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <vector>

#include <X11/IntrinsicP.h>
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

TEST_F(OvSpringBoxTest, ExtraSpaceGoesToTheEndsAndChildrenKeepTheirSize) {
  Widget box = XtVaCreateManagedWidget("springBox", ovSpringBoxWidgetClass, _shell, XmNwidth, 200,
                                       XmNheight, 30, nullptr);
  std::vector<Widget> children = fill(box, 3);
  realize();
  // The three children need 2 + 3 * 20 + 2 * 4 + 2 = 72 by 14; the other
  // 128 by 16 is split before and after them.
  const int xs[] = {66, 90, 114};
  for (int i = 0; i < 3; ++i) {
    Geometry g = geometryOf(children[i]);
    EXPECT_EQ(xs[i], g.x) << i;
    EXPECT_EQ(10, g.y) << i;
    EXPECT_EQ(20, g.width) << i;
    EXPECT_EQ(10, g.height) << i;
  }

  // Hiding the middle child closes the gap; the other two stay centred.
  XtUnmanageChild(children[1]);
  UiTestApp::flush();
  EXPECT_EQ(78, geometryOf(children[0]).x);
  EXPECT_EQ(102, geometryOf(children[2]).x);

  // Made narrower than the children need, the box squeezes them rather than
  // letting them overlap.
  XtManageChild(children[1]);
  XtResizeWidget(box, 50, 30, 0);
  UiTestApp::flush();
  for (int i = 0; i + 1 < 3; ++i) {
    Geometry a = geometryOf(children[i]), b = geometryOf(children[i + 1]);
    EXPECT_LE(a.x + a.width, b.x) << i;
  }
}

}  // namespace
