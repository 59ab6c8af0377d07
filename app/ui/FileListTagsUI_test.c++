// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <Xm/ArrowB.h>
#include <Xm/Label.h>
#include <Xm/List.h>
#include <Xm/PushB.h>
#include <Xm/ScrolledW.h>
#include <Xm/TextF.h>

#include "app/ui/FileListTagsUI.h"
#include "app/ui/LayoutChecks.h"
#include "ov/OvGrid.h"
#include "ov/OvSpringBox.h"

namespace {

#define RECORD(method) \
  void method(Widget w, XtPointer d) override { log.add(#method, w, d); }

class RecordingFileListTags : public FileListTagsUI {
 public:
  using FileListTagsUI::FileListTagsUI;
  RECORD(addPushButton)
  RECORD(arrowButton)
  RECORD(browseSelection)
  RECORD(defaultAction)
  RECORD(deletePushButton)
  RECORD(replacePushButton)
  RECORD(selectionTextField)
  RECORD(singleSelection)
  CallLog log;
};

class FileListTagsUITest : public ::testing::Test {
 protected:
  void SetUp() override { _shell = newApplicationShell("tagsShell"); }
  void TearDown() override { XtDestroyWidget(_shell); }
  Widget _shell = nullptr;
};

TEST_F(FileListTagsUITest, BuildsTheNamedWidgetsInOrderUnderTheirParents) {
  FileListTagsUI ui("FileListTags", _shell);
  EXPECT_STREQ("FileListTagsUI", ui.className());
  expectWidgetTree(ui.baseWidget(),
                   {
                       {"FileListTags", ovGridWidgetClass, "tagsShell"},
                       {"label", xmLabelWidgetClass, "FileListTags"},
                       {"scrolledWindow", xmScrolledWindowWidgetClass, "FileListTags"},
                       {"tagsList", xmListWidgetClass, "scrolledWindow"},
                       {"selectionTextField", xmTextFieldWidgetClass, "FileListTags"},
                       {"buttonSpringBox", ovSpringBoxWidgetClass, "FileListTags"},
                       {"addPushButton", xmPushButtonWidgetClass, "buttonSpringBox"},
                       {"replacePushButton", xmPushButtonWidgetClass, "buttonSpringBox"},
                       {"deletePushButton", xmPushButtonWidgetClass, "buttonSpringBox"},
                       {"arrowSpringBox", ovSpringBoxWidgetClass, "FileListTags"},
                       {"arrowButton", xmArrowButtonWidgetClass, "arrowSpringBox"},
                       {"arrowLabel", xmLabelWidgetClass, "arrowSpringBox"},
                   });
}

TEST_F(FileListTagsUITest, EveryCallbackReachesItsMethod) {
  RecordingFileListTags ui("FileListTags", _shell);
  expectCallbacksRouted(ui.baseWidget(),
                        {
                            {"tagsList", XmNsingleSelectionCallback, "singleSelection"},
                            {"tagsList", XmNbrowseSelectionCallback, "browseSelection"},
                            {"tagsList", XmNdefaultActionCallback, "defaultAction"},
                            {"selectionTextField", XmNactivateCallback, "selectionTextField"},
                            {"addPushButton", XmNactivateCallback, "addPushButton"},
                            {"replacePushButton", XmNactivateCallback, "replacePushButton"},
                            {"deletePushButton", XmNactivateCallback, "deletePushButton"},
                            {"arrowButton", XmNactivateCallback, "arrowButton"},
                        },
                        ui.log);
}

TEST_F(FileListTagsUITest, FallbackTextsAndTheUsersOwn) {
  expectResourceLinesWellFormed(FileListTagsUI::_defaultFileListTagsUIResources);
  {
    FileListTagsUI ui("FileListTags", _shell);
    expectLabelTexts(ui.baseWidget(), {
                                          {"label", "Tags"},
                                          {"addPushButton", "Add"},
                                          {"replacePushButton", "Replace"},
                                          {"deletePushButton", "Delete"},
                                          {"arrowLabel", "Assign"},
                                      });
  }
  putUserResource(_shell, "Tamblin*userFileListTags*label.labelString: Subsystems");
  FileListTagsUI ui("userFileListTags", _shell);
  expectLabelTexts(ui.baseWidget(), {{"label", "Subsystems"}, {"addPushButton", "Add"}});
}

}  // namespace
