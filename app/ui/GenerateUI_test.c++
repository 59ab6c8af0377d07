// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <string>

#include <X11/IntrinsicP.h>
#include <Xm/Label.h>
#include <Xm/PushB.h>
#include <Xm/RowColumn.h>
#include <Xm/TextF.h>
#include <Xm/ToggleB.h>

#include "app/ui/GenerateUI.h"
#include "app/ui/LayoutChecks.h"
#include "ov/OvGrid.h"
#include "util/UiTestApp.h"

namespace {

#define RECORD(method) \
  void method(Widget w, XtPointer d) override { log.add(#method, w, d); }

class RecordingGenerate : public GenerateUI {
 public:
  using GenerateUI::GenerateUI;
  RECORD(allPushButton)
  RECORD(dryrunPushButton)
  CallLog log;
};

class GenerateUITest : public ::testing::Test {
 protected:
  void SetUp() override { _shell = newApplicationShell("generateShell"); }
  void TearDown() override { XtDestroyWidget(_shell); }
  Widget _shell = nullptr;
};

TEST_F(GenerateUITest, BuildsTheNamedWidgetsInOrderUnderTheirParents) {
  GenerateUI ui("Generate", _shell);
  EXPECT_STREQ("GenerateUI", ui.className());
  expectWidgetTree(ui.baseWidget(),
                   {
                       {"Generate", ovGridWidgetClass, "generateShell"},
                       {"label", xmLabelWidgetClass, "Generate"},
                       {"sourceRootGrid", ovGridWidgetClass, "Generate"},
                       {"sourceRootLabel", xmLabelWidgetClass, "sourceRootGrid"},
                       {"sourceRootTextField", xmTextFieldWidgetClass, "sourceRootGrid"},
                       {"destRootGrid", ovGridWidgetClass, "Generate"},
                       {"destRootLabel", xmLabelWidgetClass, "destRootGrid"},
                       {"destRootTextField", xmTextFieldWidgetClass, "destRootGrid"},
                       {"distDirGrid", ovGridWidgetClass, "Generate"},
                       {"distDirLabel", xmLabelWidgetClass, "distDirGrid"},
                       {"distDirTextField", xmTextFieldWidgetClass, "distDirGrid"},
                       {"rowColumn", xmRowColumnWidgetClass, "Generate"},
                       {"verboseToggleButton", xmToggleButtonWidgetClass, "rowColumn"},
                       {"noCompressToggleButton", xmToggleButtonWidgetClass, "rowColumn"},
                       {"noStripToggleButton", xmToggleButtonWidgetClass, "rowColumn"},
                       {"buttonGrid", ovGridWidgetClass, "Generate"},
                       {"allPushButton", xmPushButtonWidgetClass, "buttonGrid"},
                       {"dryrunPushButton", xmPushButtonWidgetClass, "buttonGrid"},
                   });
  // Rows of the base grid (six of them) and of the nested grids.
  const struct {
    const char* widget;
    const char* resource;
    int value;
  } numbers[] = {{"Generate", OvNnumRows, 6},   {"sourceRootGrid", OvNnumRows, 3},
                 {"rowColumn", OvNrow, 4},      {"buttonGrid", OvNrow, 5},
                 {"buttonGrid", OvNnumRows, 1}, {"label", OvNrow, 0}};
  for (const auto& n : numbers) {
    int value = -1;
    XtVaGetValues(findWidget(ui.baseWidget(), n.widget), n.resource, &value, nullptr);
    EXPECT_EQ(n.value, value) << n.widget << " " << n.resource;
  }
}

TEST_F(GenerateUITest, EveryCallbackReachesItsMethod) {
  RecordingGenerate ui("Generate", _shell);
  expectCallbacksRouted(ui.baseWidget(),
                        {
                            {"allPushButton", XmNactivateCallback, "allPushButton"},
                            {"dryrunPushButton", XmNactivateCallback, "dryrunPushButton"},
                        },
                        ui.log);
}

std::string fieldText(Widget w) {
  char* t = XmTextFieldGetString(w);
  std::string s = t ? t : "";
  XtFree(t);
  return s;
}

TEST_F(GenerateUITest, FallbackTextsAndTheUsersOwn) {
  expectResourceLinesWellFormed(GenerateUI::_defaultGenerateUIResources);
  {
    GenerateUI ui("Generate", _shell);
    expectLabelTexts(
        ui.baseWidget(),
        {
            {"label", "Spec File:"},
            {"sourceRootLabel", "Source Tree Root"},
            {"destRootLabel", "Destination Tree Root"},
            {"distDirLabel", "Distribution Directory"},
            {"verboseToggleButton", "Verbose (Provide detailed messages during build)"},
            {"noCompressToggleButton", "No Compress (Do not compress)"},
            {"noStripToggleButton", "No Strip (Retain symbolic information)"},
            {"allPushButton", "Build All"},
            {"dryrunPushButton", "Test Build"},
        });
    EXPECT_EQ("/usr/dist", fieldText(findWidget(ui.baseWidget(), "distDirTextField")));
  }
  putUserResource(_shell, "Tamblin*userGenerate*distDirTextField.value: /var/dist");
  GenerateUI ui("userGenerate", _shell);
  EXPECT_EQ("/var/dist", fieldText(findWidget(ui.baseWidget(), "distDirTextField")));
}

int heightOf(Widget w) {
  Dimension h = 0;
  XtVaGetValues(w, XmNheight, &h, nullptr);
  return h;
}

TEST_F(GenerateUITest, OnlyTheOptionsTakeExtraHeight) {
  GenerateUI ui("Generate", _shell);
  ui.show();
  XtRealizeWidget(_shell);
  UiTestApp::flush();
  Widget base = ui.baseWidget();
  const char* fixed[] = {"label", "sourceRootGrid", "destRootGrid", "distDirGrid", "buttonGrid"};
  int before[5];
  for (int i = 0; i < 5; ++i) before[i] = heightOf(findWidget(base, fixed[i]));
  Widget options = findWidget(base, "rowColumn");
  int optionsBefore = heightOf(options);
  Dimension width = 0, height = 0;
  XtVaGetValues(base, XmNwidth, &width, XmNheight, &height, nullptr);
  XtResizeWidget(base, width, height + 100, 0);
  UiTestApp::flush();
  EXPECT_EQ(optionsBefore + 100, heightOf(options));
  for (int i = 0; i < 5; ++i) EXPECT_EQ(before[i], heightOf(findWidget(base, fixed[i]))) << fixed[i];
}

}  // namespace
