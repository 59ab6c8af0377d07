#include "build/DistDirCheck.h"

#include <sys/stat.h>

#include <cerrno>
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
  EXPECT_EQ(kSaveMessage, checkDistDir(DistDirUse::Save, dist + "/p.idb", dist).message());
  // The same directory written differently is the same directory.
  EXPECT_EQ(kSaveMessage,
            checkDistDir(DistDirUse::Save, dir.path() + "/./dist/p.spec", dist).message());
  EXPECT_TRUE(checkDistDir(DistDirUse::Save, dir.path() + "/p.idb", dist).ok());
  // No distribution directory known yet: nothing to compare.
  EXPECT_TRUE(checkDistDir(DistDirUse::Save, dist + "/p.idb", "").ok());
}

TEST(DistDirCheckTest, Build) {
  TempDir dir;
  const std::string idb = dir.write("p.idb", "");
  EXPECT_EQ(
      "Illegal Distribution Directory.  The build operation creates\n"
      "a binary version of the idb file in the distribution directory.\n"
      "Pick another directory to avoid overwriting '" + idb + "'.",
      checkDistDir(DistDirUse::Build, idb, dir.path() + "/").message());

  // A missing directory is made.
  const std::string dist = dir.file("dist");
  EXPECT_TRUE(checkDistDir(DistDirUse::Build, idb, dist).ok());
  struct stat st;
  ASSERT_EQ(0, ::stat(dist.c_str(), &st));
  EXPECT_TRUE(S_ISDIR(st.st_mode));

  // A regular file in its way cannot be replaced by a directory.
  const std::string file = dir.write("file", "x");
  EXPECT_EQ("Distrubution Directory '" + file +
                "' does not exist. An attempt to\ncreate yielded 'File exists'.\n"
                "Enter the following in a shell window,\nand try again:\nsu\nmkdir -p " +
                file + "\nchmod 777 " + file,
            checkDistDir(DistDirUse::Build, idb, file).message());
  EXPECT_EQ(EEXIST, checkDistDir(DistDirUse::Build, idb, file).code());
}

}  // namespace
