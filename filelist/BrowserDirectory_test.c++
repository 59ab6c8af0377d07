#include "filelist/BrowserDirectory.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>

#include <string>
#include <vector>

#include "filelist/DirectorySearch.h"
#include "idb/StringSet.h"
#include "util/RecordingReporter.h"
#include "util/TempDir.h"

namespace {

std::vector<std::string> items(const StringSet& set) {
  std::vector<std::string> out;
  for (int i = 0; i < set.count(); i++) out.push_back(set.item(i));
  return out;
}

TEST(BrowserDirectoryTest, TypedTextsNameDirectories) {
  char cwd[4096];
  ASSERT_NE(nullptr, getcwd(cwd, sizeof cwd));
  const std::string here = cwd;
  struct Case {
    const char* typed;
    std::string path;
  } cases[] = {
      {"~", here}, {"", here + "/"}, {"sub/dir", here + "/sub/dir"},
      {"~/x", here + "/~/x"},  // no home directory expansion
      {"/abs/path", "/abs/path"},
  };
  for (const Case& c : cases) EXPECT_EQ(c.path, BrowserDirectory::typedPath(c.typed)) << c.typed;
  EXPECT_EQ("/etc", BrowserDirectory::entryPath("/", "etc"));
  EXPECT_EQ("/a/b/", BrowserDirectory::entryPath("/a", "b/"));
}

TEST(BrowserDirectoryTest, ContainmentFollowsLinksAndWholeComponents) {
  TempDir t;
  t.mkdir("a/b/c");
  t.mkdir("a/bc");
  ASSERT_EQ(0, symlink(t.file("a/b/c").c_str(), t.file("inside").c_str()));
  ASSERT_EQ(0, symlink(t.file("a/bc").c_str(), t.file("a/b/outside").c_str()));
  struct Case {
    std::string root;
    std::string dir;
    bool inside;
  } cases[] = {
      {"/", t.file("a/bc"), true},
      {t.file("a/b"), t.file("a/b"), true},
      {t.file("a/b"), t.file("a/b/c"), true},
      {t.file("a/b"), t.file("a/bc"), false},
      {t.file("a/b"), t.file("a"), false},
      {t.file("a/b"), t.file("inside"), true},        // a link into the root
      {t.file("a/b"), t.file("a/b/outside"), false},  // a link out of it
      {t.file("inside"), t.file("a/b/c"), true},      // the root itself a link
  };
  RecordingReporter log;
  for (const Case& c : cases) EXPECT_EQ(c.inside, BrowserDirectory::isSubdir(c.root, c.dir, log)) << c.root << " " << c.dir;
  EXPECT_TRUE(log.events().empty());

  EXPECT_FALSE(BrowserDirectory::isSubdir(t.file("gone"), t.file("a"), log));
  EXPECT_FALSE(BrowserDirectory::isSubdir(t.file("a"), t.file("a/nothing/deeper"), log));
  EXPECT_EQ((std::vector<std::string>{
                "Unable to resolve links for " + t.file("gone") + ": No such file or directory\n",
                "Unable to resolve links for " + t.file("a/nothing/deeper") +
                    ": No such file or directory",
                "   (at '" + t.file("a/nothing") + "' in '" + t.file("a/nothing/deeper") + "')"}),
            log.texts("log"));
}

TEST(BrowserDirectoryTest, EntriesSortedWithDirectoriesMarkedBySlash) {
  TempDir t;
  t.write("zeta", "");
  t.write("with blank", "");
  t.mkdir("sub");
  ASSERT_EQ(0, symlink("sub", t.file("linkdir").c_str()));
  ASSERT_EQ(0, symlink("missing", t.file("dangling").c_str()));
  EXPECT_EQ((std::vector<std::string>{"../", "./", "dangling", "linkdir/", "sub/", "with blank",
                                      "zeta"}),
            items(*BrowserDirectory::readEntries(t.path())));
  EXPECT_EQ(0, BrowserDirectory::readEntries(t.file("nope"))->count());
  EXPECT_TRUE(BrowserDirectory::isReadableDirectory(t.file("linkdir")));
  EXPECT_FALSE(BrowserDirectory::isReadableDirectory(t.file("zeta")));
  EXPECT_FALSE(BrowserDirectory::isReadableDirectory(t.file("nope")));
}

TEST(DirectorySearchTest, DirectoryAddsItselfAndEverythingBelow) {
  TempDir t;
  t.write("d/one", "");
  t.write("d/sub/two", "");
  t.write("d/it's $(odd) *", "");  // no shell ever sees the names
  t.mkdir("d/empty");
  ASSERT_EQ(0, symlink("nowhere", t.file("d/dangling").c_str()));
  ASSERT_EQ(0, symlink("..", t.file("d/sub/loop").c_str()));  // a loop: find reports it
  StringSet set("New Items");
  int count = 0;
  std::vector<int> polls;
  ASSERT_TRUE(DirectorySearch::addDir(t.file("d"), set, count, [&](int n) {
    polls.push_back(n);
    return false;
  }));
  std::vector<std::string> got = items(set);
  std::sort(got.begin(), got.end());
  EXPECT_EQ((std::vector<std::string>{t.file("d"), t.file("d/empty"), t.file("d/it's $(odd) *"),
                                      t.file("d/one"), t.file("d/sub"), t.file("d/sub/two")}),
            got);
  EXPECT_GE(count, 7);  // the dangling link is counted but not added
  EXPECT_TRUE(polls.empty());
}

TEST(DirectorySearchTest, PollEveryHundredLinesAndInterruption) {
  TempDir t;
  for (int i = 0; i < 450; i++) t.write("big/f" + std::to_string(i), "");
  struct Case {
    int stopAt;  // 0: never
    bool finished;
    std::vector<int> polls;
  } cases[] = {
      {0, true, {100, 200, 300, 400}},
      {300, false, {100, 200, 300}},
  };
  for (const Case& c : cases) {
    StringSet set("New Items");
    int count = 0;
    std::vector<int> polls;
    bool finished = DirectorySearch::addDir(t.file("big"), set, count, [&](int n) {
      polls.push_back(n);
      return n == c.stopAt;
    });
    EXPECT_EQ(c.finished, finished);
    EXPECT_EQ(c.polls, polls);
    EXPECT_EQ(c.finished ? 451 : 300, count);
  }
}

TEST(DirectorySearchTest, PrefixedCommandsAndCommandsThatCannotRun) {
  TempDir t;
  t.write("d/a", "");
  t.write("d/b", "");
  StringSet set("New Items");
  int count = 0;
  EXPECT_TRUE(DirectorySearch::addByCommand(
      {"/bin/find", "%s", "-mindepth", "1", "-printf", "%P\\0"}, t.file("d"), count, set, true,
      nullptr));
  std::vector<std::string> got = items(set);
  std::sort(got.begin(), got.end());
  EXPECT_EQ((std::vector<std::string>{t.file("d/a"), t.file("d/b")}), got);
  EXPECT_EQ(2, count);
  EXPECT_TRUE(DirectorySearch::addByCommand({"/no/such/program", "%s"}, t.file("d"), count, set,
                                            false, nullptr));
  EXPECT_EQ(2, set.count());
}

// A name may hold any byte but NUL: a newline in a directory's name must
// not split it into other names (here the real /etc).
TEST(DirectorySearchTest, NamesWithNewlinesBlanksAndTabsComeThroughWhole) {
  TempDir t;
  t.write("d/a\n/etc", "");
  t.write("d/with space/f", "");
  t.write("d/tab\there", "");
  t.write("d/\n", "");
  StringSet set("New Items");
  int count = 0;
  ASSERT_TRUE(DirectorySearch::addDir(t.file("d"), set, count, nullptr));
  std::vector<std::string> got = items(set);
  std::sort(got.begin(), got.end());
  EXPECT_EQ((std::vector<std::string>{t.file("d"), t.file("d/\n"), t.file("d/a\n"),
                                      t.file("d/a\n/etc"), t.file("d/tab\there"),
                                      t.file("d/with space"), t.file("d/with space/f")}),
            got);
  EXPECT_EQ(7, count);
}

// The command sees no descriptor of the program but standard input, output
// and error.
TEST(DirectorySearchTest, TheCommandInheritsOnlyStandardDescriptors) {
  TempDir t;
  const std::string marker = t.write("open", "");
  int fds[2];
  ASSERT_EQ(0, pipe(fds));  // without close-on-exec, as a library might leave one
  ASSERT_EQ(100, dup2(fds[0], 100));
  const char* script = "[ -e /proc/self/fd/$0 ] && printf '%s\\0' \"$1\"";
  StringSet set("New Items");
  int count = 0;
  for (const char* fd : {"1", "100"})
    EXPECT_TRUE(DirectorySearch::addByCommand({"/bin/sh", "-c", script, fd, "%s"}, marker, count,
                                              set, false, nullptr));
  close(100);
  close(fds[0]);
  close(fds[1]);
  EXPECT_EQ(std::vector<std::string>{marker}, items(set));  // from fd 1 only
  EXPECT_EQ(1, count);
}

TEST(BrowserDirectoryTest, IsUnderByText) {
  const struct {
    const char* root;
    const char* path;
    bool under;
  } cases[] = {
      {"/a/b", "/a/b", true},   {"/a/b", "/a/b/c", true}, {"/a/b", "/a/bc", false},
      {"/a/b", "/a", false},    {"/", "/anything", true}, {"/", "/", true},
  };
  for (const auto& c : cases)
    EXPECT_EQ(c.under, BrowserDirectory::isUnder(c.root, c.path)) << c.root << " " << c.path;
}

}  // namespace
