// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <Xm/ArrowB.h>
#include <Xm/Label.h>
#include <Xm/List.h>
#include <Xm/PushB.h>
#include <Xm/ScrolledW.h>
#include <Xm/TextF.h>

#include "app/ui/FileListAddUI.h"
#include "app/ui/LayoutChecks.h"
#include "ov/OvGrid.h"
#include "ov/OvSpringBox.h"

namespace {

#define RECORD(method) \
  void method(Widget w, XtPointer d) override { log.add(#method, w, d); }

class RecordingFileListAdd : public FileListAddUI {
 public:
  using FileListAddUI::FileListAddUI;
  RECORD(allPushButton)
  RECORD(arrowButton)
  RECORD(defaultAction)
  RECORD(directoryTextField)
  RECORD(nonePushButton)
  RECORD(selectionTextField)
  CallLog log;
};

class FileListAddUITest : public ::testing::Test {
 protected:
  void SetUp() override { _shell = newApplicationShell("addShell"); }
  void TearDown() override { XtDestroyWidget(_shell); }
  Widget _shell = nullptr;
};

TEST_F(FileListAddUITest, BuildsTheNamedWidgetsInOrderUnderTheirParents) {
  FileListAddUI ui("FileListAdd", _shell);
  EXPECT_STREQ("FileListAddUI", ui.className());
  expectWidgetTree(ui.baseWidget(),
                   {
                       {"FileListAdd", ovGridWidgetClass, "addShell"},
                       {"directoryLabel", xmLabelWidgetClass, "FileListAdd"},
                       {"directoryTextField", xmTextFieldWidgetClass, "FileListAdd"},
                       {"scrolledWindow", xmScrolledWindowWidgetClass, "FileListAdd"},
                       {"filesList", xmListWidgetClass, "scrolledWindow"},
                       {"selectionGrid", ovGridWidgetClass, "FileListAdd"},
                       {"selectionLabel", xmLabelWidgetClass, "selectionGrid"},
                       {"selectionTextField", xmTextFieldWidgetClass, "selectionGrid"},
                       {"allPushButton", xmPushButtonWidgetClass, "selectionGrid"},
                       {"nonePushButton", xmPushButtonWidgetClass, "selectionGrid"},
                       {"arrowSpringBox", ovSpringBoxWidgetClass, "FileListAdd"},
                       {"arrowButton", xmArrowButtonWidgetClass, "arrowSpringBox"},
                       {"arrowLabel", xmLabelWidgetClass, "arrowSpringBox"},
                   });
  unsigned char policy = 0;
  int visible = 0;
  XtVaGetValues(findWidget(ui.baseWidget(), "filesList"), XmNselectionPolicy, &policy,
                XmNvisibleItemCount, &visible, nullptr);
  EXPECT_EQ(XmEXTENDED_SELECT, policy);
  EXPECT_EQ(11, visible);
}

TEST_F(FileListAddUITest, EveryCallbackReachesItsMethod) {
  RecordingFileListAdd ui("FileListAdd", _shell);
  expectCallbacksRouted(ui.baseWidget(),
                        {
                            {"directoryTextField", XmNactivateCallback, "directoryTextField"},
                            {"filesList", XmNdefaultActionCallback, "defaultAction"},
                            {"selectionTextField", XmNvalueChangedCallback, "selectionTextField"},
                            {"allPushButton", XmNactivateCallback, "allPushButton"},
                            {"nonePushButton", XmNactivateCallback, "nonePushButton"},
                            {"arrowButton", XmNactivateCallback, "arrowButton"},
                        },
                        ui.log);
}

TEST_F(FileListAddUITest, FallbackTextsAndTheUsersOwn) {
  expectResourceLinesWellFormed(FileListAddUI::_defaultFileListAddUIResources);
  {
    FileListAddUI ui("FileListAdd", _shell);
    expectLabelTexts(ui.baseWidget(), {
                                          {"directoryLabel", "File Browser"},
                                          {"selectionLabel", "Filter"},
                                          {"allPushButton", "All"},
                                          {"nonePushButton", "None"},
                                          {"arrowLabel", "Add"},
                                      });
  }
  putUserResource(_shell, "Tamblin*userFileListAdd*arrowLabel.labelString: Take");
  FileListAddUI ui("userFileListAdd", _shell);
  expectLabelTexts(ui.baseWidget(), {{"arrowLabel", "Take"}, {"directoryLabel", "File Browser"}});
}

}  // namespace
