// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <Xm/Xm.h>

#include "app/ui/FileListAttrsUI.h"
#include "app/ui/LayoutChecks.h"

namespace {

#define RECORD(method) \
  void method(Widget w, XtPointer d) override { log.add(#method, w, d); }

class RecordingFileListAttrs : public FileListAttrsUI {
 public:
  using FileListAttrsUI::FileListAttrsUI;
  RECORD(attrsAssignArrowButton)
  RECORD(attrsConfigOptionMenu)
  RECORD(attrsConfigToggleButton)
  RECORD(attrsExitOpText)
  RECORD(attrsRemoveOpText)
  RECORD(attrsPostOpText)
  RECORD(attrsPreOpText)
  RECORD(attrsClearPushButton)
  RECORD(r3kPushButton)
  RECORD(r4kPushButton)
  RECORD(r8kPushButton)
  RECORD(r10kPushButton)
  CallLog log;
};

class FileListAttrsUITest : public ::testing::Test {
 protected:
  void SetUp() override { _shell = newApplicationShell("attrsShell"); }
  void TearDown() override { XtDestroyWidget(_shell); }
  Widget _shell = nullptr;
};

#define ROW "scrolledWindow.ClipWindow.rowColumn."
#define MACH ROW "attrsMachGrid.attrsMachRowColumn."

TEST_F(FileListAttrsUITest, NamesTextsAndCallbacks) {
  RecordingFileListAttrs ui("FileListAttrs", _shell);
  const char* changed = XmNvalueChangedCallback;
  const char* activate = XmNactivateCallback;
  expectLayoutContract(
      ui.baseWidget(), FileListAttrsUI::_defaultFileListAttrsUIResources,
      {
          {ROW "softAttrsLabel", "Software Attributes"},
          {ROW "attrsConfigGrid.attrsConfigToggleButton", "config  (file)", changed,
           "attrsConfigToggleButton"},
          {ROW "attrsConfigGrid.attrsConfigOptionMenu", ""},
          {"pulldownMenu.configUpdatePushButton", "update", activate, "attrsConfigOptionMenu"},
          {"pulldownMenu.configNoUpdatePushButton", "noupdate", activate, "attrsConfigOptionMenu"},
          {"pulldownMenu.configSuggestPushButton", "suggest", activate, "attrsConfigOptionMenu"},
          {ROW "attrsShadowGrid.attrsShadowToggleButton", "shadow  (Install during next boot)"},
          {ROW "attrsPreOpGrid.attrsPreOpToggleButton", "preop  (Execute prior to installation)"},
          {ROW "attrsPreOpGrid.attrsPreOpText", nullptr, changed, "attrsPreOpText"},
          {ROW "attrsPostOpGrid.attrsPostOpToggleButton", "postop  (Execute after installation)"},
          {ROW "attrsPostOpGrid.attrsPostOpText", nullptr, changed, "attrsPostOpText"},
          {ROW "attrsExitOpGrid.attrsExitOpToggleButton",
           "exitop  (Execute after install completed)"},
          {ROW "attrsExitOpGrid.attrsExitOpText", nullptr, changed, "attrsExitOpText"},
          {ROW "attrsRemoveOpGrid.attrsRemoveOpToggleButton", "removeop  (Execute after removal)"},
          {ROW "attrsRemoveOpGrid.attrsRemoveOpText", nullptr, changed, "attrsRemoveOpText"},
          {ROW "attrsNoShareGrid.attrsNoShareToggleButton",
           "noshare  (Duplicate for diskless clients)"},
          {ROW "attrsNoStripGrid.attrsNoStripToggleButton",
           "nostrip  (Retain symbolic information)"},
          {ROW "attrsNoRqsGrid.attrsNoRqsToggleButton", "norqs  (Do not requickstart)"},
          {ROW "attrsStripDSOGrid.attrsStripDSOToggleButton",
           "stripdso  (Strip dynamic shared objects)"},
          {ROW "hardAttrsLabel", "Hardware Attributes"},
          {ROW "hardWarnLabel",
           "  By default, files are installed on all\n  platforms.  Restrict installation "
           "to\n  particular platform(s) by checking\n  the appropriate box(es)."},
          {ROW "attrsMachGrid.attrsMachToggleButton", "mach (Machine dependent)"},
          {MACH "attrsModelLabel", "MODEL"},
          {MACH "attrsModelRowColumn"},
          {MACH "attrsCpuLabel", "CPUBOARD  (CPU Board)"},
          {MACH "attrsCpuSpringBox.r3kPushButton", "R3k Boards Only", activate, "r3kPushButton"},
          {MACH "attrsCpuSpringBox.r4kPushButton", "R4k Boards Only", activate, "r4kPushButton"},
          {MACH "attrsCpuSpringBox1.r8kPushButton", "R8k Boards Only", activate, "r8kPushButton"},
          {MACH "attrsCpuSpringBox1.r10kPushButton", "R10k Boards Only", activate,
           "r10kPushButton"},
          {MACH "attrsCpuBoardRowColumn"},
          {MACH "attrsGfxBoardLabel", "GFXBOARD  (Graphics Board)"},
          {MACH "attrsGfxBoardRowColumn"},
          {MACH "attrsSubgrLabel", "SUBGR  (Subgraphics Board)"},
          {MACH "attrsSubgrRowColumn"},
          {"attrsSpringBox.attrsClearPushButton", "Clear All Values", activate,
           "attrsClearPushButton"},
          {"attrsSpringBox1.attrsAssignArrowButton", nullptr, activate, "attrsAssignArrowButton"},
          {"attrsSpringBox1.attrsAssignLabel", "Assign"},
      },
      ui.log);

  // A user's resource under the class name wins over the fallback.
  putUserResource(_shell, "Tamblin*userFileListAttrs*attrsModelLabel.labelString: Models");
  FileListAttrsUI user("userFileListAttrs", _shell);
  EXPECT_EQ("Models", labelText(findWidget(user.baseWidget(), "attrsModelLabel")));
}

}  // namespace
