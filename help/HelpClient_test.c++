#include <gtest/gtest.h>

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "help/HelpClient.h"
#include "util/TempDir.h"
#include "util/UiTestApp.h"

namespace {

// Waits (10 s at most) until the file holds a complete record: the stand-in
// programs write it under another name and rename it when done.
std::string waitForFile(const std::string& path) {
  auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  struct stat st;
  while (stat(path.c_str(), &st) != 0 && std::chrono::steady_clock::now() < deadline)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  FILE* f = std::fopen(path.c_str(), "r");
  if (!f) return "<missing>";
  std::string text;
  char buffer[4096];
  size_t n;
  while ((n = std::fread(buffer, 1, sizeof buffer, f)) > 0) text.append(buffer, n);
  std::fclose(f);
  return text;
}

// A program that records its arguments, one per line, in out.
std::string recorder(const TempDir& dir, const std::string& name, const std::string& out) {
  std::string path = dir.write(name, "#!/bin/sh\nfor a in \"$@\"; do printf '%s\\n' \"$a\"; done > " +
                                         out + ".part\nmv " + out + ".part " + out + "\n");
  chmod(path.c_str(), 0755);
  return path;
}

class HelpClientTest : public ::testing::Test {
 protected:
  void SetUp() override {
    display = UiTestApp::display();
    programs.resourceRoot = dir.path();
    programs.server = dir.file("no-server");
    programs.notice = dir.file("no-notice");
    programs.message = dir.file("no-message");
  }
  void TearDown() override {
    if (server) XDestroyWindow(display, server);
    XSync(display, False);
    OrvexHelpInit(nullptr, nullptr, nullptr);
  }
  void init() {
    OrvexHelpSetPrograms(programs);
    OrvexHelpInit(display, "tamblin", "Tamblin", ";");
  }
  // A stand-in server: a window that owns the selection.
  void runServer() {
    server = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 1, 1, 0, 0, 0);
    XSetSelectionOwner(display, XInternAtom(display, "ORVEX_HELP_SERVER", False), server,
                       CurrentTime);
    XSync(display, False);
  }
  std::string pendingRequest() {
    Atom property = XInternAtom(display, "ORVEX_HELP_REQUEST", True);
    Atom type = 0;
    int format = 0;
    unsigned long items = 0, after = 0;
    unsigned char* data = nullptr;
    if (property == None ||
        XGetWindowProperty(display, server, property, 0, 4096, True, AnyPropertyType, &type,
                           &format, &items, &after, &data) != Success ||
        !data)
      return "<none>";
    EXPECT_EQ(property, type);
    EXPECT_EQ(8, format);
    // The terminating zero travels with the text.
    EXPECT_EQ('\0', data[items - 1]);
    std::string text(reinterpret_cast<char*>(data));
    XFree(data);
    return text;
  }

  Display* display = nullptr;
  Window server = 0;
  TempDir dir;
  HelpPrograms programs;
};

TEST_F(HelpClientTest, RequestsReachTheServerThroughTheProperty) {
  dir.write("app-defaults/Tamblin", "*helpSubSys: tamblin.sw.help\n*helpTitle: Tamblin Help\n");
  init();
  runServer();
  struct Case {
    bool index;
    const char* key;
    const char* book;
    const char* userData;
    std::string request;
  } cases[] = {
      {false, "FileMenu", "TamblinGuide", "x",
       "client=\"tamblin\" command=\"view\" separator=\";\" book=\"TamblinGuide\" "
       "keyvalue=\"FileMenu\" user_data=\"x\" title=\"Tamblin Help\" subsys=\"tamblin.sw.help\""},
      {true, "", "TamblinGuide", nullptr,
       "client=\"tamblin\" command=\"list\" separator=\";\" book=\"TamblinGuide\" "
       "title=\"Tamblin Help\" subsys=\"tamblin.sw.help\""},
      // Values are sent as they are, quotes and all.
      {false, "a\"b", "", "",
       "client=\"tamblin\" command=\"view\" separator=\";\" keyvalue=\"a\"b\" "
       "title=\"Tamblin Help\" subsys=\"tamblin.sw.help\""},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(1, c.index ? OrvexHelpIndexMsg(c.key, c.book) : OrvexHelpMsg(c.key, c.book, c.userData));
    EXPECT_EQ(c.request, pendingRequest());
    EXPECT_EQ(c.request, OrvexHelpLastRequest());
  }
}

