#include "pkg/ProblemLocation.h"

#include <gtest/gtest.h>

#include "util/TempDir.h"

namespace {

TEST(ProblemLocationTest, Parse) {
  const struct {
    const char* line;
    const char* file;  // "" when the line names no location
    int number;
  } cases[] = {
      {"/w/p.idb:12: not found: x (installs as y)", "/w/p.idb", 12},
      {"p.spec:3: warning: prereq lib: upper bound 3 dropped", "p.spec", 3},
      {"/odd:name/p.idb:7: x", "/odd:name/p.idb", 7},
      {"c:/x:5:", "c:/x", 5},
      {"forgeset: built 5 packages in /d", "", 0},
      {"wrote /d/a_1:2_all.deb (3 files, 10 bytes)", "", 0},
      {":5: x", "", 0},
      {"a:5x: y", "", 0},
      {"Done.", "", 0},
  };
  for (const auto& c : cases) {
    std::optional<ProblemLocation> at = ProblemLocation::parse(c.line);
    EXPECT_EQ(c.file, at ? at->file : "") << c.line;
    EXPECT_EQ(c.number, at ? at->line : 0) << c.line;
  }
}

TEST(ProblemLocationTest, IdbDestination) {
  TempDir dir;
  const std::string idb = dir.write("p.idb",
                                    "# comment\n"
                                    "f 0644 root sys usr/a a t\n"
                                    "\n"
                                    "f 0644 root sys usr/b b t\n"
                                    "f 0644 root sys broken\n");
  EXPECT_EQ("usr/a", ProblemLocation::idbDestination(idb, 2).value_or("-"));
  EXPECT_EQ("usr/b", ProblemLocation::idbDestination(idb, 4).value_or("-"));
  EXPECT_FALSE(ProblemLocation::idbDestination(idb, 1));
  EXPECT_FALSE(ProblemLocation::idbDestination(idb, 5));
  EXPECT_FALSE(ProblemLocation::idbDestination(dir.file("none.idb"), 1));
}

}  // namespace
