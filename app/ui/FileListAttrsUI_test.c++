// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <Xm/ArrowB.h>
#include <Xm/Label.h>
#include <Xm/PushB.h>
#include <Xm/RowColumn.h>
#include <Xm/ScrolledW.h>
#include <Xm/Text.h>
#include <Xm/ToggleB.h>

#include "app/ui/FileListAttrsUI.h"
#include "app/ui/LayoutChecks.h"
#include "ov/OvGrid.h"
#include "ov/OvSpringBox.h"

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

TEST_F(FileListAttrsUITest, BuildsTheNamedWidgetsInOrderUnderTheirParents) {
  FileListAttrsUI ui("FileListAttrs", _shell);
  EXPECT_STREQ("FileListAttrsUI", ui.className());
  // The scrolled window keeps its work area in a clip window of its own;
  // the pulldown menu lives in a menu shell of its own.
  const char* work = "ClipWindow";
  const char* mach = "attrsMachRowColumn";
  WidgetClass grid = ovGridWidgetClass, toggle = xmToggleButtonWidgetClass,
              text = xmTextWidgetClass, label = xmLabelWidgetClass,
              push = xmPushButtonWidgetClass, rc = xmRowColumnWidgetClass;
  expectWidgetTree(ui.baseWidget(),
                   {
                       {"FileListAttrs", grid, "attrsShell"},
                       {"scrolledWindow", xmScrolledWindowWidgetClass, "FileListAttrs"},
                       {"rowColumn", rc, work},
                       {"softAttrsLabel", label, "rowColumn"},
                       {"attrsConfigGrid", grid, "rowColumn"},
                       {"attrsConfigToggleButton", toggle, "attrsConfigGrid"},
                       {"pulldownMenu", rc, "popup_pulldownMenu"},
                       {"configUpdatePushButton", push, "pulldownMenu"},
                       {"configNoUpdatePushButton", push, "pulldownMenu"},
                       {"configSuggestPushButton", push, "pulldownMenu"},
                       {"attrsConfigOptionMenu", rc, "attrsConfigGrid"},
                       {"attrsShadowGrid", grid, "rowColumn"},
                       {"attrsShadowToggleButton", toggle, "attrsShadowGrid"},
                       {"attrsPreOpGrid", grid, "rowColumn"},
                       {"attrsPreOpToggleButton", toggle, "attrsPreOpGrid"},
                       {"attrsPreOpText", text, "attrsPreOpGrid"},
                       {"attrsPostOpGrid", grid, "rowColumn"},
                       {"attrsPostOpToggleButton", toggle, "attrsPostOpGrid"},
                       {"attrsPostOpText", text, "attrsPostOpGrid"},
                       {"attrsExitOpGrid", grid, "rowColumn"},
                       {"attrsExitOpToggleButton", toggle, "attrsExitOpGrid"},
                       {"attrsExitOpText", text, "attrsExitOpGrid"},
                       {"attrsRemoveOpGrid", grid, "rowColumn"},
                       {"attrsRemoveOpToggleButton", toggle, "attrsRemoveOpGrid"},
                       {"attrsRemoveOpText", text, "attrsRemoveOpGrid"},
                       {"attrsNoShareGrid", grid, "rowColumn"},
                       {"attrsNoShareToggleButton", toggle, "attrsNoShareGrid"},
                       {"attrsNoStripGrid", grid, "rowColumn"},
                       {"attrsNoStripToggleButton", toggle, "attrsNoStripGrid"},
                       {"attrsNoRqsGrid", grid, "rowColumn"},
                       {"attrsNoRqsToggleButton", toggle, "attrsNoRqsGrid"},
                       {"attrsStripDSOGrid", grid, "rowColumn"},
                       {"attrsStripDSOToggleButton", toggle, "attrsStripDSOGrid"},
                       {"hardAttrsLabel", label, "rowColumn"},
                       {"hardWarnLabel", label, "rowColumn"},
                       {"attrsMachGrid", grid, "rowColumn"},
                       {"attrsMachToggleButton", toggle, "attrsMachGrid"},
                       {"attrsMachRowColumn", rc, "attrsMachGrid"},
                       {"attrsModelLabel", label, mach},
                       {"attrsModelRowColumn", rc, mach},
                       {"attrsCpuLabel", label, mach},
                       {"attrsCpuSpringBox", ovSpringBoxWidgetClass, mach},
                       {"r3kPushButton", push, "attrsCpuSpringBox"},
                       {"r4kPushButton", push, "attrsCpuSpringBox"},
                       {"attrsCpuSpringBox1", ovSpringBoxWidgetClass, mach},
                       {"r8kPushButton", push, "attrsCpuSpringBox1"},
                       {"r10kPushButton", push, "attrsCpuSpringBox1"},
                       {"attrsCpuBoardRowColumn", rc, mach},
                       {"attrsGfxBoardLabel", label, mach},
                       {"attrsGfxBoardRowColumn", rc, mach},
                       {"attrsSubgrLabel", label, mach},
                       {"attrsSubgrRowColumn", rc, mach},
                       {"attrsSpringBox", ovSpringBoxWidgetClass, "FileListAttrs"},
                       {"attrsClearPushButton", push, "attrsSpringBox"},
                       {"attrsSpringBox1", ovSpringBoxWidgetClass, "FileListAttrs"},
                       {"attrsAssignArrowButton", xmArrowButtonWidgetClass, "attrsSpringBox1"},
                       {"attrsAssignLabel", label, "attrsSpringBox1"},
                   });
  // The option menu offers the pulldown's three choices.
  Widget menu = nullptr;
  XtVaGetValues(findWidget(ui.baseWidget(), "attrsConfigOptionMenu"), XmNsubMenuId, &menu,
                nullptr);
  EXPECT_EQ(findWidget(ui.baseWidget(), "pulldownMenu"), menu);
}

