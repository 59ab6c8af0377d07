// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <Xm/Xm.h>

#include "app/ui/LayoutChecks.h"
#include "app/ui/SpecGraphUI.h"

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

TEST_F(SpecGraphUITest, NamesTextsAndCallbacks) {
  RecordingSpecGraph ui("SpecGraph", _shell);
  expectLayoutContract(
      ui.baseWidget(), SpecGraphUI::_defaultSpecGraphUIResources,
      {
          {"label", "Spec File:"},
          {"springBox.addPushButton", "Add", XmNactivateCallback, "addPushButton"},
          {"springBox.deletePushButton", "Delete", XmNactivateCallback, "deletePushButton"},
          {"form"},  // the graph goes here
      },
      ui.log);

  // A user's resource under the class name wins over the fallback.
  putUserResource(_shell, "Tamblin*userSpecGraph*deletePushButton.labelString: Remove");
  SpecGraphUI user("userSpecGraph", _shell);
  EXPECT_EQ("Remove", labelText(findWidget(user.baseWidget(), "deletePushButton")));
}

}  // namespace
