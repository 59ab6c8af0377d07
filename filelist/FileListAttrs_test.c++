// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <Xm/RowColumn.h>
#include <Xm/Text.h>
#include <Xm/ToggleB.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <vector>

#include "app/ui/LayoutChecks.h"
#include "filelist/FileListAttrs.h"
#include "filelist/FileListModel.h"
#include "filelist/PanelFields.h"
#include "util/RecordingReporter.h"
#include "util/TempDir.h"
#include "util/UiTestApp.h"
#include "yr/YrApp.h"

namespace {

using Texts = std::vector<std::string>;

class FileListAttrsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    app = std::make_unique<YrApp>("Tamblin", UiTestApp::context(), UiTestApp::display());
    shell = newApplicationShell("attrsShell");
    model = std::make_unique<FileListModel>(reporter);
    ASSERT_TRUE(model->setSourceRoot(tree.path()));
    tree.write("file", "x");
    ASSERT_EQ(0, symlink("file", tree.file("link").c_str()));
    model->add({tree.file("file"), tree.file("link")});
    ASSERT_EQ(2, model->idb().count());
    panel = std::make_unique<FileListAttrs>("FileListAttrs", shell);
    model->setAttrsPartner(panel.get());
    panel->connect(*model, reporter);
    reporter.clear();
  }
  void TearDown() override {
    EXPECT_FALSE(app->isBusy());
    model->setAttrsPartner(nullptr);
    panel.reset();
    XtDestroyWidget(shell);
    app.reset();
    UiTestApp::flush();
  }

  Widget w(const char* name, const char* parent = nullptr) {
    return findWidget(panel->baseWidget(), name, parent);
  }
  bool on(const char* name, const char* parent = nullptr) {
    return XmToggleButtonGetState(w(name, parent));
  }
  void click(const char* name, const char* parent = nullptr) {
    Widget t = w(name, parent);
    XmToggleButtonSetState(t, !XmToggleButtonGetState(t), True);
  }
  void press(const char* name) { XtCallCallbacks(w(name), XmNactivateCallback, nullptr); }
  void type(const char* text, const std::string& value) {
    XmTextSetString(w(text), const_cast<char*>(value.c_str()));
  }
  // The names of a group's toggle widgets that are on / sensitive.
  Texts toggles(const char* rowColumn, bool sensitive) {
    Texts out;
    WidgetList children = nullptr;
    Cardinal n = 0;
    XtVaGetValues(w(rowColumn), XmNchildren, &children, XmNnumChildren, &n, nullptr);
    for (Cardinal i = 0; i < n; i++)
      if (sensitive ? XtIsSensitive(children[i]) : XmToggleButtonGetState(children[i]))
        out.push_back(XtName(children[i]));
    return out;
  }
  Texts attrs(int i) { return model->idb()[i]->attrs(); }

  TempDir tree;
  RecordingReporter reporter;
  std::unique_ptr<YrApp> app;
  Widget shell = nullptr;
  std::unique_ptr<FileListModel> model;
  std::unique_ptr<FileListAttrs> panel;
};

