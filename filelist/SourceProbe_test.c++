#include "filelist/SourceProbe.h"

#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "util/TempDir.h"

namespace {

// What a plain lstat of the joined path says: the probe must agree with it.
bool lstatFinds(const std::string& root, const std::string& rel) {
  struct stat st;
  std::string path = (root == "/" ? std::string() : root) + "/" + rel;
  return ::lstat(path.c_str(), &st) == 0 && st.st_mode != 0;
}

TEST(SourceProbeTest, AgreesWithLstatOfTheJoinedPath) {
  TempDir dir;
  dir.write("root/big/keep", "x");
  dir.write("root/small/one", "x");
  dir.write("root/top", "x");
  dir.mkdir("root/big/sub");
  ASSERT_EQ(symlink("missing", dir.file("root/big/dangling").c_str()), 0);
  ASSERT_EQ(symlink("big", dir.file("root/linkdir").c_str()), 0);
  ASSERT_EQ(symlink("top", dir.file("root/linkfile").c_str()), 0);
  ASSERT_EQ(symlink("/nonexistent", dir.file("root/abs").c_str()), 0);

  std::vector<std::string> rels = {
      "big/keep", "big/gone", "big/dangling", "big/sub", "big/sub/", "big/keep/", "big/.",
      "big/..", "big//keep", "big/./keep", "big/sub/../keep", "small/one", "small/two",
      "top", "/top", "//big/keep", "", ".", "linkdir/keep", "linkdir/gone", "linkfile",
      "linkfile/", "abs", "abs/x", "nodir/x", "top/x",
  };
  // Enough names in big/ and linkdir/ that those directories are read whole.
  for (int i = 0; i < SourceProbe::kListingThreshold; i++) {
    rels.push_back("big/gone" + std::to_string(i));
    rels.push_back("linkdir/keep");
  }
  const std::string root = dir.file("root");
  for (const std::string& r : {root, root + "/big", dir.file("nowhere"), dir.file("root/top")}) {
    std::vector<std::string_view> views(rels.begin(), rels.end());
    std::vector<char> found = SourceProbe(r).exists(views);
    ASSERT_EQ(found.size(), rels.size());
    for (size_t i = 0; i < rels.size(); i++)
      EXPECT_EQ(found[i] != 0, lstatFinds(r, rels[i])) << "root " << r << " path '" << rels[i] << "'";
  }
}

TEST(SourceProbeTest, ListedDirectoriesSeeEveryEntry) {
  TempDir dir;
  std::vector<std::string> rels;
  for (int i = 0; i < 3 * SourceProbe::kListingThreshold; i++) {
    rels.push_back("d/f" + std::to_string(i));
    if (i % 3 == 0) dir.write("d/f" + std::to_string(i), "x");
  }
  std::vector<std::string_view> views(rels.begin(), rels.end());
  std::vector<char> found = SourceProbe(dir.path()).exists(views);
  for (size_t i = 0; i < rels.size(); i++) EXPECT_EQ(found[i] != 0, i % 3 == 0) << rels[i];
}

}  // namespace
