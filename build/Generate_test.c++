// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <Xm/TextF.h>
#include <Xm/ToggleB.h>

#include "app/ui/LayoutChecks.h"
#include "build/Generate.h"
#include "filelist/FileListModel.h"
#include "spec/SpecGraphModel.h"
#include "util/Format.h"
#include "util/RecordingReporter.h"
#include "util/TempDir.h"
#include "util/UiTestApp.h"

namespace {

void expire(XtPointer flag, XtIntervalId*) { *static_cast<bool*>(flag) = true; }

// Processes events until done() holds or 10 s have passed.
bool waitFor(const std::function<bool()>& done) {
  XtAppContext context = UiTestApp::context();
  bool expired = false;
  XtIntervalId timer = XtAppAddTimeOut(context, 10000, expire, &expired);
  while (!done() && !expired) XtAppProcessEvent(context, XtIMAll);
  if (!expired) XtRemoveTimeOut(timer);
  return done();
}

class GenerateTest : public ::testing::Test {
 protected:
  void SetUp() override {
    _shell = newApplicationShell("generateShell");
    panel = std::make_unique<Generate>("Generate", _shell, reporter);
    fileList = std::make_unique<FileListModel>(reporter);
    spec = std::make_unique<SpecGraphModel>(&reporter);
    spec->defaultGraph();
    panel->connect(*fileList, *spec);
    fileList->setBuildPartner(panel.get());
    // Both files saved, in a directory of their own.
    ASSERT_TRUE(spec->save(dir.file("p.spec").c_str()).ok());
    ASSERT_TRUE(fileList->save(dir.file("p.idb").c_str()).ok());
    panel->setDistDir(dir.file("dist"));
    reporter.clear();
  }
  void TearDown() override {
    panel.reset();
    XtDestroyWidget(_shell);
  }

  // A stand-in for the build program, named by the resource.
  std::string useProgram(const std::string& script) {
    std::string path = dir.write("forgeset", "#!/bin/sh\n" + script);
    chmod(path.c_str(), 0755);
    putUserResource(_shell, ("*buildProgram: " + path).c_str());
    return path;
  }
  void setToggles(bool verbose, bool noCompress, bool noStrip) {
    XmToggleButtonSetState(child("verboseToggleButton"), verbose, False);
    XmToggleButtonSetState(child("noCompressToggleButton"), noCompress, False);
    XmToggleButtonSetState(child("noStripToggleButton"), noStrip, False);
  }
  Widget child(const char* name) { return XtNameToWidget(panel->baseWidget(), (std::string("*") + name).c_str()); }
  void setField(const char* name, const std::string& text) {
    XmTextFieldSetString(child(name), const_cast<char*>(text.c_str()));
  }
  std::string field(const char* name) {
    char* t = XmTextFieldGetString(child(name));
    std::string s = t;
    XtFree(t);
    return s;
  }
  size_t count(const std::string& kind, const std::string& text) {
    size_t n = 0;
    for (const std::string& t : reporter.texts(kind)) n += t == text;
    return n;
  }
  bool waitForDone(size_t n) {
    return waitFor([&] { return count("log", "Done.") >= n; });
  }

