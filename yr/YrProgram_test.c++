#include <gtest/gtest.h>

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fstream>
#include <string>
#include <vector>

#include "util/TempDir.h"
#include "util/UiTestApp.h"
#include "yr/YrProgram.h"

namespace {

struct Collected {
  std::vector<std::string> out, err;
  int status = -1000;
  bool exited = false;
};

void onOut(YrProgram*, void* c, const char* line) { static_cast<Collected*>(c)->out.push_back(line); }
void onErr(YrProgram*, void* c, const char* line) { static_cast<Collected*>(c)->err.push_back(line); }
void onExit(YrProgram*, void* c, int status) {
  auto* collected = static_cast<Collected*>(c);
  collected->status = status;
  collected->exited = true;
}

void expire(XtPointer flag, XtIntervalId*) { *static_cast<bool*>(flag) = true; }

// Runs the event loop until the program has exited or 10 s have passed.
bool waitForExit(const Collected& c) {
  XtAppContext context = UiTestApp::context();
  bool expired = false;
  XtIntervalId timer = XtAppAddTimeOut(context, 10000, expire, &expired);
  while (!c.exited && !expired) XtAppProcessEvent(context, XtIMAll);
  if (!expired) XtRemoveTimeOut(timer);
  return c.exited;
}

Collected run(YrProgram& program, const std::string& command) {
  Collected c;
  program.setOutputCallback(onOut, &c);
  program.setErrorCallback(onErr, &c);
  program.setExitCallback(onExit, &c);
  Outcome started = program.start(command);
  EXPECT_TRUE(started.ok()) << started.message();
  EXPECT_TRUE(waitForExit(c)) << command;
  EXPECT_FALSE(program.running());
  return c;
}

TEST(YrProgramTest, SplitsCommandLinesAtBlanksOnly) {
  struct Case {
    std::string line;
    std::vector<std::string> words;
  } cases[] = {
      {"", {}},
      {"   ", {}},
      {"ls", {"ls"}},
      {"  /usr/sbin/forgeset   -rbase /a  -idb x.idb ", {"/usr/sbin/forgeset", "-rbase", "/a", "-idb", "x.idb"}},
      // No shell: quotes and glob characters are ordinary characters.
      {"echo 'a b' *", {"echo", "'a", "b'", "*"}},
      {"a\tb", {"a", "b"}},
  };
  for (const Case& c : cases) EXPECT_EQ(c.words, YrProgram::splitCommandLine(c.line)) << c.line;
}

TEST(YrProgramTest, DeliversOutputLinesAndExitStatus) {
  TempDir dir;
  // A child that cuts its lines across writes and pauses between them, so
  // that the pieces arrive in separate reads.
  std::string script = dir.write("pieces.sh",
                                 "#!/bin/sh\n"
                                 "printf 'first par'\n"
                                 "sleep 0.2\n"
                                 "printf 'tial\\nsecond\\n'\n"
                                 "printf 'oops' >&2\n"
                                 "sleep 0.2\n"
                                 "printf ' again\\n' >&2\n"
                                 "printf 'last without newline'\n"
                                 "exit 3\n");
  chmod(script.c_str(), 0755);
  struct Case {
    std::string command;
    std::vector<std::string> out, err;
    int status;
  } cases[] = {
      {"printf one\\ntwo\\nthree", {"one", "two", "three"}, {}, 0},
      {script, {"first partial", "second", "last without newline"}, {"oops again"}, 3},
      {"ls -d /nonexistent-dir-of-tamblin", {}, {"ls: cannot access '/nonexistent-dir-of-tamblin': No such file or directory"}, 2},
      {"true", {}, {}, 0},
  };
  for (const Case& c : cases) {
    YrProgram program(UiTestApp::context());
    Collected got = run(program, c.command);
    EXPECT_EQ(c.out, got.out) << c.command;
    EXPECT_EQ(c.err, got.err) << c.command;
    EXPECT_EQ(c.status, got.status) << c.command;
  }
}

TEST(YrProgramTest, ReportsSignalsAndRefusesWhatCannotRun) {
  YrProgram program(UiTestApp::context());
  Collected c;
  program.setExitCallback(onExit, &c);
  ASSERT_TRUE(program.start("sleep 30").ok());
  Outcome status = program.start("true");
  EXPECT_FALSE(status.ok());
  EXPECT_EQ("A program is already running.", status.message());
  program.kill(SIGTERM);
  ASSERT_TRUE(waitForExit(c));
  EXPECT_EQ(128 + SIGTERM, c.status);

  status = program.start("   ");
  EXPECT_FALSE(status.ok());
  EXPECT_EQ("No program to start.", status.message());
  status = program.start("/nonexistent/forgeset -all");
  EXPECT_EQ("Couldn't start /nonexistent/forgeset (No such file or directory)", status.message());
  EXPECT_EQ(ENOENT, status.code());
  EXPECT_FALSE(program.running());
}

// The descriptors a running child holds, by number, once it has gone to
// sleep: right after exec the dynamic loader still opens its libraries.
std::vector<std::string> openDescriptors(pid_t pid) {
  std::string stat = "/proc/" + std::to_string(pid) + "/stat";
  for (int tries = 0; tries < 500; ++tries) {
    std::ifstream in(stat);
    std::string line;
    std::getline(in, line);
    std::size_t close = line.rfind(')');
    if (close != std::string::npos && line.compare(close, 3, ") S") == 0) break;
    usleep(10000);
  }
  std::vector<std::string> fds;
  std::string dir = "/proc/" + std::to_string(pid) + "/fd";
  if (DIR* d = opendir(dir.c_str())) {
    while (dirent* e = readdir(d))
      if (e->d_name[0] != '.') fds.push_back(e->d_name);
    closedir(d);
  }
  std::sort(fds.begin(), fds.end());
  return fds;
}

TEST(YrProgramTest, ChildrenInheritOnlyStandardDescriptors) {
  // A descriptor of the program without close-on-exec, and a build already
  // running whose output pipes are open in the program.
  int leaked[2];
  ASSERT_EQ(0, pipe(leaked));
  YrProgram first(UiTestApp::context()), second(UiTestApp::context());
  ASSERT_TRUE(first.start("sleep 30").ok());
  ASSERT_TRUE(second.start("sleep 30").ok());
  // start() returns once the child has executed the program.
  std::vector<std::string> standard = {"0", "1", "2"};
  EXPECT_EQ(standard, openDescriptors(first.pid()));
  EXPECT_EQ(standard, openDescriptors(second.pid()));
  close(leaked[0]);
  close(leaked[1]);
}

}  // namespace