TEST_F(FileListAttrsUITest, EveryCallbackReachesItsMethod) {
  RecordingFileListAttrs ui("FileListAttrs", _shell);
  expectCallbacksRouted(
      ui.baseWidget(),
      {
          {"attrsConfigToggleButton", XmNvalueChangedCallback, "attrsConfigToggleButton"},
          {"configUpdatePushButton", XmNactivateCallback, "attrsConfigOptionMenu"},
          {"configNoUpdatePushButton", XmNactivateCallback, "attrsConfigOptionMenu"},
          {"configSuggestPushButton", XmNactivateCallback, "attrsConfigOptionMenu"},
          {"attrsPreOpText", XmNvalueChangedCallback, "attrsPreOpText"},
          {"attrsPostOpText", XmNvalueChangedCallback, "attrsPostOpText"},
          {"attrsExitOpText", XmNvalueChangedCallback, "attrsExitOpText"},
          {"attrsRemoveOpText", XmNvalueChangedCallback, "attrsRemoveOpText"},
          {"r3kPushButton", XmNactivateCallback, "r3kPushButton"},
          {"r4kPushButton", XmNactivateCallback, "r4kPushButton"},
          {"r8kPushButton", XmNactivateCallback, "r8kPushButton"},
          {"r10kPushButton", XmNactivateCallback, "r10kPushButton"},
          {"attrsClearPushButton", XmNactivateCallback, "attrsClearPushButton"},
          {"attrsAssignArrowButton", XmNactivateCallback, "attrsAssignArrowButton"},
      },
      ui.log);
}

TEST_F(FileListAttrsUITest, FallbackTextsAndTheUsersOwn) {
  expectResourceLinesWellFormed(FileListAttrsUI::_defaultFileListAttrsUIResources);
  {
    FileListAttrsUI ui("FileListAttrs", _shell);
    expectLabelTexts(
        ui.baseWidget(),
        {
            {"attrsConfigToggleButton", "config  (file)"},
            {"attrsConfigOptionMenu", ""},
            {"configUpdatePushButton", "update"},
            {"configNoUpdatePushButton", "noupdate"},
            {"configSuggestPushButton", "suggest"},
            {"attrsShadowToggleButton", "shadow  (Install during next boot)"},
            {"attrsPreOpToggleButton", "preop  (Execute prior to installation)"},
            {"attrsPostOpToggleButton", "postop  (Execute after installation)"},
            {"attrsExitOpToggleButton", "exitop  (Execute after install completed)"},
            {"attrsRemoveOpToggleButton", "removeop  (Execute after removal)"},
            {"attrsNoShareToggleButton", "noshare  (Duplicate for diskless clients)"},
            {"attrsNoStripToggleButton", "nostrip  (Retain symbolic information)"},
            {"attrsNoRqsToggleButton", "norqs  (Do not requickstart)"},
            {"attrsStripDSOToggleButton", "stripdso  (Strip dynamic shared objects)"},
            {"attrsMachToggleButton", "mach (Machine dependent)"},
            {"attrsCpuLabel", "CPUBOARD  (CPU Board)"},
            {"attrsGfxBoardLabel", "GFXBOARD  (Graphics Board)"},
            {"attrsSubgrLabel", "SUBGR  (Subgraphics Board)"},
            {"attrsModelLabel", "MODEL"},
            {"attrsClearPushButton", "Clear All Values"},
            {"attrsAssignLabel", "Assign"},
            {"r3kPushButton", "R3k Boards Only"},
            {"r4kPushButton", "R4k Boards Only"},
            {"r8kPushButton", "R8k Boards Only"},
            {"r10kPushButton", "R10k Boards Only"},
            {"softAttrsLabel", "Software Attributes"},
            {"hardAttrsLabel", "Hardware Attributes"},
            {"hardWarnLabel",
             "  By default, files are installed on all\n  platforms.  Restrict installation "
             "to\n  particular platform(s) by checking\n  the appropriate box(es)."},
        });
  }
  putUserResource(_shell, "Tamblin*userFileListAttrs*attrsModelLabel.labelString: Models");
  FileListAttrsUI ui("userFileListAttrs", _shell);
  expectLabelTexts(ui.baseWidget(), {{"attrsModelLabel", "Models"}, {"attrsCpuLabel",
                                                                      "CPUBOARD  (CPU Board)"}});
}

}  // namespace
