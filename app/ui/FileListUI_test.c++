// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <Xm/Xm.h>

#include <string>

#include "app/ui/FileListUI.h"
#include "app/ui/LayoutChecks.h"
#include "util/UiTestApp.h"

namespace {

#define RECORD(method) \
  void method(Widget w, XtPointer d) override { log.add(#method, w, d); }

class RecordingFileList : public FileListUI {
 public:
  using FileListUI::FileListUI;
  RECORD(allPushButton)
  RECORD(defaultAction)
  RECORD(nonePushButton)
  RECORD(removePushButton)
  RECORD(selectionTextField)
  RECORD(undoPushButton)
  CallLog log;
};

class FileListUITest : public ::testing::Test {
 protected:
  void SetUp() override {
    _shell = newApplicationShell("fileListShell");
  }
  void TearDown() override { XtDestroyWidget(_shell); }
  Widget _shell = nullptr;
};

TEST_F(FileListUITest, NamesTextsAndCallbacks) {
  RecordingFileList ui("FileList", _shell);
  const char* activate = XmNactivateCallback;
  expectLayoutContract(
      ui.baseWidget(), FileListUI::_defaultFileListUIResources,
      {
          {"label", "Idb File:"},
          {"scrolledWindow.fileList", nullptr, XmNdefaultActionCallback, "defaultAction"},
          {"selectionGrid.selectionLabel", "Filter"},
          // The filter runs on Return, not on each key.
          {"selectionGrid.selectionTextField", nullptr, activate, "selectionTextField"},
          {"selectionGrid.allPushButton", "All", activate, "allPushButton"},
          {"selectionGrid.nonePushButton", "None", activate, "nonePushButton"},
          {"springBox.removePushButton", "Delete Selected Items", activate, "removePushButton"},
          {"springBox.undoPushButton", "Undo Last Operation", activate, "undoPushButton"},
      },
      ui.log);

  // A user's resource under the class name wins over the fallback.
  putUserResource(_shell, "Tamblin*userFileList*removePushButton.labelString: Weg damit");
  FileListUI user("userFileList", _shell);
  EXPECT_EQ("Weg damit", labelText(findWidget(user.baseWidget(), "removePushButton")));
}

std::string renditionFont(Widget w, const char* tag) {
  XmRenderTable table = nullptr;
  XtVaGetValues(w, XmNrenderTable, &table, nullptr);
  if (!table) return "<no render table>";
  XmRendition rendition = XmRenderTableGetRendition(table, const_cast<char*>(tag));
  if (!rendition) return "<no rendition>";
  char* fontName = nullptr;
  XmFontType fontType = XmFONT_IS_FONT;
  Arg args[2];
  XtSetArg(args[0], XmNfontName, &fontName);
  XtSetArg(args[1], XmNfontType, &fontType);
  XmRenditionRetrieve(rendition, args, 2);
  bool named = fontName && fontName != reinterpret_cast<char*>(XmAS_IS);
  std::string out = named ? fontName : "<no font>";
  if (fontType != XmFONT_IS_XFT) out += " (not Xft)";
  XmRenditionFree(rendition);
  return out;
}

TEST_F(FileListUITest, ListsUseAMonospaceAndLabelsASansThroughXft) {
  FileListUI ui("FileList", _shell);
  EXPECT_EQ("Monospace", renditionFont(findWidget(ui.baseWidget(), "fileList"), "mono"));
  EXPECT_EQ("Sans", renditionFont(findWidget(ui.baseWidget(), "label"), "xft"));
  EXPECT_EQ("Sans", renditionFont(findWidget(ui.baseWidget(), "allPushButton"), "xft"));
}

TEST_F(FileListUITest, ExtraHeightGoesToTheListAlone) {
  FileListUI ui("FileList", _shell);
  ui.show();
  XtRealizeWidget(_shell);
  UiTestApp::flush();
  EXPECT_GE(heightOf(findWidget(ui.baseWidget(), "scrolledWindow")), 368);
  expectExtraHeightGoesTo(ui.baseWidget(), "scrolledWindow",
                          {"label", "selectionGrid", "springBox"}, 200);
}

}  // namespace
