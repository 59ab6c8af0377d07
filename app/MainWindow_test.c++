#include <gtest/gtest.h>

#include <Xm/ToggleB.h>
#include <Xm/Xm.h>

#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "app/MainWindow.h"
#include "app/MyApp.h"
#include "app/View.h"
#include "app/ui/LayoutFonts.h"
#include "filelist/IdbDocument.h"
#include "spec/SpecDocument.h"
#include "util/UiTestApp.h"
#include "yr/YrDialogManager.h"
#include "yr/YrMenuItem.h"
#include "yr/YrMenuToggle.h"

namespace {

// Both documents write what they are asked into one journal and answer
// from fixed settings.
struct Journal {
  std::string calls;
  void add(const std::string& call) { calls += (calls.empty() ? "" : " ") + call; }
};

class ScriptedSpec : public SpecDocument {
 public:
  explicit ScriptedSpec(Journal& j) : _j(j) {}
  int abandonChanges() override { return _j.add("spec.abandon"), abandon; }
  int open(const char* name) override { return _j.add("spec.open(" + std::string(name) + ")"), 1; }
  int showOpenBrowser() override { return _j.add("spec.openBrowser"), browse; }
  int showReadBrowser() override { return _j.add("spec.readBrowser"), browse; }
  int showSaveBrowser() override { return _j.add("spec.saveBrowser"), browse; }
  int save(const char* name) override { return _j.add(name ? "spec.save(name)" : "spec.save"), saved; }
  std::string getProductName() override { return "product"; }
  bool subsystemExists() override { return false; }
  int abandon = 1, browse = 1, saved = 1;

 private:
  Journal& _j;
};

class ScriptedIdb : public IdbDocument {
 public:
  explicit ScriptedIdb(Journal& j) : _j(j) {}
  void clear() override { _j.add("idb.clear"); }
  int abandonChanges() override { return _j.add("idb.abandon"), abandon; }
  int open(const char*) override { return _j.add("idb.open"), 1; }
  int showOpenBrowser() override { return _j.add("idb.openBrowser"), 1; }
  int showReadBrowser() override { return _j.add("idb.readBrowser"), 1; }
  int showSaveBrowser() override { return _j.add("idb.saveBrowser"), 1; }
  int save(const char* name) override { return _j.add(name ? "idb.save(name)" : "idb.save"), 1; }
  int recordCount() override { return 0; }
  void refresh() override {}
  int abandon = 1;

 private:
  Journal& _j;
};

class MainWindowTest : public ::testing::Test {
 protected:
  void SetUp() override {
    int argc = 1;
    char name[] = "tamblin";
    char* argv[] = {name, nullptr};
    app = std::make_unique<MyApp>("Tamblin", UiTestApp::context(), UiTestApp::display(), &argc,
                                  argv, "ORVEX_TAMBLIN");
    window = std::make_unique<MainWindow>("tamblin");
    window->initialize();
    window->setTitle("Tamblin");
    window->show();
    UiTestApp::flush();
    YrDialogManager::setWaitLimit(5000);  // a forgotten answer fails, not hangs
  }
  void TearDown() override {
    window.reset();
    app.reset();
    YrDialogManager::clearResponders();
    YrDialogManager::setWaitLimit(0);
    UiTestApp::flush();
  }
  void choose(const char* path) {
    YrMenuItem* item = window->menuItem(path);
    ASSERT_NE(nullptr, item) << path;
    XmAnyCallbackStruct cbs{};
    cbs.reason = XmCR_ACTIVATE;
    XtCallCallbacks(item->baseWidget(), XmNactivateCallback, &cbs);
  }
  std::vector<std::string> entries(const char* paneName) {
    Widget pane = XtNameToWidget(window->shell(), (std::string("*") + paneName + "Pane").c_str());
    WidgetList children = nullptr;
    Cardinal n = 0;
    XtVaGetValues(pane, XmNchildren, &children, XmNnumChildren, &n, nullptr);
    std::vector<std::string> names;
    for (Cardinal i = 0; i < n; ++i) names.push_back(XtName(children[i]));
    return names;
  }

