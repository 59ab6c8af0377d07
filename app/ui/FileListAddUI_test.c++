// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <Xm/Xm.h>

#include "app/ui/FileListAddUI.h"
#include "app/ui/LayoutChecks.h"

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

TEST_F(FileListAddUITest, NamesTextsAndCallbacks) {
  RecordingFileListAdd ui("FileListAdd", _shell);
  const char* activate = XmNactivateCallback;
  expectLayoutContract(
      ui.baseWidget(), FileListAddUI::_defaultFileListAddUIResources,
      {
          {"directoryLabel", "File Browser"},
          {"directoryTextField", nullptr, activate, "directoryTextField"},
          {"scrolledWindow.filesList", nullptr, XmNdefaultActionCallback, "defaultAction"},
          {"selectionGrid.selectionLabel", "Filter"},
          // The filter follows each key.
          {"selectionGrid.selectionTextField", nullptr, XmNvalueChangedCallback,
           "selectionTextField"},
          {"selectionGrid.allPushButton", "All", activate, "allPushButton"},
          {"selectionGrid.nonePushButton", "None", activate, "nonePushButton"},
          {"arrowSpringBox.arrowButton", nullptr, activate, "arrowButton"},
          {"arrowSpringBox.arrowLabel", "Add"},
      },
      ui.log);

  // A user's resource under the class name wins over the fallback.
  putUserResource(_shell, "Tamblin*userFileListAdd*arrowLabel.labelString: Take");
  FileListAddUI user("userFileListAdd", _shell);
  EXPECT_EQ("Take", labelText(findWidget(user.baseWidget(), "arrowLabel")));
}

}  // namespace
