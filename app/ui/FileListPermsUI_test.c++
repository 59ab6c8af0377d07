// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <Xm/ArrowB.h>
#include <Xm/Frame.h>
#include <Xm/Label.h>
#include <Xm/PushB.h>
#include <Xm/Separator.h>
#include <Xm/TextF.h>

#include "app/ui/FileListPermsUI.h"
#include "app/ui/LayoutChecks.h"
#include "ov/OvGrid.h"
#include "ov/OvSpringBox.h"

namespace {

#define RECORD(method) \
  void method(Widget w, XtPointer d) override { log.add(#method, w, d); }

class RecordingFileListPerms : public FileListPermsUI {
 public:
  using FileListPermsUI::FileListPermsUI;
  RECORD(applyArrowButton)
  RECORD(assignArrowButton)
  RECORD(destDirTextField)
  RECORD(destFileTextField)
  RECORD(destRootTextField)
  RECORD(groupTextField)
  RECORD(modeTextField)
  RECORD(ownerTextField)
  RECORD(resetPushButton)
  RECORD(sourceRootTextField)
  CallLog log;
};

class FileListPermsUITest : public ::testing::Test {
 protected:
  void SetUp() override { _shell = newApplicationShell("permsShell"); }
  void TearDown() override { XtDestroyWidget(_shell); }
  Widget _shell = nullptr;
};

TEST_F(FileListPermsUITest, BuildsTheNamedWidgetsInOrderUnderTheirParents) {
  FileListPermsUI ui("FileListPerms", _shell);
  EXPECT_STREQ("FileListPermsUI", ui.className());
  expectWidgetTree(ui.baseWidget(),
                   {
                       {"FileListPerms", ovGridWidgetClass, "permsShell"},
                       {"upperGrid", ovGridWidgetClass, "FileListPerms"},
                       {"frame", xmFrameWidgetClass, "upperGrid"},
                       {"rootGrid", ovGridWidgetClass, "frame"},
                       {"sourceRootLabel", xmLabelWidgetClass, "rootGrid"},
                       {"sourceRootTextField", xmTextFieldWidgetClass, "rootGrid"},
                       {"destRootLabel", xmLabelWidgetClass, "rootGrid"},
                       {"destRootTextField", xmTextFieldWidgetClass, "rootGrid"},
                       {"applySpringBox", ovSpringBoxWidgetClass, "upperGrid"},
                       {"applyArrowButton", xmArrowButtonWidgetClass, "applySpringBox"},
                       {"applyLabel", xmLabelWidgetClass, "applySpringBox"},
                       {"lowerGrid", ovGridWidgetClass, "FileListPerms"},
                       {"permsDestFrame", xmFrameWidgetClass, "lowerGrid"},
                       {"permsDestGrid", ovGridWidgetClass, "permsDestFrame"},
                       {"permsGrid", ovGridWidgetClass, "permsDestGrid"},
                       {"modeLabel", xmLabelWidgetClass, "permsGrid"},
                       {"modeTextField", xmTextFieldWidgetClass, "permsGrid"},
                       {"modeLabel1", xmLabelWidgetClass, "permsGrid"},
                       {"ownerLabel", xmLabelWidgetClass, "permsGrid"},
                       {"ownerTextField", xmTextFieldWidgetClass, "permsGrid"},
                       {"ownerLabel1", xmLabelWidgetClass, "permsGrid"},
                       {"groupLabel", xmLabelWidgetClass, "permsGrid"},
                       {"groupTextField", xmTextFieldWidgetClass, "permsGrid"},
                       {"groupLabel1", xmLabelWidgetClass, "permsGrid"},
                       {"permsDestSeparator", xmSeparatorWidgetClass, "permsDestGrid"},
                       {"destGrid", ovGridWidgetClass, "permsDestGrid"},
                       {"destDirLabel", xmLabelWidgetClass, "destGrid"},
                       {"destDirTextField", xmTextFieldWidgetClass, "destGrid"},
                       {"destFileLabel", xmLabelWidgetClass, "destGrid"},
                       {"destFileTextField", xmTextFieldWidgetClass, "destGrid"},
                       {"assignSpringBox", ovSpringBoxWidgetClass, "lowerGrid"},
                       {"assignArrowButton", xmArrowButtonWidgetClass, "assignSpringBox"},
                       {"assignLabel", xmLabelWidgetClass, "assignSpringBox"},
                       {"resetSpringBox", ovSpringBoxWidgetClass, "lowerGrid"},
                       {"resetPushButton", xmPushButtonWidgetClass, "resetSpringBox"},
                   });
  // Field widths in characters.
  const struct {
    const char* field;
    short columns;
  } widths[] = {{"sourceRootTextField", 30}, {"destRootTextField", 30}, {"modeTextField", 12},
                {"ownerTextField", 12},      {"groupTextField", 12},    {"destDirTextField", 30},
                {"destFileTextField", 30}};
  for (const auto& w : widths) {
    short columns = 0;
    XtVaGetValues(findWidget(ui.baseWidget(), w.field), XmNcolumns, &columns, nullptr);
    EXPECT_EQ(w.columns, columns) << w.field;
  }
}

TEST_F(FileListPermsUITest, EveryCallbackReachesItsMethod) {
  RecordingFileListPerms ui("FileListPerms", _shell);
  expectCallbacksRouted(ui.baseWidget(),
                        {
                            {"sourceRootTextField", XmNactivateCallback, "sourceRootTextField"},
                            {"destRootTextField", XmNactivateCallback, "destRootTextField"},
                            {"applyArrowButton", XmNactivateCallback, "applyArrowButton"},
                            {"modeTextField", XmNactivateCallback, "modeTextField"},
                            {"ownerTextField", XmNactivateCallback, "ownerTextField"},
                            {"groupTextField", XmNactivateCallback, "groupTextField"},
                            {"destDirTextField", XmNactivateCallback, "destDirTextField"},
                            {"destFileTextField", XmNactivateCallback, "destFileTextField"},
                            {"assignArrowButton", XmNactivateCallback, "assignArrowButton"},
                            {"resetPushButton", XmNactivateCallback, "resetPushButton"},
                        },
                        ui.log);
}

TEST_F(FileListPermsUITest, FallbackTextsAndTheUsersOwn) {
  expectResourceLinesWellFormed(FileListPermsUI::_defaultFileListPermsUIResources);
  {
    FileListPermsUI ui("FileListPerms", _shell);
    expectLabelTexts(ui.baseWidget(), {
                                          {"sourceRootLabel", "Source Tree Root"},
                                          {"destRootLabel", "Destination Tree Root"},
                                          {"applyLabel", "Apply"},
                                          {"modeLabel", "Mode"},
                                          {"modeLabel1", "1234567890"},
                                          {"ownerLabel", "Owner"},
                                          {"ownerLabel1", "1234567890"},
                                          {"groupLabel", "Group"},
                                          {"groupLabel1", "1234567890"},
                                          {"destDirLabel", "Destination Directory"},
                                          {"destFileLabel", "Destination Filename"},
                                          {"assignLabel", "Assign"},
                                          {"resetPushButton", "Reset All Values"},
                                      });
  }
  putUserResource(_shell, "Tamblin*userFileListPerms*modeLabel.labelString: Permissions");
  FileListPermsUI ui("userFileListPerms", _shell);
  expectLabelTexts(ui.baseWidget(), {{"modeLabel", "Permissions"}, {"ownerLabel", "Owner"}});
}

}  // namespace
