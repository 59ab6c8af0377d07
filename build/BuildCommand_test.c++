#include "build/BuildCommand.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

TEST(BuildCommandTest, OptionsInTheProgramsOrder) {
  BuildOptions full;
  full.destRoot = "/d";
  full.sourceRoot = "/s";
  full.idbName = "p.idb";
  full.specName = "p.spec";
  full.distDir = "/usr/dist";
  BuildOptions dryAll = full;
  dryAll.verbose = dryAll.noCompress = dryAll.noStrip = true;
  dryAll.action = kBuildDryrun;
  BuildOptions noRoots = full;
  noRoots.destRoot.clear();
  noRoots.sourceRoot.clear();
  BuildOptions bare;
  bare.noStrip = true;
  BuildOptions onlyDest;
  onlyDest.destRoot = "/d";
  onlyDest.noCompress = true;
  onlyDest.action = kBuildDryrun;

  struct Case {
    const char* name;
    BuildOptions options;
    std::string text;
  };
  const std::vector<Case> cases = {
      {"everything", full,
       "/usr/sbin/forgeset -rbase /d -sbase /s -idb p.idb -spec p.spec -dist /usr/dist -all"},
      {"test build with all toggles", dryAll,
       "/usr/sbin/forgeset -rbase /d -sbase /s -idb p.idb -spec p.spec -dist /usr/dist "
       "-verbose -nocompress -nostrip -dryrun"},
      {"empty roots are left out", noRoots,
       "/usr/sbin/forgeset -idb p.idb -spec p.spec -dist /usr/dist -all"},
      {"nothing but a toggle", bare, "/usr/sbin/forgeset -nostrip -all"},
      {"one root, one toggle", onlyDest, "/usr/sbin/forgeset -rbase /d -nocompress -dryrun"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.text, BuildCommand(c.options).text()) << c.name;
  }
}

TEST(BuildCommandTest, ValuesAreNeitherSplitNorQuoted) {
  BuildOptions o;
  o.sourceRoot = "/my src";
  o.specName = "it's \"x\".spec";
  BuildCommand command(o);
  EXPECT_EQ((std::vector<std::string>{"/usr/sbin/forgeset", "-sbase", "/my src", "-spec",
                                      "it's \"x\".spec", "-all"}),
            command.argv());
  EXPECT_EQ("/usr/sbin/forgeset -sbase /my src -spec it's \"x\".spec -all", command.text());
}

}  // namespace
