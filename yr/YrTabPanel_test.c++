// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <Xm/Xm.h>

#include <vector>

#include "util/UiTestApp.h"
#include "yr/YrTabPanel.h"

namespace {

struct Box {
  Position x;
  Dimension width, border;
};

Box boxOf(Widget w) {
  Box b{};
  XtVaGetValues(w, XmNx, &b.x, XmNwidth, &b.width, XmNborderWidth, &b.border, nullptr);
  return b;
}

// Text tabs (the fallback when a tab picture cannot be made) each have a
// frame and stand apart, instead of running together.
TEST(YrTabPanelTest, TextTabsAreFramedAndSpaced) {
  Widget shell = UiTestApp::newShell("tabs");
  YrTabPanel panel("tabPanel", shell, 1, 40);
  for (int i = 0; i < 3; ++i) panel.addTab("");
  const char* labels[] = {"Create Product Hierarchy", "Tag Files", "Build Product"};
  for (int i = 0; i < 3; ++i) panel.setTabLabel(i, labels[i]);
  panel.show();
  XtRealizeWidget(shell);
  UiTestApp::flush();
  std::vector<Box> boxes;
  for (int i = 0; i < 3; ++i) boxes.push_back(boxOf(panel.tab(i)));
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(1, boxes[i].border) << labels[i];
    Dimension margin = 0;
    XtVaGetValues(panel.tab(i), XmNmarginWidth, &margin, nullptr);
    EXPECT_EQ(YrTabPanel::kTextMarginWidth, margin) << labels[i];
  }
  for (int i = 1; i < 3; ++i) {
    int gap = boxes[i].x - (boxes[i - 1].x + boxes[i - 1].width + 2 * boxes[i - 1].border);
    EXPECT_GE(gap, YrTabPanel::kTextTabSpacing) << labels[i];
  }

  XtDestroyWidget(shell);
}

}  // namespace
