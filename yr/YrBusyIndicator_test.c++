#include <gtest/gtest.h>
#include <X11/Shell.h>
#include <Xm/Xm.h>

#include "util/BusyScope.h"
#include "util/UiTestApp.h"
#include "yr/YrApp.h"
#include "yr/YrBusyIndicator.h"

// A message given inside an outer scope stays in the working dialog until the
// outer scope ends, as the Add Files panel's "Added" count does.
TEST(YrBusyIndicatorTest, ScopesDriveTheApplicationsBusyStateAndDialog) {
  {
    // Without an application object nothing happens.
    ASSERT_EQ(nullptr, YrApp::theApp());
    BusyScope busy(YrBusyIndicator::application(), "no one to show it");
  }
  YrApp app("Tamblin", UiTestApp::context(), UiTestApp::display());
  {
    BusyScope busy(YrBusyIndicator::application());
    EXPECT_TRUE(app.isBusy());
    EXPECT_EQ(nullptr, XtNameToWidget(app.baseWidget(), "*busyDialog"));
    { BusyScope added(YrBusyIndicator::application(), "Added \n3 files."); }
    EXPECT_TRUE(app.isBusy());
    EXPECT_EQ("Added \n3 files.", app.busyMessage());
    EXPECT_NE(nullptr, XtNameToWidget(app.baseWidget(), "*busyDialog"));
  }
  EXPECT_FALSE(app.isBusy());
  UiTestApp::flush();
  EXPECT_EQ(nullptr, XtNameToWidget(app.baseWidget(), "*busyDialog"));

  // The panel's own indicator redraws its window and shares the one state.
  Widget window = XtVaAppCreateShell("busyWindow", "Tamblin", applicationShellWidgetClass,
                                     UiTestApp::display(), XmNwidth, 50, XmNheight, 50, nullptr);
  XtRealizeWidget(window);
  YrBusyIndicator list(window);
  {
    BusyScope busy(&list);
    busy.stillBusy();
    EXPECT_TRUE(app.isBusy());
    busy.release();
    EXPECT_FALSE(app.isBusy());
  }
  EXPECT_FALSE(app.isBusy());
  XtDestroyWidget(window);
}