TEST_F(FileListAttrsTest, FullPanelAssignedAndReadBack) {
  type("attrsPreOpText", "mkdir /var/x\nchmod 700 /var/x");
  type("attrsExitOpText", "echo done\\;really");
  type("attrsRemoveOpText", "rm -rf /var/x");
  press("configNoUpdatePushButton");
  XtVaSetValues(w("attrsConfigOptionMenu"), XmNmenuHistory, w("configNoUpdatePushButton"),
                nullptr);
  for (const char* t : {"attrsShadowToggleButton", "attrsNoRqsToggleButton",
                        "attrsStripDSOToggleButton"})
    click(t);
  click("KB40", "attrsCpuBoardRowColumn");
  click("LUMEN", "attrsGfxBoardRowColumn");
  click("LUMEN2", "attrsSubgrRowColumn");
  EXPECT_TRUE(on("attrsConfigToggleButton"));
  EXPECT_TRUE(on("attrsMachToggleButton"));
  model->setSelectedPositions({1});
  press("attrsAssignArrowButton");
  const Texts written = {"preop(mkdir /var/x;chmod 700 /var/x)",
                         "exitop(echo done\\;really)",
                         "removeop(rm -rf /var/x)",
                         "config(noupdate)",
                         "shadow",
                         "norqs",
                         "stripdso",
                         "mach(CPUBOARD=KB40,GFXBOARD=LUMEN,SUBGR=LUMEN2)"};
  EXPECT_EQ(written, attrs(0));
  EXPECT_EQ(Texts{}, reporter.texts("error"));

  // Read back through a double click: everything but removeop.
  press("attrsClearPushButton");
  EXPECT_FALSE(on("attrsShadowToggleButton"));
  EXPECT_EQ(Texts{}, toggles("attrsCpuBoardRowColumn", false));
  model->showCurrent(1);
  AttrsState shown = panel->state();
  EXPECT_EQ("mkdir /var/x\nchmod 700 /var/x", fieldText(w("attrsPreOpText")));
  EXPECT_EQ("echo done\\;really", fieldText(w("attrsExitOpText")));
  EXPECT_EQ("", fieldText(w("attrsRemoveOpText")));
  EXPECT_FALSE(on("attrsRemoveOpToggleButton"));
  EXPECT_TRUE(on("attrsPreOpToggleButton"));
  EXPECT_TRUE(on("attrsConfigToggleButton"));
  EXPECT_EQ(AttrsState::NoUpdate, shown.config);
  EXPECT_TRUE(on("attrsMachToggleButton"));
  EXPECT_EQ(Texts{"KB40"}, toggles("attrsCpuBoardRowColumn", false));
  // Assigned again, the same texts come out, removeop apart.
  model->setSelectedPositions({1});
  press("attrsAssignArrowButton");
  Texts again = written;
  again.erase(again.begin() + 2);
  EXPECT_EQ(again, attrs(0));
}

TEST_F(FileListAttrsTest, AssignWithNothingOnKeepsOnlyDerivedAttributes) {
  model->setSelectedPositions({1, 2});
  click("attrsNoShareToggleButton");
  press("attrsAssignArrowButton");
  const Texts linkBefore = attrs(1);
  ASSERT_FALSE(linkBefore.empty());
  EXPECT_EQ("noshare", linkBefore.back());
  press("attrsClearPushButton");
  click("attrsMachToggleButton");  // mach on, no board: no mach attribute
  click("attrsPreOpToggleButton");  // by hand with no command: preop()
  press("attrsAssignArrowButton");
  EXPECT_EQ(Texts{"preop()"}, attrs(0));
  Texts linkAfter = attrs(1);
  EXPECT_EQ("preop()", linkAfter.back());
  linkAfter.pop_back();
  for (const std::string& a : linkAfter) EXPECT_EQ(0u, a.find("symval(")) << a;
  // Clearing and writing the attributes are one undo step.
  model->undo();
  EXPECT_EQ(linkBefore, attrs(1));
  model->undo();

  model->deselectAll();
  press("attrsAssignArrowButton");
  ASSERT_EQ(1u, reporter.texts("error").size());
  EXPECT_EQ(0u, reporter.texts("error")[0].find("You haven't selected any idb entries to assign too."));
}

