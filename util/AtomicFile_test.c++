#include "util/AtomicFile.h"

#include <errno.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include <gtest/gtest.h>

#include "util/TempDir.h"

namespace {

int writeAll(const std::string& target, const std::string& text) {
  AtomicFile f(target);
  if (int err = f.open()) return err;
  std::fputs(text.c_str(), f.stream());
  return f.commit();
}

mode_t modeOf(const std::string& path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0 ? st.st_mode & 07777 : 0;
}

TEST(AtomicFileTest, ReplacesContentKeepsModeAndLeavesNoTemporary) {
  TempDir dir;
  std::string target = dir.write("a.idb", "old\n");
  chmod(target.c_str(), 0640);
  EXPECT_EQ(0, writeAll(target, "new\n"));
  EXPECT_EQ("new\n", dir.read("a.idb"));
  EXPECT_EQ(0640u, modeOf(target));
  int entries = 0;
  for (auto& e : std::filesystem::directory_iterator(dir.path())) (void)e, ++entries;
  EXPECT_EQ(1, entries);
}

TEST(AtomicFileTest, WritesThroughSymbolicLinks) {
  TempDir dir;
  dir.write("real/t.spec", "old");
  ASSERT_EQ(0, symlink("real/t.spec", dir.file("link").c_str()));
  // A dangling link makes its target appear.
  ASSERT_EQ(0, symlink("real/new.spec", dir.file("dangling").c_str()));
  EXPECT_EQ(0, writeAll(dir.file("link"), "through"));
  EXPECT_EQ(0, writeAll(dir.file("dangling"), "created"));
  struct stat st;
  ASSERT_EQ(0, lstat(dir.file("link").c_str(), &st));
  EXPECT_TRUE(S_ISLNK(st.st_mode));
  EXPECT_EQ("through", dir.read("real/t.spec"));
  EXPECT_EQ("created", dir.read("real/new.spec"));
}

TEST(AtomicFileTest, DiscardOrFailureLeavesTargetAlone) {
  TempDir dir;
  std::string target = dir.write("keep", "precious");
  {
    AtomicFile f(target);
    ASSERT_EQ(0, f.open());
    std::fputs("half", f.stream());
  }  // destroyed without commit
  EXPECT_EQ("precious", dir.read("keep"));
  EXPECT_EQ(ENOENT, writeAll(dir.file("no/such/dir/file"), "x"));
  if (geteuid() != 0) {
    std::string ro = dir.mkdir("ro");
    chmod(ro.c_str(), 0555);
    EXPECT_EQ(EACCES, writeAll(ro + "/f", "x"));
  }
}

}  // namespace