  std::unique_ptr<MyApp> app;
  std::unique_ptr<MainWindow> window;
};

TEST_F(MainWindowTest, MenuTreeAndStartState) {
  using V = std::vector<std::string>;
  EXPECT_EQ((V{"New", "Open", "Append", "separator", "Save", "SaveAs", "separator", "CreatePatch",
               "separator", "Quit"}),
            entries("File"));
  EXPECT_EQ((V{"ShowMessages", "ShowOrvexBoardNames"}), entries("View"));
  for (const char* sub : {"New", "Open", "Save"})
    EXPECT_EQ((V{"Spec", "Idb", "Both"}), entries(sub)) << sub;
  for (const char* sub : {"Append", "SaveAs"}) EXPECT_EQ((V{"Spec", "Idb"}), entries(sub)) << sub;

  View* view = window->view();
  EXPECT_EQ(0, view->currentView());
  EXPECT_TRUE(view->messagesShown());
  EXPECT_EQ(MainWindow::kStartHint, view->messages());
  EXPECT_FALSE(window->menuItem("File/Create Patch...")->isActive());
  EXPECT_TRUE(static_cast<YrMenuToggle*>(window->menuItem("View/Show Messages"))->state());
  EXPECT_FALSE(static_cast<YrMenuToggle*>(window->menuItem("View/Show Orvex Board Names"))->state());
  EXPECT_EQ(nullptr, window->menuItem("File/Open/Nothing"));
  EXPECT_EQ(nullptr, window->menuItem("Edit/Quit"));
}

TEST_F(MainWindowTest, MenuCallbacksAskInTheirOrderAndStopAtTheFirstRefusal) {
  struct Case {
    const char* entry;
    int specAbandon, specBrowse, specSaved, idbAbandon;
    const char* calls;
    bool quits;
  } cases[] = {
      {"File/New/Spec", 1, 1, 1, 1, "spec.abandon spec.open()", false},
      {"File/New/Spec", 0, 1, 1, 1, "spec.abandon", false},
      {"File/New/Idb", 1, 1, 1, 1, "idb.clear", false},
      {"File/New/Both", 1, 1, 1, 1, "spec.abandon spec.open() idb.clear", false},
      // The idb is cleared even when the spec's changes were kept.
      {"File/New/Both", 0, 1, 1, 1, "spec.abandon idb.clear", false},
      {"File/Open/Spec", 1, 1, 1, 1, "spec.openBrowser", false},
      {"File/Open/Idb", 1, 1, 1, 1, "idb.openBrowser", false},
      {"File/Open/Both", 1, 1, 1, 1, "spec.openBrowser idb.openBrowser", false},
      {"File/Open/Both", 1, 0, 1, 1, "spec.openBrowser", false},
      {"File/Append/Spec", 1, 1, 1, 1, "spec.readBrowser", false},
      {"File/Append/Idb", 1, 1, 1, 1, "idb.readBrowser", false},
      {"File/Save/Spec", 1, 1, 1, 1, "spec.save", false},
      {"File/Save/Idb", 1, 1, 1, 1, "idb.save", false},
      {"File/Save/Both", 1, 1, 1, 1, "spec.save idb.save", false},
      {"File/Save/Both", 1, 1, 0, 1, "spec.save", false},
      {"File/SaveAs/Spec", 1, 1, 1, 1, "spec.saveBrowser", false},
      {"File/SaveAs/Idb", 1, 1, 1, 1, "idb.saveBrowser", false},
      // Quit asks about the idb first, Create Patch about the spec first.
      {"File/Quit", 1, 1, 1, 0, "idb.abandon", false},
      {"File/Quit", 0, 1, 1, 1, "idb.abandon spec.abandon", false},
      {"File/Quit", 1, 1, 1, 1, "idb.abandon spec.abandon", true},
      {"File/Create Patch...", 0, 1, 1, 1, "spec.abandon", false},
      {"File/Create Patch...", 1, 1, 1, 0, "spec.abandon idb.abandon", false},
  };
  for (const Case& c : cases) {
    TearDown();  // a fresh application each time: Quit cannot be taken back
    SetUp();
    Journal journal;
    ScriptedSpec spec(journal);
    ScriptedIdb idb(journal);
    spec.abandon = c.specAbandon;
    spec.browse = c.specBrowse;
    spec.saved = c.specSaved;
    idb.abandon = c.idbAbandon;
    window->view()->setSpecDocument(&spec);
    window->view()->setIdbDocument(&idb);
    choose(c.entry);
    EXPECT_EQ(c.calls, journal.calls) << c.entry;
    EXPECT_EQ(c.quits, app->quitRequested()) << c.entry;
    window->view()->setSpecDocument(nullptr);
    window->view()->setIdbDocument(nullptr);
  }
}

// An idb with unsaved changes that asks the user as the file list does.
class UnsavedIdb : public ScriptedIdb {
 public:
  UnsavedIdb(Journal& j, View& view) : ScriptedIdb(j), _view(view) {}
  int abandonChanges() override {
    return _view.reporter().question(
        "There have been changes since you last saved.\nAbandon changes to idb file 'a.idb'?\n");
  }

