// The edit-installation request over the session bus, sent by dbus-send and
// by tamblin-cli as other desktop tools would.  Needs a session bus: ctest
// runs these under dbus-run-session ("ui_dbus_tests"); without one they are
// skipped.
#include <gtest/gtest.h>

#include <Xm/TextF.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/IdbDocument.h"
#include "app/MainWindow.h"
#include "app/MyApp.h"
#include "app/SpecDocument.h"
#include "app/View.h"
#include "filelist/FileListAdd.h"
#include "filelist/FileListModel.h"
#include "build/Generate.h"
#include "util/EditService.h"
#include "util/TempDir.h"
#include "util/UiTestApp.h"
#include "yr/YrDialogManager.h"
#include "yr/YrMsgClient.h"
#include "yr/YrProgram.h"

namespace {

void expire(XtPointer flag, XtIntervalId*) { *static_cast<bool*>(flag) = true; }

bool waitFor(const std::function<bool()>& done) {
  XtAppContext context = UiTestApp::context();
  bool expired = false;
  XtIntervalId timer = XtAppAddTimeOut(context, 15000, expire, &expired);
  while (!done() && !expired) XtAppProcessEvent(context, XtIMAll);
  if (!expired) XtRemoveTimeOut(timer);
  return done();
}

struct Outcome {
  std::vector<std::string> out, err;
  int status = -1000;
  bool exited = false;
};

// Runs a command while the event loop (and so the service) keeps going.
Outcome runCommand(const std::vector<std::string>& argv) {
  Outcome o;
  YrProgram program(UiTestApp::context());
  program.setOutputCallback([](YrProgram*, void* c, const char* l) { static_cast<Outcome*>(c)->out.push_back(l); }, &o);
  program.setErrorCallback([](YrProgram*, void* c, const char* l) { static_cast<Outcome*>(c)->err.push_back(l); }, &o);
  program.setExitCallback([](YrProgram*, void* c, int s) {
    static_cast<Outcome*>(c)->status = s;
    static_cast<Outcome*>(c)->exited = true;
  }, &o);
  std::string error;
  EXPECT_TRUE(program.start(argv, &error)) << error;
  EXPECT_TRUE(waitFor([&] { return o.exited; })) << argv[0];
  return o;
}

std::string joined(const std::vector<std::string>& lines) {
  std::string s;
  for (const std::string& l : lines) s += l + "\n";
  return s;
}

std::vector<std::string> dbusSend(const std::vector<std::string>& args) {
  std::vector<std::string> argv = {"dbus-send", "--session", "--print-reply",
                                   std::string("--dest=") + kEditServiceBusName,
                                   kEditServiceObjectPath,
                                   std::string(kEditServiceInterface) + "." + kEditInstallationRequest};
  argv.insert(argv.end(), args.begin(), args.end());
  return argv;
}

struct Journal {
  std::string calls;
  void add(const std::string& call) { calls += (calls.empty() ? "" : " ") + call; }
};

class OpeningSpec : public SpecDocument {
 public:
  explicit OpeningSpec(Journal& j) : _j(j) {}
  int abandonChanges() override { return 1; }
  int open(const char* name) override { return _j.add("spec.open(" + std::string(name) + ")"), opens; }
  int showOpenBrowser() override { return 1; }
  int showReadBrowser() override { return 1; }
  int showSaveBrowser() override { return 1; }
  int save(const char*) override { return 1; }
  std::string getProductName() override { return "product"; }
  bool subsystemExists() override { return false; }
  int opens = 1;

 private:
  Journal& _j;
};

class OpeningIdb : public IdbDocument {
 public:
  explicit OpeningIdb(Journal& j) : _j(j) {}
  void clear() override {}
  int abandonChanges() override { return 1; }
  int open(const char* name) override { return _j.add("idb.open(" + std::string(name) + ")"), opens; }
  int showOpenBrowser() override { return 1; }
  int showReadBrowser() override { return 1; }
  int showSaveBrowser() override { return 1; }
  int save(const char*) override { return 1; }
  int recordCount() override { return 0; }
  void refresh() override {}
  int opens = 1;

