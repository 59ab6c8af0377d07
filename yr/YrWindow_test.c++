#include <gtest/gtest.h>

#include <Xm/Label.h>
#include <Xm/ToggleB.h>

#include <memory>
#include <string>

#include "util/UiTestApp.h"
#include "yr/YrApp.h"
#include "yr/YrTabPanel.h"
#include "yr/YrWindow.h"

namespace {

// A window with a small menu tree built the way the program builds its own.
class TestWindow : public YrWindow {
 public:
  TestWindow() : YrWindow("testWindow") {}
  std::string calls;
  YrMenu* file = nullptr;
  YrMenu* open = nullptr;
  YrMenuItem* openSpec = nullptr;
  YrMenuItem* quit = nullptr;
  YrMenuToggle* toggle = nullptr;

  static void openSpecCb(Widget, XtPointer c, XtPointer) { static_cast<TestWindow*>(c)->calls += "openSpec "; }
  static void quitCb(Widget, XtPointer c, XtPointer) { static_cast<TestWindow*>(c)->calls += "quit "; }
  static void toggleCb(Widget, XtPointer c, XtPointer d) {
    auto* cbs = static_cast<XmToggleButtonCallbackStruct*>(d);
    static_cast<TestWindow*>(c)->calls += cbs->set ? "on " : "off ";
  }

 protected:
  Widget setUpInterface(Widget parent) override {
    Widget label = XmCreateLabel(parent, const_cast<char*>("body"), nullptr, 0);
    XtManageChild(label);
    file = addMenuPane("File");
    open = file->addSubmenu("Open");
    openSpec = open->addItem("Spec", openSpecCb, this);
    file->addSeparator();
    quit = file->addItem("Quit", quitCb, this);
    // Inserted before Quit: positions count entries and separators.
    file->addItem("Create Patch...", nullptr, nullptr, 1)->deactivate();
    toggle = addMenuPane("View")->addToggle("Show Messages", toggleCb, this);
    return label;
  }
};

void activate(Widget w) {
  XmAnyCallbackStruct cbs{};
  cbs.reason = XmCR_ACTIVATE;
  XtCallCallbacks(w, XmNactivateCallback, &cbs);
}

TEST(YrWindowTest, MenusFromCallsKeepOrderStateAndCallbacks) {
  YrApp app("Tamblin", UiTestApp::context(), UiTestApp::display());
  TestWindow window;
  window.initialize();
  window.setTitle("Tamblin");
  window.show();
  UiTestApp::flush();
  ASSERT_TRUE(XtIsRealized(window.shell()));

  // Entry order inside File: Open, Create Patch..., separator, Quit.
  WidgetList children = nullptr;
  Cardinal count = 0;
  XtVaGetValues(window.file->baseWidget(), XmNchildren, &children, XmNnumChildren, &count, nullptr);
  std::string names;
  for (Cardinal i = 0; i < count; ++i) names += std::string(XtName(children[i])) + " ";
  EXPECT_EQ("Open CreatePatch separator Quit ", names);

  auto* patch = dynamic_cast<YrMenuItem*>(window.file->find("Create Patch..."));
  ASSERT_NE(nullptr, patch);
  EXPECT_FALSE(patch->isActive());
  patch->activate();
  EXPECT_TRUE(patch->isActive());
  EXPECT_EQ(window.open, window.file->find("Open"));
  EXPECT_EQ(nullptr, window.file->find("Spec"));  // only this pane's own entries

  activate(window.openSpec->baseWidget());
  activate(window.quit->baseWidget());
  // The visual state changes without the callback; a user's change calls it.
  window.toggle->setVisualState(true);
  EXPECT_TRUE(window.toggle->state());
  XmToggleButtonSetState(window.toggle->baseWidget(), False, True);
  EXPECT_FALSE(window.toggle->state());
  EXPECT_EQ("openSpec quit off ", window.calls);
}

struct TabCalls {
  std::string seen;
};
void tabSelected(YrTabPanel*, void* c, int index) {
  static_cast<TabCalls*>(c)->seen += std::to_string(index) + " ";
}

TEST(YrWindowTest, TabPanelReportsPressedTabsAndSelectsByName) {
  Widget shell = UiTestApp::newShell("tabShell");
  YrTabPanel tabs("tabPanel", shell, 1, 40);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(i, tabs.addTab(""));
  EXPECT_EQ(3, tabs.addTab("named"));
  TabCalls calls;
  tabs.addSelectCallback(tabSelected, &calls);
  tabs.show();
  XtRealizeWidget(shell);
  activate(tabs.tab(2));
  EXPECT_EQ(2, tabs.currentTab());
  EXPECT_TRUE(tabs.selectTab("1", false));  // unnamed tabs answer to their index
  EXPECT_EQ(1, tabs.currentTab());
  EXPECT_TRUE(tabs.selectTab("named", true));
  EXPECT_FALSE(tabs.selectTab("nosuch", true));
  EXPECT_FALSE(tabs.selectTab(4, true));
  EXPECT_EQ("2 3 ", calls.seen);
  tabs.setTabLabel(0, "Tag Files");
  unsigned char type = 0;
  XtVaGetValues(tabs.tab(0), XmNlabelType, &type, nullptr);
  EXPECT_EQ(XmSTRING, type);
  XtDestroyWidget(shell);
}

}  // namespace
