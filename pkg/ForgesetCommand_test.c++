#include "pkg/ForgesetCommand.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "build/BuildCommand.h"

namespace {

bool operator==(const BuildOptions& a, const BuildOptions& b) {
  return a.destRoot == b.destRoot && a.sourceRoot == b.sourceRoot && a.idbName == b.idbName &&
         a.specName == b.specName && a.distDir == b.distDir && a.verbose == b.verbose &&
         a.noCompress == b.noCompress && a.noStrip == b.noStrip && a.action == b.action;
}

// What the Build panel composes, the builder reads back unchanged.
TEST(ForgesetCommandTest, ReadsWhatBuildCommandComposes) {
  std::vector<BuildOptions> table;
  BuildOptions full;
  full.destRoot = "/";
  full.sourceRoot = "/src/tree with blank";
  full.idbName = "/work/p.idb";
  full.specName = "/work/p.spec";
  full.distDir = "/usr/dist";
  full.verbose = full.noCompress = full.noStrip = true;
  full.action = kBuildDryrun;
  table.push_back(full);
  BuildOptions bare;  // the roots left empty, no toggles
  bare.idbName = "p.idb";
  bare.specName = "p.spec";
  bare.distDir = "dist";
  table.push_back(bare);
  BuildOptions some = bare;
  some.noStrip = true;
  some.sourceRoot = "src";
  table.push_back(some);
  for (const BuildOptions& options : table) {
    const std::vector<std::string> argv = BuildCommand(options).argv();
    ForgesetArgs parsed;
    ASSERT_TRUE(ForgesetCommand::parse({argv.begin() + 1, argv.end()}, &parsed).ok())
        << BuildCommand(options).text();
    BuildOptions expected = options;
    expected.program = parsed.build.program;
    EXPECT_TRUE(expected == parsed.build) << BuildCommand(options).text();
    EXPECT_EQ("", parsed.maintainer);
    EXPECT_EQ("", parsed.product);
  }
}

TEST(ForgesetCommandTest, Extras) {
  ForgesetArgs parsed;
  ASSERT_TRUE(ForgesetCommand::parse({"-idb", "i", "-spec", "s", "-maintainer", "A B <a@b>",
                                      "-product", "p", "-dryrun"},
                                     &parsed)
                  .ok());
  EXPECT_EQ("A B <a@b>", parsed.maintainer);
  EXPECT_EQ("p", parsed.product);
  ForgesetArgs help;
  ASSERT_TRUE(ForgesetCommand::parse({"-help"}, &help).ok());
  EXPECT_TRUE(help.help);
}

TEST(ForgesetCommandTest, UsageErrors) {
  const struct {
    std::vector<std::string> args;
    const char* message;
  } cases[] = {
      {{}, "forgeset: give -all or -dryrun"},
      {{"-idb", "i", "-spec", "s"}, "forgeset: give -all or -dryrun"},
      {{"-idb", "i", "-spec", "s", "-all", "-dryrun"}, "forgeset: give -all or -dryrun, not both"},
      {{"-idb", "i", "-dryrun"}, "forgeset: -idb and -spec are needed"},
      {{"-idb", "i", "-spec", "s", "-all"}, "forgeset: -all needs -dist"},
      {{"-idb"}, "forgeset: -idb needs a value"},
      {{"-idb", "i", "-spec", "s", "-x", "-all"}, "forgeset: unknown argument '-x'"},
  };
  for (const auto& c : cases) {
    ForgesetArgs parsed;
    EXPECT_EQ(c.message, ForgesetCommand::parse(c.args, &parsed).message());
  }
}

}  // namespace
