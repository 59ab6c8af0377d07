#include "build/DistDirCheck.h"

#include <sys/stat.h>

#include <string>

#include <gtest/gtest.h>

#include "util/TempDir.h"

namespace {

const char kSaveMessage[] =
    "Save target directory matches Distribution Directory.\n"
    "The build operation creates a binary version of the idb file in\n"
    "the distribution directory.  Pick another directory to save your\n"
    "ascii files into.";

TEST(DistDirCheckTest, Save) {
  TempDir dir;
  const std::string dist = dir.mkdir("dist");
  EXPECT_EQ(kSaveMessage, checkDistDir(DistDirUse::Save, dist + "/p.idb", dist).value_or("-"));
  // The same directory written differently is the same directory.
  EXPECT_EQ(kSaveMessage,
            checkDistDir(DistDirUse::Save, dir.path() + "/./dist/p.spec", dist).value_or("-"));
  EXPECT_FALSE(checkDistDir(DistDirUse::Save, dir.path() + "/p.idb", dist));
  // No distribution directory known yet: nothing to compare.
  EXPECT_FALSE(checkDistDir(DistDirUse::Save, dist + "/p.idb", ""));
}

TEST(DistDirCheckTest, Build) {
  TempDir dir;
  const std::string idb = dir.write("p.idb", "");
  EXPECT_EQ(
      "Illegal Distribution Directory.  The build operation creates\n"
      "a binary version of the idb file in the distribution directory.\n"
      "Pick another directory to avoid overwriting '" + idb + "'.",
      checkDistDir(DistDirUse::Build, idb, dir.path() + "/").value_or("-"));

  // A missing directory is made.
  const std::string dist = dir.file("dist");
  EXPECT_FALSE(checkDistDir(DistDirUse::Build, idb, dist));
  struct stat st;
  ASSERT_EQ(0, ::stat(dist.c_str(), &st));
  EXPECT_TRUE(S_ISDIR(st.st_mode));

  // A regular file in its way cannot be replaced by a directory.
  const std::string file = dir.write("file", "x");
  EXPECT_EQ("Distrubution Directory '" + file +
                "' does not exist. An attempt to\ncreate yielded 'File exists'.\n"
                "Enter the following in a shell window,\nand try again:\nsu\nmkdir -p " +
                file + "\nchmod 777 " + file,
            checkDistDir(DistDirUse::Build, idb, file).value_or("-"));
}

}  // namespace
