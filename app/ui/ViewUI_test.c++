// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <Xm/Xm.h>

#include "app/ui/LayoutChecks.h"
#include "app/ui/ViewUI.h"
#include "util/UiTestApp.h"

namespace {

class ViewUITest : public ::testing::Test {
 protected:
  void SetUp() override { _shell = UiTestApp::newShell("viewShell"); }
  void TearDown() override { XtDestroyWidget(_shell); }
  Widget _shell = nullptr;
};

#define WORK "viewPanedWindow.viewForm."

TEST_F(ViewUITest, NamesThePanelsAndTheLogSitIn) {
  ViewUI view("view", _shell);
  EXPECT_FALSE(XtIsManaged(view.baseWidget()));  // the view shows it
  CallLog none;
  expectLayoutContract(view.baseWidget(), nullptr,
                       {
                           {"viewPanedWindow.messageForm.scrolledWindow.messageText"},
                           {WORK "rightForm"},
                           {WORK "rightFrame"},
                           {WORK "leftForm.specBody"},
                           {WORK "leftForm.permsBody"},
                           {WORK "leftForm.filesBody.addBody"},
                           {WORK "leftForm.filesBody.tagsBody"},
                           {WORK "leftForm.generateBody"},
                           {WORK "leftForm.attrsBody"},
                       },
                       none);
}

struct Box {
  int x, y, w, h;
};
Box boxOf(Widget w) {
  Position x = 0, y = 0;
  Dimension width = 0, height = 0;
  XtVaGetValues(w, XmNx, &x, XmNy, &y, XmNwidth, &width, XmNheight, &height, nullptr);
  return {x, y, width, height};
}

TEST_F(ViewUITest, BodiesLieStackedOnTheLeftAndThePanelsOfTheRightBesideThem) {
  ViewUI view("view", _shell);
  view.show();
  XtRealizeWidget(_shell);
  UiTestApp::flush();
  Widget base = view.baseWidget();
  Box grid = boxOf(base);
  EXPECT_EQ(838, grid.w);
  EXPECT_EQ(790, grid.h);

  Box spec = boxOf(findWidget(base, "specBody"));
  for (const char* body : {"permsBody", "filesBody", "generateBody", "attrsBody"}) {
    Box b = boxOf(findWidget(base, body));
    EXPECT_EQ(spec.x, b.x) << body;
    EXPECT_EQ(spec.y, b.y) << body;
    EXPECT_EQ(spec.w, b.w) << body;
    EXPECT_EQ(spec.h, b.h) << body;
  }
  Box left = boxOf(findWidget(base, "leftForm"));
  Box viewForm = boxOf(findWidget(base, "viewForm"));
  for (const char* right : {"rightForm", "rightFrame"}) {
    Box r = boxOf(findWidget(base, right));
    EXPECT_GE(r.x, left.x + left.w) << right;
    EXPECT_EQ(viewForm.w, r.x + r.w) << right;  // attached to the right edge
  }
  // The message pane sits above the work area in the paned window.
  Box message = boxOf(findWidget(base, "messageForm"));
  EXPECT_LT(message.y + message.h, viewForm.y);
}

TEST_F(ViewUITest, TheMessageLogIsAReadOnlyWrappingText) {
  ViewUI view("view", _shell);
  Widget text = findWidget(view.baseWidget(), "messageText");
  ASSERT_NE(nullptr, text);
  int editMode = 0;
  Boolean editable = True, wordWrap = False, scrollHorizontal = True;
  short rows = 0;
  XtVaGetValues(text, XmNeditMode, &editMode, XmNeditable, &editable, XmNwordWrap, &wordWrap,
                XmNrows, &rows, XmNscrollHorizontal, &scrollHorizontal, nullptr);
  EXPECT_EQ(XmMULTI_LINE_EDIT, editMode);
  EXPECT_FALSE(editable);
  EXPECT_TRUE(wordWrap);
  EXPECT_EQ(5, rows);
  EXPECT_FALSE(scrollHorizontal);
  // The log scrolls vertically: Motif gave the text's scrolled window a
  // vertical scroll bar.
  Widget vertical = nullptr;
  XtVaGetValues(XtParent(text), XmNverticalScrollBar, &vertical, nullptr);
  EXPECT_NE(nullptr, vertical);
}

}  // namespace