TEST_F(FileListAttrsTest, ProcessorButtonsAndInterlocksOnTheWidgets) {
  press("r4kPushButton");
  EXPECT_TRUE(on("attrsMachToggleButton"));
  EXPECT_EQ((Texts{"KB20", "KB22", "KB24", "KB28", "KB40"}),
            toggles("attrsCpuBoardRowColumn", false));
  EXPECT_EQ((Texts{"LUMEN", "PRISM", "AURORA", "NIMBUS", "QUASAR", "ZENITH", "STRATA", "ORBIT"}),
            toggles("attrsGfxBoardRowColumn", true));
  EXPECT_EQ(11u, toggles("attrsModelRowColumn", false).size());
  EXPECT_EQ(toggles("attrsModelRowColumn", false), toggles("attrsModelRowColumn", true));

  press("r3kPushButton");
  EXPECT_EQ((Texts{"KB10", "KB12", "KB16"}), toggles("attrsCpuBoardRowColumn", false));
  // Switching the CPU boards off one by one: after the last, everything is
  // sensitive again.
  for (const char* board : {"KB10", "KB12"}) click(board, "attrsCpuBoardRowColumn");
  EXPECT_EQ((Texts{"VEGA", "HALO"}), toggles("attrsGfxBoardRowColumn", true));
  click("KB16", "attrsCpuBoardRowColumn");
  EXPECT_EQ(15u, toggles("attrsGfxBoardRowColumn", true).size());
  EXPECT_EQ(toggles("attrsModelRowColumn", true).size(),
            panel->machSelection().group(MachSelection::kModel).size());

  // A model switches its boards on.
  press("attrsClearPushButton");
  EXPECT_FALSE(on("attrsMachToggleButton"));
  click("Server 56 Halo", "attrsModelRowColumn");
  EXPECT_TRUE(on("attrsMachToggleButton"));
  EXPECT_EQ(Texts{"KB56"}, toggles("attrsCpuBoardRowColumn", false));
  EXPECT_EQ(Texts{"HALO"}, toggles("attrsGfxBoardRowColumn", false));
  EXPECT_EQ(Texts{"HALO2"}, toggles("attrsSubgrRowColumn", false));
}

TEST_F(FileListAttrsTest, LoadingEntriesAndInternalNames) {
  struct Case {
    Texts attrs;
    bool configOn;
    const char* shownConfig;
    bool machOn;
    Texts boards;
  } cases[] = {
      {{"config(noupdate)", "removeop(rm x)"}, true, "configNoUpdatePushButton", false, {}},
      {{"config(suggest)"}, true, "configSuggestPushButton", false, {}},
      {{"mach(GFXBOARD=LUMEN)"}, false, "configUpdatePushButton", false, {}},
      {{"mach(CPUBOARD=KB10,CPUBOARD=KB52)", "unknown(x)"}, false, "configUpdatePushButton",
       true, {"KB10", "KB52"}},
  };
  for (const Case& c : cases) {
    panel->setCurrent(c.attrs);
    EXPECT_EQ(c.configOn, on("attrsConfigToggleButton")) << c.attrs[0];
    Widget shown = nullptr;
    XtVaGetValues(w("attrsConfigOptionMenu"), XmNmenuHistory, &shown, nullptr);
    EXPECT_STREQ(c.shownConfig, XtName(shown)) << c.attrs[0];
    EXPECT_EQ(c.machOn, on("attrsMachToggleButton")) << c.attrs[0];
    EXPECT_EQ(c.boards, toggles("attrsCpuBoardRowColumn", false)) << c.attrs[0];
    EXPECT_EQ("", fieldText(w("attrsRemoveOpText")));
  }
  // A mach attribute without CPU boards sets its toggles all the same.
  panel->setCurrent({"mach(GFXBOARD=LUMEN)"});
  EXPECT_EQ(Texts{"LUMEN"}, toggles("attrsGfxBoardRowColumn", false));

  const char* internal[] = {"attrsCpuLabel", "attrsCpuBoardRowColumn", "attrsGfxBoardRowColumn",
                            "attrsSubgrRowColumn", "r3kPushButton", "r10kPushButton"};
  panel->hideInternalNames();
  for (const char* name : internal) EXPECT_FALSE(XtIsManaged(w(name))) << name;
  EXPECT_TRUE(XtIsManaged(w("attrsModelRowColumn")));
  panel->hideInternalNames();
  panel->showInternalNames();
  for (const char* name : internal) EXPECT_TRUE(XtIsManaged(w(name))) << name;
}

}  // namespace
