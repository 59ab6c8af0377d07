// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <Xm/Xm.h>

#include "app/ui/FileListPermsUI.h"
#include "app/ui/LayoutChecks.h"

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

#define ROOTS "upperGrid.frame.rootGrid."
#define PERMS "lowerGrid.permsDestFrame.permsDestGrid.permsGrid."
#define DEST "lowerGrid.permsDestFrame.permsDestGrid.destGrid."

TEST_F(FileListPermsUITest, NamesTextsAndCallbacks) {
  RecordingFileListPerms ui("FileListPerms", _shell);
  const char* activate = XmNactivateCallback;
  expectLayoutContract(
      ui.baseWidget(), FileListPermsUI::_defaultFileListPermsUIResources,
      {
          {ROOTS "sourceRootLabel", "Source Tree Root"},
          {ROOTS "sourceRootTextField", nullptr, activate, "sourceRootTextField"},
          {ROOTS "destRootLabel", "Destination Tree Root"},
          {ROOTS "destRootTextField", nullptr, activate, "destRootTextField"},
          {"upperGrid.applySpringBox.applyArrowButton", nullptr, activate, "applyArrowButton"},
          {"upperGrid.applySpringBox.applyLabel", "Apply"},
          {PERMS "modeLabel", "Mode"},
          {PERMS "modeTextField", nullptr, activate, "modeTextField"},
          {PERMS "modeLabel1", "1234567890"},
          {PERMS "ownerLabel", "Owner"},
          {PERMS "ownerTextField", nullptr, activate, "ownerTextField"},
          {PERMS "ownerLabel1", "1234567890"},
          {PERMS "groupLabel", "Group"},
          {PERMS "groupTextField", nullptr, activate, "groupTextField"},
          {PERMS "groupLabel1", "1234567890"},
          {DEST "destDirLabel", "Destination Directory"},
          {DEST "destDirTextField", nullptr, activate, "destDirTextField"},
          {DEST "destFileLabel", "Destination Filename"},
          {DEST "destFileTextField", nullptr, activate, "destFileTextField"},
          {"lowerGrid.assignSpringBox.assignArrowButton", nullptr, activate, "assignArrowButton"},
          {"lowerGrid.assignSpringBox.assignLabel", "Assign"},
          {"lowerGrid.resetSpringBox.resetPushButton", "Reset All Values", activate,
           "resetPushButton"},
      },
      ui.log);

  // A user's resource under the class name wins over the fallback.
  putUserResource(_shell, "Tamblin*userFileListPerms*modeLabel.labelString: Permissions");
  FileListPermsUI user("userFileListPerms", _shell);
  EXPECT_EQ("Permissions", labelText(findWidget(user.baseWidget(), "modeLabel")));
}

}  // namespace
