// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <Xm/Xm.h>

#include "app/ui/FileListTagsUI.h"
#include "app/ui/LayoutChecks.h"

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

TEST_F(FileListTagsUITest, NamesTextsAndCallbacks) {
  RecordingFileListTags ui("FileListTags", _shell);
  const char* activate = XmNactivateCallback;
  expectLayoutContract(
      ui.baseWidget(), FileListTagsUI::_defaultFileListTagsUIResources,
      {
          {"label", "Tags"},
          {"scrolledWindow.tagsList", nullptr, XmNsingleSelectionCallback, "singleSelection"},
          {"scrolledWindow.tagsList", nullptr, XmNbrowseSelectionCallback, "browseSelection"},
          {"scrolledWindow.tagsList", nullptr, XmNdefaultActionCallback, "defaultAction"},
          {"selectionTextField", nullptr, activate, "selectionTextField"},
          {"buttonSpringBox.addPushButton", "Add", activate, "addPushButton"},
          {"buttonSpringBox.replacePushButton", "Replace", activate, "replacePushButton"},
          {"buttonSpringBox.deletePushButton", "Delete", activate, "deletePushButton"},
          {"arrowSpringBox.arrowButton", nullptr, activate, "arrowButton"},
          {"arrowSpringBox.arrowLabel", "Assign"},
      },
      ui.log);

  // A user's resource under the class name wins over the fallback.
  putUserResource(_shell, "Tamblin*userFileListTags*label.labelString: Subsystems");
  FileListTagsUI user("userFileListTags", _shell);
  EXPECT_EQ("Subsystems", labelText(findWidget(user.baseWidget(), "label")));
}

}  // namespace
