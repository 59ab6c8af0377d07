// The edit-installation request over the session bus, sent by dbus-send and
// by tamblin-cli as other desktop tools would.  Needs a session bus: ctest
// runs these under dbus-run-session ("ui_dbus_tests"); without one they are
// skipped.
#include <gtest/gtest.h>

#include <Xm/TextF.h>
#include <dbus/dbus.h>
#include <limits.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/MainWindow.h"
#include "app/MyApp.h"
#include "app/View.h"
#include "build/Generate.h"
#include "filelist/FileListAdd.h"
#include "filelist/FileListModel.h"
#include "filelist/IdbDocument.h"
#include "spec/SpecDocument.h"
#include "util/EditService.h"
#include "util/TempDir.h"
#include "util/UiTestApp.h"
#include "yr/YrApp.h"
#include "yr/YrDialogManager.h"
#include "yr/YrMenuItem.h"
#include "yr/YrMsgClient.h"
#include "yr/YrProgram.h"

namespace {

void expire(XtPointer flag, XtIntervalId*) { *static_cast<bool*>(flag) = true; }

// The program's outer loop (requests are handled there), or a bare one
// without an application.
bool waitFor(const std::function<bool()>& done) {
  XtAppContext context = UiTestApp::context();
  bool expired = false;
  XtIntervalId timer = XtAppAddTimeOut(context, 15000, expire, &expired);
  while (!done() && !expired) {
    if (YrApp* app = YrApp::theApp())
      app->processEvent();
    else
      XtAppProcessEvent(context, XtIMAll);
  }
  if (!expired) XtRemoveTimeOut(timer);
  return done();
}

struct Outcome {
  std::vector<std::string> out, err;
  int status = -1000;
  bool exited = false;
};

// Starts a command whose output and exit arrive through the event loop.
void startCommand(YrProgram& program, Outcome& o, const std::vector<std::string>& argv) {
  program.setOutputCallback([](YrProgram*, void* c, const char* l) { static_cast<Outcome*>(c)->out.push_back(l); }, &o);
  program.setErrorCallback([](YrProgram*, void* c, const char* l) { static_cast<Outcome*>(c)->err.push_back(l); }, &o);
  program.setExitCallback([](YrProgram*, void* c, int s) {
    static_cast<Outcome*>(c)->status = s;
    static_cast<Outcome*>(c)->exited = true;
  }, &o);
  ::Outcome started = program.start(argv);
  EXPECT_TRUE(started.ok()) << started.message();
}

// Runs a command while the event loop (and so the service) keeps going.
Outcome runCommand(const std::vector<std::string>& argv) {
  Outcome o;
  YrProgram program(UiTestApp::context());
  startCommand(program, o, argv);
  EXPECT_TRUE(waitFor([&] { return o.exited; })) << argv[0];
  return o;
}

// Sends the request from a connection of our own, as a program that does
// not go through a command line (which could not carry such values) would:
// returns the status replied, or the error's name and text.
std::string callDirectly(const std::vector<std::string>& values) {
  DBusError error;
  dbus_error_init(&error);
  DBusConnection* connection = dbus_bus_get_private(DBUS_BUS_SESSION, &error);
  if (!connection) return std::string("no connection: ") + error.message;
  dbus_connection_set_exit_on_disconnect(connection, FALSE);
  DBusMessage* call = dbus_message_new_method_call(kEditServiceBusName, kEditServiceObjectPath,
                                                   kEditServiceInterface, kEditInstallationRequest);
  for (const std::string& v : values) {
    const char* value = v.c_str();
    dbus_message_append_args(call, DBUS_TYPE_STRING, &value, DBUS_TYPE_INVALID);
  }
  DBusPendingCall* pending = nullptr;
  dbus_connection_send_with_reply(connection, call, &pending, 60000);
  dbus_message_unref(call);
  // Our connection is not in the event loop: a ticker keeps the loop
  // turning while a large message is written in pieces.
  struct Ticker {
    static void tick(XtPointer data, XtIntervalId*) {
      auto* self = static_cast<Ticker*>(data);
      self->id = XtAppAddTimeOut(UiTestApp::context(), 5, &Ticker::tick, self);
    }
    XtIntervalId id = 0;
  } ticker;
  Ticker::tick(&ticker, nullptr);
  waitFor([&] {
    // A reply completes its call when dispatched.
    dbus_connection_read_write(connection, 0);
    while (dbus_connection_dispatch(connection) == DBUS_DISPATCH_DATA_REMAINS) {
    }
    return dbus_pending_call_get_completed(pending) != 0;
  });
  XtRemoveTimeOut(ticker.id);
  std::string result = "no reply";
  if (DBusMessage* reply = dbus_pending_call_get_completed(pending)
                               ? dbus_pending_call_steal_reply(pending)
                               : nullptr) {
    dbus_int32_t status = 0;
    const char* text = "";
    if (dbus_message_get_type(reply) == DBUS_MESSAGE_TYPE_ERROR) {
      dbus_message_get_args(reply, nullptr, DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
      result = std::string(dbus_message_get_error_name(reply)) + ": " + text;
    } else if (dbus_message_get_args(reply, nullptr, DBUS_TYPE_INT32, &status, DBUS_TYPE_INVALID))
      result = std::to_string(status);
    dbus_message_unref(reply);
  }
  dbus_pending_call_unref(pending);
  dbus_connection_close(connection);
  dbus_connection_unref(connection);
  return result;
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
  // Asked only when the spec has unsaved changes; question stands in for
  // the question dialog.
  int abandonChanges() override {
    if (!changed) return 1;
    _j.add("spec.abandon?");
    return question ? question() : abandons;
  }
  int open(const char* name) override { return _j.add("spec.open(" + std::string(name) + ")"), opens; }
  int showOpenBrowser() override { return 1; }
  int showReadBrowser() override { return 1; }
  int showSaveBrowser() override { return 1; }
  int save(const char*) override { return 1; }
  std::string getProductName() override { return "product"; }
  bool subsystemExists() override { return false; }
  int opens = 1;
  bool changed = false;
  int abandons = 1;
  std::function<int()> question;

 private:
  Journal& _j;
};

class OpeningIdb : public IdbDocument {
 public:
  explicit OpeningIdb(Journal& j) : _j(j) {}
  void clear() override {
    if (abandonChanges()) _j.add("idb.clear()");
  }
  int abandonChanges() override {
    if (!changed) return 1;
    _j.add("idb.abandon?");
    return question ? question() : abandons;
  }
  int open(const char* name) override { return _j.add("idb.open(" + std::string(name) + ")"), opens; }
  int showOpenBrowser() override { return 1; }
  int showReadBrowser() override { return 1; }
  int showSaveBrowser() override { return 1; }
  int save(const char*) override { return 1; }
  int recordCount() override { return 0; }
  void refresh() override {}
  int opens = 1;
  bool changed = false;
  int abandons = 1;
  std::function<int()> question;

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
  // Another message name: the same box, and the caller learns that the
  // method is unknown instead of waiting for a reply that never comes.
  getTheErrorDialog()->unpost();
  Outcome o = runCommand({"dbus-send", "--session", "--print-reply",
                          std::string("--dest=") + kEditServiceBusName, kEditServiceObjectPath,
                          std::string(kEditServiceInterface) + ".Other", "string:/"});
  EXPECT_NE(0, o.status);
  EXPECT_NE(std::string::npos,
            joined(o.err).find("org.freedesktop.DBus.Error.UnknownMethod: Unexpected or invalid "
                               "message format for Other"))
      << joined(o.err);
  EXPECT_TRUE(getTheErrorDialog()->isPosted());
  EXPECT_EQ("Unexpected or invalid message format for Other\n", getTheErrorDialog()->message());
  EXPECT_EQ(_startDir, cwd());
}

TEST_F(EditRequestTest, ValuesLongerThanAnyPathAreRefusedBeforeAnyWork) {
  std::string sub = dir.mkdir("work");
  std::string longest(PATH_MAX - 1, 'a');
  std::string tooLong(PATH_MAX, 'a');
  std::string huge(10 << 20, 'a');
  struct Case {
    const char* name;
    std::vector<std::string> values;
    std::string reply;
  } cases[] = {
      {"the longest path", {sub, longest, "", ""}, "0"},
      {"a directory", {tooLong, "", "", ""},
       "org.freedesktop.DBus.Error.InvalidArgs: Edit request refused: its working directory is "
       "4096 bytes long; no path is longer than 4095 bytes."},
      {"an idb", {sub, "", tooLong, ""},
       "org.freedesktop.DBus.Error.InvalidArgs: Edit request refused: its idb file name is 4096 "
       "bytes long; no path is longer than 4095 bytes."},
      {"four of ten megabytes", {huge, huge, huge, huge},
       "org.freedesktop.DBus.Error.InvalidArgs: Edit request refused: its working directory is "
       "10485760 bytes long; no path is longer than 4095 bytes."},
  };
  for (const Case& c : cases) {
    journal.calls.clear();
    std::string logBefore = window->view()->messages();
    EXPECT_EQ(c.reply, callDirectly(c.values)) << c.name;
    std::string added = window->view()->messages().substr(logBefore.size());
    if (c.reply != "0") {
      // Nothing was done, and the log says why in one line.
      EXPECT_EQ("", journal.calls) << c.name;
      EXPECT_EQ(_startDir, cwd()) << c.name;
      EXPECT_EQ("\n" + c.reply.substr(c.reply.find(": ") + 2), added) << c.name;
    } else {
      EXPECT_EQ("spec.open(" + longest + ")", journal.calls) << c.name;
    }
    EXPECT_FALSE(getTheErrorDialog()->isPosted()) << c.name;
    ASSERT_EQ(0, chdir(_startDir.c_str()));
  }
}

TEST_F(EditRequestTest, UnsavedChangesAreOfferedFirstAndKeptChangesRefuseTheRequest) {
  std::string sub = dir.mkdir("work");
  std::string distBefore = distField();
  struct Case {
    const char* name;
    bool specChanged, idbChanged;
    int specAbandons, idbAbandons;
    std::string specFile, idbFile;
    const char* status;
    std::string calls;
    bool entered;
  } cases[] = {
      {"spec kept", true, true, 0, 1, "p.spec", "p.idb", "int32 -1", "spec.abandon?", false},
      {"spec dropped, idb kept", true, true, 1, 0, "p.spec", "p.idb", "int32 -1",
       "spec.abandon? idb.abandon?", false},
      {"both dropped", true, true, 1, 1, "p.spec", "p.idb", "int32 0",
       "spec.abandon? idb.abandon? spec.open(p.spec) idb.open(p.idb)", true},
      // Only what the request would replace is asked about.
      {"an idb request leaves the spec alone", true, true, 0, 1, "", "p.idb", "int32 0",
       "idb.abandon? idb.open(p.idb)", true},
      {"nothing unsaved", false, false, 0, 0, "p.spec", "p.idb", "int32 0",
       "spec.open(p.spec) idb.open(p.idb)", true},
  };
  for (const Case& c : cases) {
    ASSERT_EQ(0, chdir(_startDir.c_str()));
    journal.calls.clear();
    spec.changed = c.specChanged;
    idb.changed = c.idbChanged;
    spec.abandons = c.specAbandons;
    idb.abandons = c.idbAbandons;
    std::string logBefore = window->view()->messages();
    Outcome o = runCommand(dbusSend({"string:" + sub, "string:" + c.specFile,
                                     "string:" + c.idbFile, "string:/dist"}));
    ASSERT_EQ(2u, o.out.size()) << c.name << "\n" << joined(o.out) << joined(o.err);
    EXPECT_NE(std::string::npos, o.out[1].find(c.status)) << c.name << ": " << o.out[1];
    EXPECT_EQ(c.calls, journal.calls) << c.name;
    EXPECT_EQ(c.entered ? sub : _startDir, cwd()) << c.name;
    std::string added = window->view()->messages().substr(logBefore.size());
    if (!c.entered) {
      EXPECT_EQ("\nEdit request refused: the unsaved changes were kept.", added) << c.name;
      EXPECT_EQ(distBefore, distField()) << c.name;
    }
  }
}

// Once the question dialog is up: sends a request from another program,
// waits until it has reached the program, notes what the program looks
// like then, and answers Ok.
struct ArrivingRequest {
  YrProgram program{UiTestApp::context()};
  Outcome outcome;
  std::string seen;
  void arriveUnder(MainWindow* window, std::vector<std::string> argv,
                   std::function<std::string()> look) {
    YrDialogManager::queueResponder([=](YrDialogManager& dialog) {
      startCommand(program, outcome, argv);
      poll(&dialog, window, look);
    });
  }
  void poll(YrDialogManager* dialog, MainWindow* window, std::function<std::string()> look) {
    if (window->msgClient()->waitingRequests() == 0) {
      _dialog = dialog;
      _window = window;
      _look = look;
      XtAppAddTimeOut(UiTestApp::context(), 10, &ArrivingRequest::again, this);
      return;
    }
    seen = look();
    dialog->press(YrDialogManager::Ok);
  }
  static void again(XtPointer self, XtIntervalId*) {
    auto* a = static_cast<ArrivingRequest*>(self);
    a->poll(a->_dialog, a->_window, a->_look);
  }

 private:
  YrDialogManager* _dialog = nullptr;
  MainWindow* _window = nullptr;
  std::function<std::string()> _look;
};

TEST_F(EditRequestTest, RequestsWaitWhileAQuestionWaitsForItsAnswer) {
  std::string sub = dir.mkdir("work");
  // A request that never arrives fails the test instead of hanging it.
  YrDialogManager::setWaitLimit(20000);
  auto look = [&] { return cwd() + " " + distField(); };
  auto question = [] {
    return getTheQuestionDialog()->postAndWait("Abandon changes?") == YrDialogManager::Ok;
  };
  std::string before = look();

  // A question asked by a menu: File > New > Idb with unsaved changes.  The
  // request waits until the menu's work is done and the loop is back.
  idb.changed = true;
  idb.question = question;
  ArrivingRequest underMenu;
  underMenu.arriveUnder(window.get(), dbusSend({"string:" + sub, "string:", "string:", "string:/menu"}),
                        look);
  YrMenuItem* item = window->menuItem("File/New/Idb");
  ASSERT_NE(nullptr, item);
  XtCallCallbacks(item->baseWidget(), XmNactivateCallback, nullptr);
  EXPECT_EQ(before, underMenu.seen);
  EXPECT_EQ("idb.abandon? idb.clear()", journal.calls);
  ASSERT_TRUE(waitFor([&] { return underMenu.outcome.exited; }));
  EXPECT_NE(std::string::npos, joined(underMenu.outcome.out).find("int32 0"))
      << joined(underMenu.outcome.out) << joined(underMenu.outcome.err);
  EXPECT_EQ(sub + " /menu", look());

  // A question asked by a request: the next request waits for its answer
  // and for the rest of the first request.
  ASSERT_EQ(0, chdir(_startDir.c_str()));
  journal.calls.clear();
  idb.changed = false;
  spec.changed = true;
  spec.question = question;
  before = look();
  ArrivingRequest underRequest;
  underRequest.arriveUnder(window.get(),
                           dbusSend({"string:" + sub, "string:", "string:", "string:/second"}), look);
  Outcome first = runCommand(dbusSend({"string:" + _startDir, "string:p.spec", "string:",
                                       "string:/first"}));
  ASSERT_EQ(2u, first.out.size()) << joined(first.out) << joined(first.err);
  EXPECT_NE(std::string::npos, first.out[1].find("int32 0")) << first.out[1];
  EXPECT_EQ(before, underRequest.seen);
  ASSERT_TRUE(waitFor([&] { return underRequest.outcome.exited; }));
  EXPECT_NE(std::string::npos, joined(underRequest.outcome.out).find("int32 0"))
      << joined(underRequest.outcome.out) << joined(underRequest.outcome.err);
  EXPECT_EQ("spec.abandon? spec.open(p.spec)", journal.calls);
  EXPECT_EQ(sub + " /second", look());
  EXPECT_FALSE(getTheQuestionDialog()->isPosted());
  YrDialogManager::setWaitLimit(0);
}

TEST_F(EditRequestTest, CommandLineCompanionSendsTheRequest) {
  std::string sub = dir.mkdir("work");
  std::string tooLong(PATH_MAX, 's');
  struct Case {
    std::vector<std::string> args;
    int exit;
    std::vector<std::string> out, err;
  } cases[] = {
      {{sub, "", "", ""}, 0, {"0"}, {}},
      {{dir.file("missing"), "", "", ""}, 1, {"-1"}, {}},
      {{sub, "", "", "x"}, 0, {"0"}, {}},
      {{sub, tooLong, "", ""}, 1, {},
       {"tamblin-cli edit: request refused: Edit request refused: its spec file name is 4096 bytes "
        "long; no path is longer than 4095 bytes."}},
  };
  for (const Case& c : cases) {
    std::vector<std::string> argv = {TAMBLIN_CLI, "edit"};
    argv.insert(argv.end(), c.args.begin(), c.args.end());
    Outcome o = runCommand(argv);
    EXPECT_EQ(c.exit, o.status) << joined(o.err);
    EXPECT_EQ(c.out, o.out);
    EXPECT_EQ(c.err, o.err);
  }
  EXPECT_EQ("x", distField());
}

TEST_F(EditRequestTest, ASecondWindowLogsWhoHoldsTheNameAndTakesItOver) {
  const std::string waiting =
      "Another program holds the bus name com.orvex.Tamblin: edit requests go to it. This window "
      "takes the name over when it is free.";
  const std::string taken = "This window now holds the bus name com.orvex.Tamblin and answers edit requests.";
  auto second = std::make_unique<MainWindow>("tamblin");
  second->initialize();
  EXPECT_FALSE(second->msgClient()->ownsName());
  EXPECT_EQ(std::string(MainWindow::kStartHint) + "\n" + waiting, second->view()->messages());
  window.reset();
  ASSERT_TRUE(waitFor([&] { return second->msgClient()->ownsName(); }));
  EXPECT_EQ(std::string(MainWindow::kStartHint) + "\n" + waiting + "\n" + taken,
            second->view()->messages());
  second.reset();
}

TEST(YrMsgClientTest, SecondOwnerTakesTheNameWhenItIsFree) {
  const char* bus = std::getenv("DBUS_SESSION_BUS_ADDRESS");
  if (!bus || !*bus) GTEST_SKIP() << "no session bus";
  std::string address = bus;
  auto first = std::make_unique<YrMsgClient>(UiTestApp::context(), "com.orvex.TamblinTest", "/t",
                                             "com.orvex.Test");
  ASSERT_TRUE(first->ownsName()) << first->status();
  YrMsgClient second(UiTestApp::context(), "com.orvex.TamblinTest", "/t", "com.orvex.Test");
  std::vector<bool> told;
  second.setNameCallback([](void* data, bool owned) { static_cast<std::vector<bool>*>(data)->push_back(owned); },
                         &told);
  EXPECT_TRUE(second.connected());
  EXPECT_FALSE(second.ownsName());
  EXPECT_EQ("com.orvex.TamblinTest is owned by another program; this one takes it over when it "
            "is free.",
            second.status());
  first.reset();
  ASSERT_TRUE(waitFor([&] { return second.ownsName(); })) << second.status();
  EXPECT_EQ(std::vector<bool>{true}, told);
  EXPECT_EQ("", second.status());

  unsetenv("DBUS_SESSION_BUS_ADDRESS");
  YrMsgClient none(UiTestApp::context(), "com.orvex.TamblinOther", "/t", "com.orvex.Test");
  setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
  EXPECT_FALSE(none.connected());
  EXPECT_EQ("No session bus.", none.status());
}

}  // namespace
