// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <Xm/Form.h>
#include <Xm/Label.h>
#include <Xm/PushB.h>

#include "app/ui/LayoutChecks.h"
#include "app/ui/SpecGraphUI.h"
#include "ov/OvGrid.h"
#include "ov/OvSpringBox.h"

namespace {

#define RECORD(method) \
  void method(Widget w, XtPointer d) override { log.add(#method, w, d); }

class RecordingSpecGraph : public SpecGraphUI {
 public:
  using SpecGraphUI::SpecGraphUI;
  RECORD(addPushButton)
  RECORD(deletePushButton)
  CallLog log;
};

class SpecGraphUITest : public ::testing::Test {
 protected:
  void SetUp() override { _shell = newApplicationShell("graphShell"); }
  void TearDown() override { XtDestroyWidget(_shell); }
  Widget _shell = nullptr;
};

TEST_F(SpecGraphUITest, BuildsRoutesAndLabels) {
  expectResourceLinesWellFormed(SpecGraphUI::_defaultSpecGraphUIResources);
  RecordingSpecGraph ui("SpecGraph", _shell);
  EXPECT_STREQ("SpecGraphUI", ui.className());
  expectWidgetTree(ui.baseWidget(), {
                                        {"SpecGraph", ovGridWidgetClass, "graphShell"},
                                        {"label", xmLabelWidgetClass, "SpecGraph"},
                                        {"springBox", ovSpringBoxWidgetClass, "SpecGraph"},
                                        {"addPushButton", xmPushButtonWidgetClass, "springBox"},
                                        {"deletePushButton", xmPushButtonWidgetClass, "springBox"},
                                        {"form", xmFormWidgetClass, "SpecGraph"},
                                    });
  expectCallbacksRouted(ui.baseWidget(),
                        {
                            {"addPushButton", XmNactivateCallback, "addPushButton"},
                            {"deletePushButton", XmNactivateCallback, "deletePushButton"},
                        },
                        ui.log);
  expectLabelTexts(ui.baseWidget(), {
                                        {"label", "Spec File:"},
                                        {"addPushButton", "Add"},
                                        {"deletePushButton", "Delete"},
                                    });
  putUserResource(_shell, "Tamblin*userSpecGraph*deletePushButton.labelString: Remove");
  SpecGraphUI user("userSpecGraph", _shell);
  expectLabelTexts(user.baseWidget(), {{"deletePushButton", "Remove"}, {"label", "Spec File:"}});
}

}  // namespace