  TempDir dir;
  RecordingReporter reporter;
  std::unique_ptr<Generate> panel;
  std::unique_ptr<FileListModel> fileList;
  std::unique_ptr<SpecGraphModel> spec;
  Widget _shell = nullptr;
};

// The stand-in echoes its arguments, so the log shows the command line
// twice: as logged before the run and as the program received it.
TEST_F(GenerateTest, CommandForEveryToggleAndEmptyRoots) {
  std::string program = useProgram("echo \"args: $*\"\n");
  std::string files = " -idb " + dir.file("p.idb") + " -spec " + dir.file("p.spec") + " -dist " +
                      dir.file("dist");
  std::string roots = " -rbase " + dir.path() + " -sbase " + dir.path();
  struct Case {
    bool verbose, noCompress, noStrip;
    bool roots;
    const char* action;
    std::string options;
  } cases[] = {
      {false, false, false, false, "-all", " -all"},
      {true, false, false, false, "-all", " -verbose -all"},
      {false, true, false, true, "-dryrun", " -nocompress -dryrun"},
      {false, false, true, true, "-all", " -nostrip -all"},
      {true, true, false, false, "-dryrun", " -verbose -nocompress -dryrun"},
      {true, false, true, true, "-all", " -verbose -nostrip -all"},
      {false, true, true, false, "-all", " -nocompress -nostrip -all"},
      {true, true, true, true, "-dryrun", " -verbose -nocompress -nostrip -dryrun"},
  };
  size_t runs = 0;
  for (const Case& c : cases) {
    reporter.clear();
    setToggles(c.verbose, c.noCompress, c.noStrip);
    setField("sourceRootTextField", c.roots ? dir.path() : "");
    setField("destRootTextField", c.roots ? dir.path() : "");
    ASSERT_TRUE(panel->run(c.action));
    ++runs;
    ASSERT_TRUE(waitForDone(1)) << c.options;
    std::string args = (c.roots ? roots : "") + files + c.options;
    EXPECT_EQ((std::vector<std::string>{program + args, "args:" + args, "Done."}),
              reporter.texts("log"))
        << c.options;
    EXPECT_EQ(1u, reporter.texts("show").size());
  }
  EXPECT_EQ(8u, runs);
}

TEST_F(GenerateTest, TheButtonsRunTheirActions) {
  useProgram("echo \"$*\" | sed 's/.* //'\n");
  struct Case {
    const char* button;
    const char* lastArgument;
  } cases[] = {{"allPushButton", "-all"}, {"dryrunPushButton", "-dryrun"}};
  for (const Case& c : cases) {
    reporter.clear();
    XtCallCallbacks(child(c.button), XmNactivateCallback, nullptr);
    ASSERT_TRUE(waitForDone(1)) << c.button;
    std::vector<std::string> log = reporter.texts("log");
    ASSERT_EQ(3u, log.size());
    EXPECT_EQ(c.lastArgument, log[1]);
  }
}

TEST_F(GenerateTest, RefusalsStartNothing) {
  useProgram("echo started\n");
  std::string plainFile = dir.write("occupied", "x");
  std::string idbRefusal = format(
      "Illegal Distribution Directory.  The build operation creates\n"
      "a binary version of the idb file in the distribution directory.\n"
      "Pick another directory to avoid overwriting '%s'.",
      dir.file("p.idb").c_str());
  std::string mkdirRefusal = format(
      "Distrubution Directory '%s' does not exist. An attempt to\n"
      "create yielded '%s'.\n"
      "Enter the following in a shell window,\n"
      "and try again:\n"
      "su\n"
      "mkdir -p %s\n"
      "chmod 777 %s",
      plainFile.c_str(), std::strerror(EEXIST), plainFile.c_str(), plainFile.c_str());
  std::string missing = dir.file("no/such/parent");
  std::string noParent = format(
      "Distrubution Directory '%s' does not exist. An attempt to\n"
      "create yielded '%s'.\n"
      "Enter the following in a shell window,\n"
      "and try again:\n"
      "su\n"
      "mkdir -p %s\n"
      "chmod 777 %s",
      missing.c_str(), std::strerror(ENOENT), missing.c_str(), missing.c_str());
  struct Case {
    const char* name;
    std::string dist, sourceRoot;
    std::vector<std::string> errors;
  } cases[] = {
      {"the idb's directory", dir.path(), "", {idbRefusal}},
      {"the same, written with a trailing slash", dir.path() + "/", "", {idbRefusal}},
      {"the same, through ./", dir.path() + "/./", "", {idbRefusal}},
      {"a regular file", plainFile, "", {mkdirRefusal}},
      {"no parent directory", missing, "", {noParent}},
      {"a source root that is no directory", dir.file("dist"), plainFile,
       {"Source Root '" + plainFile + "' is not a directory."}},
  };
  for (const Case& c : cases) {
    reporter.clear();
    setField("distDirTextField", c.dist);
    setField("sourceRootTextField", c.sourceRoot);
    EXPECT_FALSE(panel->run("-all")) << c.name;
    EXPECT_EQ(c.errors, reporter.texts("error")) << c.name;
    EXPECT_TRUE(reporter.texts("log").empty()) << c.name;
    EXPECT_EQ(0, panel->runningBuilds()) << c.name;
  }
  // The refused root was put back as the file list has it.
  EXPECT_EQ(fileList->sourceRoot(), field("sourceRootTextField"));
}

TEST_F(GenerateTest, UnnamedIdbIsCheckedAsTheProductsIdbHere) {
  fileList->setIdbFileName("");
  char cwd[4096];
  ASSERT_TRUE(getcwd(cwd, sizeof cwd));
  setField("distDirTextField", std::string(cwd) + "/");
  EXPECT_FALSE(panel->run("-dryrun"));
  ASSERT_EQ(1u, reporter.texts("error").size());
  EXPECT_NE(std::string::npos,
            reporter.texts("error")[0].find("overwriting '" + spec->getProductName() + ".idb'"));
}

TEST_F(GenerateTest, MissingDistributionDirectoryIsMade) {
  useProgram("exit 0\n");
  std::string dist = dir.file("fresh");
  setField("distDirTextField", dist);
  ASSERT_TRUE(panel->run("-all"));
  struct stat st;
  ASSERT_EQ(0, stat(dist.c_str(), &st));
  EXPECT_TRUE(S_ISDIR(st.st_mode));
  EXPECT_TRUE(waitForDone(1));
}

TEST_F(GenerateTest, ChangedFilesAreSavedBeforeTheBuild) {
  useProgram("exit 0\n");
  spec->setChanged(true);
  dir.write("p.spec", "stale");
  EXPECT_TRUE(panel->run("-all"));
  EXPECT_NE("stale", dir.read("p.spec"));
  EXPECT_FALSE(spec->changed());
  EXPECT_TRUE(waitForDone(1));
  // A spec without a name and nobody to ask for one: nothing runs.
  reporter.clear();
  spec->setSpecFileName("");
  EXPECT_FALSE(panel->run("-all"));
  EXPECT_EQ(0u, count("log", "Done."));
  EXPECT_EQ(0, panel->runningBuilds());
}

// Output and exit of real children reach the log: lines cut across writes
// arrive whole, standard error too, a failing exit still ends in "Done.",
// and two builds run side by side.
TEST_F(GenerateTest, TwoBuildsAtOnceWithOutputCutAcrossWrites) {
  useProgram(
      "printf 'first hal'\n"
      "sleep 0.2\n"
      "printf 'f\\nsecond\\n'\n"
      "echo complaint >&2\n"
      "printf 'unterminated'\n"
      "exit 3\n");
  ASSERT_TRUE(panel->run("-all"));
  ASSERT_TRUE(panel->run("-dryrun"));
  EXPECT_EQ(2, panel->runningBuilds());
  ASSERT_TRUE(waitForDone(2));
  for (const char* line : {"first half", "second", "complaint", "unterminated"})
    EXPECT_EQ(2u, count("log", line)) << line;
  EXPECT_EQ(0, panel->runningBuilds());
}

TEST_F(GenerateTest, ProgramThatCannotStartIsLogged) {
  putUserResource(_shell, ("*buildProgram: " + dir.file("nosuch")).c_str());
  EXPECT_FALSE(panel->run("-all"));
  std::vector<std::string> log = reporter.texts("log");
  ASSERT_EQ(3u, log.size());
  EXPECT_EQ("Couldn't start " + dir.file("nosuch") + " (No such file or directory)", log[1]);
  // The run has ended, even though it never started.
  EXPECT_EQ("Done.", log[2]);
}

TEST_F(GenerateTest, FieldsAndLabel) {
  panel->setSourceRoot("/src/root");
  panel->setDestRoot("/dest/root");
  EXPECT_EQ("/src/root", field("sourceRootTextField"));
  EXPECT_EQ("/dest/root", field("destRootTextField"));
  setField("distDirTextField", dir.path() + "//dist/./");
  EXPECT_EQ(dir.file("dist"), panel->getDistDir());
  EXPECT_STREQ("Generate", panel->className());
}

}  // namespace
