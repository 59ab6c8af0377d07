#include "pkg/BuildInput.h"

#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "spec/SpecGraphModel.h"
#include "util/RecordingReporter.h"
#include "util/TempDir.h"

namespace {

class BuildInputTest : public ::testing::Test {
 protected:
  TempDir dir;
  RecordingReporter reporter;
  BuildInput input{&reporter};
};

// Comments and empty lines are skipped but counted, so that a problem can
// name the line a person sees in an editor.
TEST_F(BuildInputTest, RecordsKnowTheirLines) {
  const std::string idb = dir.write("p.idb",
                                    "# a comment\n"
                                    "f 0755 root sys usr/bin/a bin/a p.sw.base\n"
                                    "\n"
                                    "f 0644 root sys usr/lib/b lib/b p.sw.lib config(noupdate)\n"
                                    "d 0755 root sys usr/share/c c p.sw.lib");
  ASSERT_TRUE(input.loadIdb(idb).ok());
  ASSERT_EQ(3, input.idb().count());
  EXPECT_EQ(2, input.recordLine(0));
  EXPECT_EQ(4, input.recordLine(1));
  EXPECT_EQ(5, input.recordLine(2));
  EXPECT_EQ(idb + ":4", input.recordWhere(1));
  EXPECT_EQ("config(noupdate)", input.idb()[1]->attr(0));
}

TEST_F(BuildInputTest, IdbMessagesAreTheIdbsOwn) {
  const std::string bad = dir.write("bad.idb", "f 0644 root sys a a t\n# c\nf 0644 root sys b b\n");
  EXPECT_EQ("Couldn't read idb '" + bad + "' (Expected tag in field 7 on line 3).",
            input.loadIdb(bad).message());
  const std::string none = dir.file("none.idb");
  EXPECT_EQ("Couldn't open idb '" + none + "' (No such file or directory).",
            input.loadIdb(none).message());
}

TEST_F(BuildInputTest, SourceRoot) {
  const std::string tree = dir.mkdir("tree");
  EXPECT_TRUE(input.setSourceRoot(tree + "/").ok());
  EXPECT_EQ(tree, input.sourceRoot());
  const std::string file = dir.write("file", "");
  EXPECT_EQ("Source Root '" + file + "' is not a directory.",
            input.setSourceRoot(file).message());
  ::setenv("SBASE", tree.c_str(), 1);
  EXPECT_TRUE(input.setSourceRoot("").ok());
  ::unsetenv("SBASE");
  EXPECT_EQ(tree, input.sourceRoot());
}

TEST_F(BuildInputTest, SpecAndInstallCheck) {
  dir.write("tree/bin/a", "");
  ASSERT_TRUE(input.setSourceRoot(dir.file("tree")).ok());
  ASSERT_TRUE(input.loadIdb(dir.write("p.idb",
                                       "f 0755 root sys usr/bin/a bin/a p.sw.base\n"
                                       "f 0644 root sys usr/lib/b lib/b p.sw.other\n")).ok());
  ASSERT_TRUE(input.loadSpec(dir.write("p.spec",
                                       "product p id P image sw id S version 1\n"
                                       "subsys base id B exp p.sw.base endsubsys\n"
                                       "subsys doc id D exp p.sw.doc endsubsys\n"
                                       "endimage endproduct\n")));
  EXPECT_TRUE(input.hasSpec());
  InstallCheck check = input.installCheck();
  EXPECT_EQ((std::vector<std::string>{"not found: lib/b (installs as usr/lib/b)",
                                      "tag not mapped by any subsystem: p.sw.other",
                                      "subsystem without files: p.sw.doc"}),
            check.run());
  // A spec with a syntax error is not taken.
  EXPECT_FALSE(input.loadSpec(dir.write("bad.spec", "product p id P image\n")));
  EXPECT_FALSE(input.hasSpec());
}

}  // namespace