TEST_F(HelpClientTest, WithoutResourcesTheTitleIsTheClientName) {
  init();
  runServer();
  OrvexHelpMsg("k", "", "");
  EXPECT_EQ("client=\"tamblin\" command=\"view\" separator=\";\" keyvalue=\"k\" title=\"tamblin\"",
            pendingRequest());
}

TEST_F(HelpClientTest, NoDisplayRefusesEveryRequest) {
  OrvexHelpInit(nullptr, "tamblin", "Tamblin");
  EXPECT_EQ(0, OrvexHelpMsg("k", "b", "u"));
  EXPECT_EQ(0, OrvexHelpIndexMsg("k", "b"));
}

TEST_F(HelpClientTest, NoServerRunningStartsOneWithTheRequestPending) {
  std::string out = dir.file("server.args");
  programs.server = recorder(dir, "orvexhelp", out);
  init();
  ASSERT_EQ(1, OrvexHelpMsg("Topic", "Book", ""));
  EXPECT_EQ("-pending\n" + OrvexHelpLastRequest() + "\n", waitForFile(out));
}

TEST_F(HelpClientTest, TheServerInheritsOnlyStandardDescriptors) {
  // A descriptor of the program without close-on-exec; the server (a shell
  // here) looks for it in its own descriptors.
  int leaked[2];
  ASSERT_EQ(0, pipe(leaked));
  std::string out = dir.file("server.fds");
  std::string check = "#!/bin/sh\nfor fd in " + std::to_string(leaked[0]) + " " +
                      std::to_string(leaked[1]) +
                      "; do [ -e /proc/$$/fd/$fd ] && echo \"$fd open\"; done > " + out +
                      ".part\n[ -e /proc/$$/fd/2 ] && echo 2 >> " + out + ".part\nmv " + out +
                      ".part " + out + "\n";
  programs.server = dir.write("orvexhelp", check);
  chmod(programs.server.c_str(), 0755);
  init();
  ASSERT_EQ(1, OrvexHelpMsg("Topic", "Book", ""));
  EXPECT_EQ("2\n", waitForFile(out));
  close(leaked[0]);
  close(leaked[1]);
}

TEST_F(HelpClientTest, MissingServerShowsTheErrorBox) {
  const std::string missingText =
      "OrvexHelp server program (/usr/sbin/orvexhelp) not found.";
  const std::string installText = "Please install ocular.sw.orvexhelp and try again.";
  struct Case {
    const char* name;
    bool notice;    // the notice utility exists
    bool textFile;  // the site's own error text exists
    std::vector<std::string> args;
  } cases[] = {
      {"notice", true, false,
       {"-t", missingText, "-t", installText, "-B", "Ok", "-header", "Help Error", "-icon", "warning"}},
      {"notice with the site's text", true, true,
       {"-B", "Ok", "-header", "Help Error", "-file", dir.file("app-defaults/Desktophelp"), "-icon",
        "warning"}},
      {"xmessage", false, false,
       {"-title", "Help Error", "-buttons", "Ok", missingText, installText}},
  };
  int run = 0;
  for (const Case& c : cases) {
    std::string out = dir.file("box" + std::to_string(++run) + ".args");
    if (c.textFile)
      dir.write("app-defaults/Desktophelp", "Help is missing.\n");
    else
      unlink(dir.file("app-defaults/Desktophelp").c_str());
    programs.notice = c.notice ? recorder(dir, "xnotice", out) : dir.file("no-notice");
    programs.message = recorder(dir, "xmessage", out);
    init();
    ASSERT_EQ(1, OrvexHelpMsg("Topic", "Book", ""));
    std::string expected;
    for (const std::string& a : c.args) expected += a + "\n";
    EXPECT_EQ(expected, waitForFile(out)) << c.name;
  }
}

}  // namespace
