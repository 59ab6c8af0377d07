// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <Xm/TextF.h>

#include <string>

#include "app/ui/GenerateUI.h"
#include "app/ui/LayoutChecks.h"
#include "util/UiTestApp.h"

namespace {

#define RECORD(method) \
  void method(Widget w, XtPointer d) override { log.add(#method, w, d); }

class RecordingGenerate : public GenerateUI {
 public:
  using GenerateUI::GenerateUI;
  RECORD(allPushButton)
  RECORD(dryrunPushButton)
  CallLog log;
};

class GenerateUITest : public ::testing::Test {
 protected:
  void SetUp() override { _shell = newApplicationShell("generateShell"); }
  void TearDown() override { XtDestroyWidget(_shell); }
  Widget _shell = nullptr;
};

std::string fieldText(Widget w) {
  char* t = XmTextFieldGetString(w);
  std::string s = t ? t : "";
  XtFree(t);
  return s;
}

TEST_F(GenerateUITest, NamesTextsAndCallbacks) {
  RecordingGenerate ui("Generate", _shell);
  const char* activate = XmNactivateCallback;
  expectLayoutContract(
      ui.baseWidget(), GenerateUI::_defaultGenerateUIResources,
      {
          {"label", "Spec File:"},
          {"sourceRootGrid.sourceRootLabel", "Source Tree Root"},
          {"sourceRootGrid.sourceRootTextField"},
          {"destRootGrid.destRootLabel", "Destination Tree Root"},
          {"destRootGrid.destRootTextField"},
          {"distDirGrid.distDirLabel", "Distribution Directory"},
          {"distDirGrid.distDirTextField"},
          {"rowColumn.verboseToggleButton", "Verbose (Provide detailed messages during build)"},
          {"rowColumn.noCompressToggleButton", "No Compress (Do not compress)"},
          {"rowColumn.noStripToggleButton", "No Strip (Retain symbolic information)"},
          {"buttonGrid.allPushButton", "Build All", activate, "allPushButton"},
          {"buttonGrid.dryrunPushButton", "Test Build", activate, "dryrunPushButton"},
      },
      ui.log);
  // The distribution directory's default is a resource too, so a site can
  // move it.
  EXPECT_EQ("/usr/dist", fieldText(findWidget(ui.baseWidget(), "distDirTextField")));
  putUserResource(_shell, "Tamblin*userGenerate*distDirTextField.value: /var/dist");
  GenerateUI user("userGenerate", _shell);
  EXPECT_EQ("/var/dist", fieldText(findWidget(user.baseWidget(), "distDirTextField")));
}

TEST_F(GenerateUITest, OnlyTheOptionsTakeExtraHeight) {
  GenerateUI ui("Generate", _shell);
  ui.show();
  XtRealizeWidget(_shell);
  UiTestApp::flush();
  expectExtraHeightGoesTo(ui.baseWidget(), "rowColumn",
                          {"label", "sourceRootGrid", "destRootGrid", "distDirGrid", "buttonGrid"},
                          100);
}

}  // namespace
