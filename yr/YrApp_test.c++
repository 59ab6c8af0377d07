#include <gtest/gtest.h>

#include <X11/StringDefs.h>
#include <Xm/Xm.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "util/UiTestApp.h"
#include "yr/YrApp.h"
#include "yr/YrMsgApp.h"

namespace {

// An application with one option and one resource, as programs derive it.
class OptionApp : public YrMsgApp {
 public:
  OptionApp(int* argc, char** argv, const char* const* fallback)
      : YrMsgApp("Tamblin", UiTestApp::context(), UiTestApp::display(), "SERVICE", fallback) {
    static XrmOptionDescRec options[] = {
        {const_cast<char*>("-quiet"), const_cast<char*>("*quiet"), XrmoptionNoArg,
         const_cast<char*>("TRUE")},
    };
    static XtResource resources[] = {
        {const_cast<char*>("quiet"), const_cast<char*>("Quiet"), XtRBoolean, sizeof(Boolean),
         XtOffsetOf(Settings, quiet), XtRString, const_cast<char*>("FALSE")},
    };
    parseCommandLine(options, XtNumber(options), argc, argv);
    Settings settings{};
    getResources(resources, XtNumber(resources), &settings);
    quiet = settings.quiet;
  }
  struct Settings {
    Boolean quiet;
  };
  Boolean quiet = False;
};

TEST(YrAppTest, CommandLineOptionAndResourceBothSetTheField) {
  struct Case {
    std::vector<std::string> args;
    const char* fallback;  // resource line, or null
    bool expected;
    std::vector<std::string> left;
  } cases[] = {
      {{"prog"}, nullptr, false, {"prog"}},
      {{"prog", "-quiet"}, nullptr, true, {"prog"}},
      {{"prog", "file", "-quiet", "more"}, nullptr, true, {"prog", "file", "more"}},
      {{"prog", "-other"}, nullptr, false, {"prog", "-other"}},
      {{"prog"}, "*quiet: TRUE", true, {"prog"}},
  };
  for (const Case& c : cases) {
    // Each case starts from a database without earlier cases' settings.
    XrmDatabase empty = XrmGetStringDatabase("");
    XrmDatabase old = XtDatabase(UiTestApp::display());
    XrmSetDatabase(UiTestApp::display(), empty);
    std::vector<std::string> storage = c.args;
    std::vector<char*> argv;
    for (std::string& s : storage) argv.push_back(&s[0]);
    argv.push_back(nullptr);
    int argc = static_cast<int>(c.args.size());
    const char* fallback[] = {c.fallback, nullptr};
    {
      OptionApp app(&argc, argv.data(), c.fallback ? fallback : nullptr);
      EXPECT_EQ(c.expected, app.quiet != False) << c.args.size() << (c.fallback ? c.fallback : "");
      EXPECT_STREQ("SERVICE", app.msgServiceName());
      EXPECT_EQ(&app, YrApp::theApp());
    }
    std::vector<std::string> left(argv.begin(), argv.begin() + argc);
    EXPECT_EQ(c.left, left);
    XrmSetDatabase(UiTestApp::display(), old);
    XrmDestroyDatabase(empty);
  }
  EXPECT_EQ(nullptr, YrApp::theApp());
}

TEST(YrAppTest, BusyNestsAndShowsItsMessageUntilTheLastNotBusy) {
  YrApp app("Tamblin", UiTestApp::context(), UiTestApp::display());
  Widget window = XtVaAppCreateShell("busyWindow", "Tamblin", applicationShellWidgetClass,
                                     UiTestApp::display(), XmNwidth, 50, XmNheight, 50, nullptr);
  XtRealizeWidget(window);
  app.registerShell(window);
  EXPECT_FALSE(app.isBusy());
  app.busy("Tamblin 03/09/96\n        Initializing,  Please Wait...");
  Widget dialog = XtNameToWidget(app.baseWidget(), "*busyDialog");
  ASSERT_NE(nullptr, dialog);
  EXPECT_TRUE(XtIsManaged(dialog));
  app.busy();  // nested, keeps the message
  EXPECT_EQ("Tamblin 03/09/96\n        Initializing,  Please Wait...", app.busyMessage());
  app.notBusy();
  EXPECT_TRUE(app.isBusy());
  EXPECT_NE(nullptr, XtNameToWidget(app.baseWidget(), "*busyDialog"));
  app.notBusy();
  EXPECT_FALSE(app.isBusy());
  UiTestApp::flush();
  EXPECT_EQ(nullptr, XtNameToWidget(app.baseWidget(), "*busyDialog"));
  app.notBusy();  // one too many does not go negative
  app.busy();
  EXPECT_TRUE(app.isBusy());
  app.notBusy();
  EXPECT_FALSE(app.isBusy());
  app.unregisterShell(window);
  XtDestroyWidget(window);

  app.setVersionString("03/09/96");
  EXPECT_STREQ("03/09/96", app.versionString());
  app.quit(4);
  EXPECT_TRUE(app.quitRequested());
  EXPECT_EQ(4, app.run());  // returns at once once quit was asked
}

}  // namespace