 private:
  Journal& _j;
};

class EditRequestTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const char* bus = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    if (!bus || !*bus) GTEST_SKIP() << "no session bus; ctest runs these under dbus-run-session";
    char cwd[4096];
    ASSERT_TRUE(getcwd(cwd, sizeof cwd));
    _startDir = cwd;
    setenv("PWD", cwd, 1);
    int argc = 1;
    char name[] = "tamblin";
    char* argv[] = {name, nullptr};
    app = std::make_unique<MyApp>("Tamblin", UiTestApp::context(), UiTestApp::display(), &argc,
                                  argv, "ORVEX_TAMBLIN");
    window = std::make_unique<MainWindow>("tamblin");
    window->initialize();
    window->show();
    window->view()->setSpecDocument(&spec);
    window->view()->setIdbDocument(&idb);
    // The Add Files panel browses only under the source root; the
    // requests' directories live in /tmp.
    ASSERT_TRUE(window->view()->fileList()->setSourceRoot("/"));
    UiTestApp::flush();
    ASSERT_TRUE(window->msgClient()->connected()) << window->msgClient()->status();
  }
  void TearDown() override {
    getTheErrorDialog()->unpost();
    window.reset();
    app.reset();
    UiTestApp::flush();
    if (!_startDir.empty()) {
      EXPECT_EQ(0, chdir(_startDir.c_str()));
      setenv("PWD", _startDir.c_str(), 1);
    }
  }
  std::string cwd() {
    char buffer[4096];
    return getcwd(buffer, sizeof buffer) ? buffer : "";
  }
  std::string distField() {
    Widget field = XtNameToWidget(window->view()->buildPanel()->baseWidget(), "*distDirTextField");
    char* text = XmTextFieldGetString(field);
    std::string s = text;
    XtFree(text);
    return s;
  }

  Journal journal;
  OpeningSpec spec{journal};
  OpeningIdb idb{journal};
  std::unique_ptr<MyApp> app;
  std::unique_ptr<MainWindow> window;
  std::string _startDir;
  TempDir dir;
};

TEST_F(EditRequestTest, RequestsAreCarriedOutInOrderAndReplyTheStatus) {
  std::string sub = dir.mkdir("work");
  std::string missing = dir.file("missing");
  struct Case {
    const char* name;
    std::string d, specFile, idbFile, dist;
    int specOpens, idbOpens;
    const char* status;
    std::string calls, cwd, browsing, pwd, log;
  } cases[] = {
      {"everything", sub, sub + "/p.spec", "p.idb", sub + "/dist", 1, 1, "int32 0",
       "spec.open(p.spec) idb.open(p.idb)", sub, sub, sub, "Opened spec 'p.spec'."},
      {"null spec and idb", sub, "", "", "", 1, 1, "int32 0", "", sub, sub, sub, ""},
      {"a directory that does not exist", missing, "", "", "", 1, 1, "int32 -1", "", "", "",
       missing, ""},
      {"the spec does not open", sub, "q.spec", "", "", 0, 1, "int32 -1", "spec.open(q.spec)", sub,
       sub, sub, ""},
      {"the idb does not open", sub, "", "q.idb", "", 1, 0, "int32 -1", "idb.open(q.idb)", sub, sub,
       sub, ""},
      {"no directory at all", "", "", "", "", 1, 1, "int32 0", "", "", "", "", ""},
  };
  for (const Case& c : cases) {
    ASSERT_EQ(0, chdir(_startDir.c_str()));
    setenv("PWD", _startDir.c_str(), 1);
    window->view()->setBrowsingDirectory("");
    journal.calls.clear();
    spec.opens = c.specOpens;
    idb.opens = c.idbOpens;
    std::string logBefore = window->view()->messages();
    Outcome o = runCommand(dbusSend({"string:" + c.d, "string:" + c.specFile,
                                     "string:" + c.idbFile, "string:" + c.dist}));
    EXPECT_EQ(0, o.status) << c.name << "\n" << joined(o.err);
    ASSERT_EQ(2u, o.out.size()) << c.name << "\n" << joined(o.out);
    EXPECT_NE(std::string::npos, o.out[1].find(c.status)) << c.name << ": " << o.out[1];
    EXPECT_EQ(c.calls, journal.calls) << c.name;
    EXPECT_EQ(c.cwd.empty() ? _startDir : c.cwd, cwd()) << c.name;
    EXPECT_EQ(c.browsing, window->view()->browsingDirectory()) << c.name;
    if (!c.browsing.empty()) {
      EXPECT_EQ(c.browsing, window->view()->addPanel()->browsingDirectory()) << c.name;
    }
    // PWD follows the request even when the directory cannot be entered.
    EXPECT_EQ(c.pwd.empty() ? _startDir : c.pwd, std::getenv("PWD")) << c.name;
    std::string added = window->view()->messages().substr(logBefore.size());
    EXPECT_EQ(c.log.empty() ? "" : "\n" + c.log, added) << c.name;
    if (!c.dist.empty()) {
      EXPECT_EQ("dist", distField()) << c.name;
    }
    EXPECT_FALSE(getTheErrorDialog()->isPosted()) << c.name;
  }
}