 private:
  View& _view;
};

TEST_F(MainWindowTest, QuitWithUnsavedChangesWaitsForTheAnswer) {
  Journal journal;
  UnsavedIdb idb(journal, *window->view());
  ScriptedSpec spec(journal);
  window->view()->setIdbDocument(&idb);
  window->view()->setSpecDocument(&spec);
  std::string asked;
  YrDialogManager::queueResponder([&](YrDialogManager& d) {
    asked = d.message();
    d.press(YrDialogManager::Cancel);  // "No"
  });
  choose("File/Quit");
  EXPECT_FALSE(app->quitRequested());
  EXPECT_EQ("There have been changes since you last saved.\nAbandon changes to idb file 'a.idb'?\n", asked);
  EXPECT_EQ("", journal.calls);  // the spec was not asked

  YrDialogManager::queueResponder([](YrDialogManager& d) { d.press(YrDialogManager::Ok); });
  choose("File/Quit");
  EXPECT_TRUE(app->quitRequested());
  EXPECT_EQ("spec.abandon", journal.calls);
}

TEST_F(MainWindowTest, ViewTogglesShowAndHideTheMessageArea) {
  auto* toggle = static_cast<YrMenuToggle*>(window->menuItem("View/Show Messages"));
  XmToggleButtonSetState(toggle->baseWidget(), False, True);  // the user unsets it
  EXPECT_FALSE(window->view()->messagesShown());
  XmToggleButtonSetState(toggle->baseWidget(), True, True);
  EXPECT_TRUE(window->view()->messagesShown());
  auto* names = static_cast<YrMenuToggle*>(window->menuItem("View/Show Orvex Board Names"));
  XmToggleButtonSetState(names->baseWidget(), True, True);
  EXPECT_TRUE(names->state());
}

TEST_F(MainWindowTest, EntriesWithoutTheirPanelSaySoInTheLog) {
  window->view()->setIdbDocument(nullptr);
  window->view()->hideMessages();
  choose("File/Open/Idb");
  EXPECT_TRUE(window->view()->messagesShown());
  EXPECT_EQ(std::string(MainWindow::kStartHint) +
                "\nIdb files cannot be opened or saved: this version has no file list panel.",
            window->view()->messages());
}

TEST_F(MainWindowTest, NoforkComesFromTheOptionOrTheResource) {
  struct Case {
    std::vector<std::string> args;
    const char* resource;
    bool nofork;
    int argcLeft;
  } cases[] = {
      {{"tamblin"}, nullptr, false, 1},
      {{"tamblin", "-nofork"}, nullptr, true, 1},
      {{"tamblin"}, "*nofork: TRUE", true, 1},
      {{"tamblin", "-other"}, nullptr, false, 2},
  };
  window.reset();
  app.reset();
  for (const Case& c : cases) {
    XrmDatabase old = XtDatabase(UiTestApp::display());
    XrmDatabase fresh = XrmGetStringDatabase(c.resource ? c.resource : "");
    XrmSetDatabase(UiTestApp::display(), fresh);
    std::vector<std::string> storage = c.args;
    std::vector<char*> argv;
    for (std::string& s : storage) argv.push_back(&s[0]);
    argv.push_back(nullptr);
    int argc = static_cast<int>(c.args.size());
    {
      MyApp a("Tamblin", UiTestApp::context(), UiTestApp::display(), &argc, argv.data(), "ORVEX_TAMBLIN");
      EXPECT_EQ(c.nofork, a.nofork != False) << c.args.size();
      EXPECT_STREQ("ORVEX_TAMBLIN", a.msgServiceName());
    }
    EXPECT_EQ(c.argcLeft, argc);
    XrmSetDatabase(UiTestApp::display(), old);
    XrmDestroyDatabase(fresh);
  }
}

// The installed app-defaults file must say what the built-in fallbacks
// say, or an installed program would look different from a built one.
TEST(AppDefaultsTest, FileCarriesEveryFallbackLine) {
  std::ifstream in(TAMBLIN_APP_DEFAULTS);
  ASSERT_TRUE(in) << TAMBLIN_APP_DEFAULTS;
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);)
    if (!line.empty() && line[0] != '!') lines.push_back(line);
  std::vector<std::string> fallback;
  for (const char* const* l = layoutFontResources; *l; ++l) fallback.push_back(*l);
  EXPECT_EQ(fallback, lines);
}

}  // namespace
