#include "filelist/InstallCheck.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "idb/Idb.h"
#include "util/TempDir.h"

namespace {

using Lines = std::vector<std::string>;

TEST(InstallCheckTest, MappingWords) {
  const struct {
    const char* mapping;
    Lines words;
  } cases[] = {
      {"", {}},
      {"p.sw.base", {"p.sw.base"}},
      {"p.sw.base\np.sw.lib", {"p.sw.base", "p.sw.lib"}},
      {"(p.sw.a || p.sw.b) && !p.sw.c", {"p.sw.a", "p.sw.b", "p.sw.c"}},
      {"  \t p.x  ", {"p.x"}},
  };
  for (const auto& c : cases) EXPECT_EQ(InstallCheck::mappedTags(c.mapping), c.words) << c.mapping;
}

TEST(InstallCheckTest, FindingsAndSummary) {
  TempDir dir;
  dir.write("src/bin/tool", "x");
  dir.write("src/lib/x", "x");
  const std::string root = dir.file("src");
  const std::string text =
      "f 0755 root sys usr/bin/tool bin/tool p.sw.base\n"
      "f 0644 root sys usr/lib/x lib/x p.sw.lib\n"
      "f 0644 root sys usr/lib/y lib/y p.sw.extra\n"
      "f 0644 root sys usr/lib/z lib/z p.sw.extra\n";
  Idb idb;
  ASSERT_TRUE(idb.readText(text).ok());

  const struct {
    const char* name;
    bool withSpec;
    std::vector<InstallCheck::Subsystem> subsystems;
    Lines findings;
    std::string summary;
  } cases[] = {
      {"no spec", false, {},
       {"not found: lib/y (installs as usr/lib/y)", "not found: lib/z (installs as usr/lib/z)"},
       "4 entries, 2 not found under " + root},
      {"spec", true,
       {{"p.sw.base", "p.sw.base"}, {"p.sw.lib", "p.sw.lib"}, {"p.man.pages", "p.man.pages"}},
       {"not found: lib/y (installs as usr/lib/y)", "not found: lib/z (installs as usr/lib/z)",
        "tag not mapped by any subsystem: p.sw.extra", "subsystem without files: p.man.pages"},
       "4 entries, 2 not found under " + root + ", 1 tags not in the spec, 1 subsystems without files"},
      {"mapping of two tags", true,
       {{"p.sw.base", "p.sw.base\np.sw.extra"}, {"p.sw.lib", "p.sw.lib || p.sw.gone"}},
       {"not found: lib/y (installs as usr/lib/y)", "not found: lib/z (installs as usr/lib/z)"},
       "4 entries, 2 not found under " + root + ", 0 tags not in the spec, 0 subsystems without files"},
      {"empty spec", true, {},
       {"not found: lib/y (installs as usr/lib/y)", "not found: lib/z (installs as usr/lib/z)",
        "tag not mapped by any subsystem: p.sw.base", "tag not mapped by any subsystem: p.sw.lib",
        "tag not mapped by any subsystem: p.sw.extra"},
       "4 entries, 2 not found under " + root + ", 3 tags not in the spec, 0 subsystems without files"},
  };
  for (const auto& c : cases) {
    InstallCheck check(idb, root);
    if (c.withSpec) check.setSubsystems(c.subsystems);
    EXPECT_EQ(check.run(), c.findings) << c.name;
    EXPECT_EQ(check.summary(), c.summary) << c.name;
  }
}

TEST(InstallCheckTest, RecordsThatWouldNotReadBack) {
  TempDir dir;
  dir.write("src/a\tb", "x");
  dir.write("src/ok", "x");
  Idb idb;
  ASSERT_TRUE(idb.readText("f 0644 root sys usr/a\tb a\tb p.sw.base\n"
                            "f 0644 root sys usr/ok ok p.sw\tbase\n"
                            "f 0644 root sys usr/ok2 ok p.sw.base\n").ok());
  InstallCheck check(idb, dir.file("src"));
  EXPECT_EQ(check.run(), (Lines{"does not read back: usr/a\tb (the destination path holds a tab)",
                                "does not read back: usr/ok (the tag holds a tab)"}));
  EXPECT_EQ(check.summary(),
            "3 entries, 0 not found under " + dir.file("src") + ", 2 not read back the same");
}

}  // namespace