TEST_F(EditRequestTest, MalformedRequestsGetTheErrorBoxAndNoStatus) {
  struct Case {
    const char* name;
    std::vector<std::string> args;
  } cases[] = {
      {"three arguments", {"string:/", "string:", "string:"}},
      {"five arguments", {"string:/", "string:", "string:", "string:", "string:"}},
      {"a number in place of the spec", {"string:/", "int32:5", "string:", "string:"}},
      {"nothing", {}},
  };
  for (const Case& c : cases) {
    getTheErrorDialog()->unpost();
    Outcome o = runCommand(dbusSend(c.args));
    EXPECT_NE(0, o.status) << c.name;
    EXPECT_TRUE(o.out.empty()) << c.name << "\n" << joined(o.out);
    EXPECT_NE(std::string::npos, joined(o.err).find("org.freedesktop.DBus.Error.InvalidArgs"))
        << c.name << "\n" << joined(o.err);
    EXPECT_TRUE(getTheErrorDialog()->isPosted()) << c.name;
    EXPECT_EQ("Unexpected or invalid message format for Orvex_Packager_Edit_Installation\n",
              getTheErrorDialog()->message())
        << c.name;
    EXPECT_EQ("", journal.calls) << c.name;
    EXPECT_EQ(_startDir, cwd()) << c.name;
  }
  // Another method of the interface is unknown, not malformed.
  getTheErrorDialog()->unpost();
  Outcome o = runCommand({"dbus-send", "--session", "--print-reply",
                          std::string("--dest=") + kEditServiceBusName, kEditServiceObjectPath,
                          std::string(kEditServiceInterface) + ".Other"});
  EXPECT_NE(std::string::npos, joined(o.err).find("UnknownMethod")) << joined(o.err);
  EXPECT_FALSE(getTheErrorDialog()->isPosted());
}

TEST_F(EditRequestTest, CommandLineCompanionSendsTheRequest) {
  std::string sub = dir.mkdir("work");
  struct Case {
    std::vector<std::string> args;
    int exit;
    std::vector<std::string> out;
  } cases[] = {
      {{sub, "", "", ""}, 0, {"0"}},
      {{dir.file("missing"), "", "", ""}, 1, {"-1"}},
      {{sub, "", "", "x"}, 0, {"0"}},
  };
  for (const Case& c : cases) {
    std::vector<std::string> argv = {TAMBLIN_CLI, "edit"};
    argv.insert(argv.end(), c.args.begin(), c.args.end());
    Outcome o = runCommand(argv);
    EXPECT_EQ(c.exit, o.status) << joined(o.err);
    EXPECT_EQ(c.out, o.out);
  }
  EXPECT_EQ("x", distField());
}

TEST(YrMsgClientTest, SecondOwnerAndMissingBusRunWithoutTheService) {
  const char* bus = std::getenv("DBUS_SESSION_BUS_ADDRESS");
  if (!bus || !*bus) GTEST_SKIP() << "no session bus";
  std::string address = bus;
  YrMsgClient first(UiTestApp::context(), "com.orvex.TamblinTest", "/t", "com.orvex.Test");
  ASSERT_TRUE(first.connected()) << first.status();
  YrMsgClient second(UiTestApp::context(), "com.orvex.TamblinTest", "/t", "com.orvex.Test");
  EXPECT_FALSE(second.connected());
  EXPECT_EQ("com.orvex.TamblinTest is owned by another program.", second.status());

  unsetenv("DBUS_SESSION_BUS_ADDRESS");
  YrMsgClient none(UiTestApp::context(), "com.orvex.TamblinOther", "/t", "com.orvex.Test");
  setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
  EXPECT_FALSE(none.connected());
  EXPECT_EQ("No session bus.", none.status());
}

}  // namespace
