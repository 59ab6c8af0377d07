// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <X11/IntrinsicP.h>
#include <X11/Shell.h>
#include <Xm/Label.h>
#include <Xm/List.h>
#include <Xm/PushB.h>
#include <Xm/ScrolledW.h>
#include <Xm/TextF.h>

#include "app/ui/FileListUI.h"
#include "app/ui/LayoutChecks.h"
#include "ov/OvList.h"
#include "ov/OvGrid.h"
#include "ov/OvSpringBox.h"
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

TEST_F(FileListUITest, BuildsTheNamedWidgetsInOrderUnderTheirParents) {
  FileListUI ui("FileList", _shell);
  EXPECT_STREQ("FileListUI", ui.className());
  EXPECT_FALSE(XtIsManaged(ui.baseWidget()));
  expectWidgetTree(ui.baseWidget(),
                   {
                       {"FileList", ovGridWidgetClass, "fileListShell"},
                       {"label", xmLabelWidgetClass, "FileList"},
                       {"scrolledWindow", xmScrolledWindowWidgetClass, "FileList"},
                       {"fileList", ovListWidgetClass, "scrolledWindow"},
                       {"selectionGrid", ovGridWidgetClass, "FileList"},
                       {"selectionLabel", xmLabelWidgetClass, "selectionGrid"},
                       {"selectionTextField", xmTextFieldWidgetClass, "selectionGrid"},
                       {"allPushButton", xmPushButtonWidgetClass, "selectionGrid"},
                       {"nonePushButton", xmPushButtonWidgetClass, "selectionGrid"},
                       {"springBox", ovSpringBoxWidgetClass, "FileList"},
                       {"removePushButton", xmPushButtonWidgetClass, "springBox"},
                       {"undoPushButton", xmPushButtonWidgetClass, "springBox"},
                   });
  unsigned char policy = 0;
  XtVaGetValues(findWidget(ui.baseWidget(), "fileList"), XmNselectionPolicy, &policy, nullptr);
  EXPECT_EQ(XmEXTENDED_SELECT, policy);
  // The list brought its own scroll bars into the scrolled window.
  Widget vertical = nullptr, horizontal = nullptr;
  XtVaGetValues(findWidget(ui.baseWidget(), "scrolledWindow"), XmNverticalScrollBar, &vertical,
                XmNhorizontalScrollBar, &horizontal, nullptr);
  EXPECT_NE(nullptr, vertical);
  EXPECT_NE(nullptr, horizontal);
  // Row and column of each child of the grids.
  const struct {
    const char* widget;
    int row, column;
  } cells[] = {{"label", 0, 0},          {"scrolledWindow", 1, 0},     {"selectionGrid", 2, 0},
               {"springBox", 3, 0},      {"selectionLabel", 0, 0},     {"selectionTextField", 0, 1},
               {"allPushButton", 0, 2},  {"nonePushButton", 0, 3}};
  for (const auto& c : cells) {
    int row = -1, column = -1;
    XtVaGetValues(findWidget(ui.baseWidget(), c.widget), OvNrow, &row, OvNcolumn, &column, nullptr);
    EXPECT_EQ(c.row, row) << c.widget;
    EXPECT_EQ(c.column, column) << c.widget;
  }
}

TEST_F(FileListUITest, EveryCallbackReachesItsMethod) {
  RecordingFileList ui("FileList", _shell);
  expectCallbacksRouted(ui.baseWidget(),
                        {
                            {"fileList", XmNdefaultActionCallback, "defaultAction"},
                            {"selectionTextField", XmNactivateCallback, "selectionTextField"},
                            {"allPushButton", XmNactivateCallback, "allPushButton"},
                            {"nonePushButton", XmNactivateCallback, "nonePushButton"},
                            {"removePushButton", XmNactivateCallback, "removePushButton"},
                            {"undoPushButton", XmNactivateCallback, "undoPushButton"},
                        },
                        ui.log);
}

TEST_F(FileListUITest, FallbackTextsAndTheUsersOwn) {
  expectResourceLinesWellFormed(FileListUI::_defaultFileListUIResources);
  {
    FileListUI ui("FileList", _shell);
    expectLabelTexts(ui.baseWidget(), {
                                          {"label", "Idb File:"},
                                          {"selectionLabel", "Filter"},
                                          {"allPushButton", "All"},
                                          {"nonePushButton", "None"},
                                          {"removePushButton", "Delete Selected Items"},
                                          {"undoPushButton", "Undo Last Operation"},
                                      });
  }
  // A user's resource under the class name wins over the fallback.
  putUserResource(_shell, "Tamblin*userFileList*removePushButton.labelString: Weg damit");
  FileListUI ui("userFileList", _shell);
  expectLabelTexts(ui.baseWidget(), {{"removePushButton", "Weg damit"}, {"allPushButton", "All"}});
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

int heightOf(Widget w) {
  Dimension h = 0;
  XtVaGetValues(w, XmNheight, &h, nullptr);
  return h;
}

TEST_F(FileListUITest, ExtraHeightGoesToTheListAlone) {
  FileListUI ui("FileList", _shell);
  ui.show();
  XtRealizeWidget(_shell);
  UiTestApp::flush();
  Widget base = ui.baseWidget();
  const char* fixed[] = {"label", "selectionGrid", "springBox"};
  int before[3];
  for (int i = 0; i < 3; ++i) before[i] = heightOf(findWidget(base, fixed[i]));
  Widget scrolled = findWidget(base, "scrolledWindow");
  int listBefore = heightOf(scrolled);
  EXPECT_GE(listBefore, 368);

  Dimension width = 0, height = 0;
  XtVaGetValues(base, XmNwidth, &width, XmNheight, &height, nullptr);
  XtResizeWidget(base, width, height + 200, 0);
  UiTestApp::flush();
  EXPECT_EQ(listBefore + 200, heightOf(scrolled));
  for (int i = 0; i < 3; ++i) EXPECT_EQ(before[i], heightOf(findWidget(base, fixed[i]))) << fixed[i];
}

}  // namespace
