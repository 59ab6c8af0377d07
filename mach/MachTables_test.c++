#include "mach/MachTables.h"

#include <climits>
#include <cstdio>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "util/TempDir.h"

namespace {

std::string dump(const Mach_Map& m) {
  return std::to_string(m.mclass) + "|" + std::to_string(m.type) + "|" + std::to_string(m.value) +
         "|" + std::to_string(m.mask) + "|" + std::to_string(m.category) + "|" + m.name;
}
std::string dump(const Subgr_Map& s) {
  return s.cpuboard + "|" + s.gfxname + "|" + s.gfxboard + "|" + s.subgr + "|" + s.model;
}
std::string dump(const Arch_Map& a) { return a.cpuboard + "|" + a.processor + "|" + a.wordsize; }

// A parser case: the line and the dump of the row, or nullopt for a failure.
struct ParseCase {
  std::string line;
  std::optional<std::string> row;
};

template <typename Row, typename Parse>
void checkParses(const std::vector<ParseCase>& cases, Parse parse) {
  for (const auto& c : cases) {
    Row row;
    int status = parse(c.line, row);
    if (c.row) {
      EXPECT_EQ(0, status) << c.line;
      EXPECT_EQ(*c.row, dump(row)) << c.line;
    } else {
      EXPECT_EQ(-1, status) << c.line;
    }
  }
}

TEST(MachTablesTest, ParseMachineRows) {
  checkParses<Mach_Map>(
      {
          {"7     2     -1    -1       0     LUMEN", "7|2|-1|-1|0|LUMEN"},
          {"1\t1\t3\t-1\t1\tKB40", "1|1|3|-1|1|KB40"},
          {"  1 2 1024 3840 3 R4000\n", "1|2|1024|3840|3|R4000"},
          {"1 1 3 -1 1 NULL", "1|1|3|-1|1|"},
          {"1 1 3 -1 1 KB40 and more words", "1|1|3|-1|1|KB40"},
          {"x 1 3z -1 1 KB40", "0|1|3|-1|1|KB40"},  // not a number: 0
          {"99999999999 -99999999999 0 0 0 BIG", "2147483647|-2147483648|0|0|0|BIG"},
          {"1 1 3 -1 1", std::nullopt},
          {"1 1 3 -1 1  \t", std::nullopt},
          {"1 1 3 -1 1\n", std::nullopt},
          {"1 1 3", std::nullopt},
          {"", std::nullopt},
      },
      parse_mach);
}

TEST(MachTablesTest, ParseSubgraphicsRows) {
  checkParses<Subgr_Map>(
      {
          {"KB40        LUMEN            LUMEN            LUMEN2           Deskside 20 Lumen, XT",
           "KB40|LUMEN|LUMEN|LUMEN2|Deskside 20 Lumen, XT"},
          {"KB40 LUMEN LUMEN LUMEN2 Deskside 20 Lumen, XT",
           "KB40|LUMEN|LUMEN|LUMEN2|Deskside 20 Lumen, XT"},
          {"KB40\tLUMEN\tLUMEN\tLUMEN2\t \tDeskside  20\n", "KB40|LUMEN|LUMEN|LUMEN2|Deskside  20"},
          {"KB40 LUMEN LUMEN LUMEN2", "KB40|LUMEN|LUMEN|LUMEN2|"},
          {"KB40 LUMEN LUMEN LUMEN2\n", "KB40|LUMEN|LUMEN|LUMEN2|"},
          {"KB40 LUMEN LUMEN LUMEN2    ", "KB40|LUMEN|LUMEN|LUMEN2|"},
          {"NULL NULL NULL NULL NULL", "||||"},
          {"KB16        HALO             HALO             NULL             NULL",
           "KB16|HALO|HALO||NULL"},  // an aligned "NULL" model stays text
          {"KB40 LUMEN LUMEN", std::nullopt},
          {"KB40 LUMEN LUMEN\n", std::nullopt},
          {"", std::nullopt},
      },
      parse_subgr);
}

TEST(MachTablesTest, ParseArchitectureRows) {
  checkParses<Arch_Map>(
      {
          {"KB40        R4000                 32bit", "KB40|R4000|32bit"},
          {"KB52\tR10000\t64bit\n", "KB52|R10000|64bit"},
          {"NULL NULL NULL", "||"},
          {"KB52 R10000 64bit trailing", "KB52|R10000|64bit"},
          {"KB40 R4000", std::nullopt},
          {"KB40 R4000 \n", std::nullopt},
          {"", std::nullopt},
      },
      parse_arch);
}

// Expected lines, or nullopt for the built-in list.
TEST(MachTablesTest, MachineFileLines) {
  TempDir dir;
  const std::string a255(255, 'a');
  struct Case {
    std::string name, text;
    std::optional<std::vector<std::string>> lines;
  };
  const std::vector<Case> cases = {
      {"comments and empty lines go", "# c\nx y\n\n#\nlast", {{"x y", "last"}}},
      {"blank lines are not empty", " \n\t\n", {{" ", "\t"}}},
      {"only one newline is removed", "a\n\n\nb\n", {{"a", "b"}}},
      {"a line of 255 stays whole", a255 + "\nb\n", {{a255, "b"}}},
      {"a longer line is split", a255 + "bc\n", {{a255, "bc"}}},
      {"a continuation can be a comment", a255 + "#bc\nd\n", {{a255, "d"}}},
      {"twice the limit", a255 + a255 + "z", {{a255, a255, "z"}}},
      {"text after a NUL is lost", std::string("ab\0cd\nef\n", 9), {{"ab", "ef"}}},
      {"empty file", "", std::nullopt},
      {"only comments and empty lines", "# only\n\n#comments\n\n", std::nullopt},
  };
  for (const auto& c : cases)
    EXPECT_EQ(c.lines.value_or(builtinMachList()), getMachList(dir.write("f", c.text))) << c.name;
  EXPECT_EQ(builtinMachList(), getMachList(dir.file("missing")));
  EXPECT_EQ(builtinMachList(), getMachList(dir.path()));  // a directory
  EXPECT_EQ(std::string("/var/vessa/machfile"), kMachFile);
}

TEST(MachTablesTest, LoadTablesFromFiles) {
  TempDir dir;
  struct Case {
    std::string name;
    std::string text;
    int status;
    std::size_t mach, subgr, arch;
  };
  const std::string mach = "7 2 -1 -1 0 LUMEN\n1 1 3 -1 1 KB40\n";
  const std::string subgr = "KB40 LUMEN LUMEN LUMEN2 Deskside 20 Lumen, XT\n";
  const std::string arch = "KB40 R4000 32bit\nKB52 R10000 64bit\n";
  const std::vector<Case> cases = {
      {"all sections", mach + "SUBGRMAP\n" + subgr + "ARCHMAP\n" + arch, 0, 2, 1, 2},
      {"comments and blank lines anywhere",
       "# head\n" + mach + "\nSUBGRMAP\n#\n" + subgr + "\n\nARCHMAP\n" + arch + "# tail\n", 0, 2,
       1, 2},
      {"empty sections", "SUBGRMAP\nARCHMAP\n", 0, 0, 0, 0},
      {"no SUBGRMAP", mach + subgr + "ARCHMAP\n" + arch, -1, 0, 0, 0},
      {"no ARCHMAP", mach + "SUBGRMAP\n" + subgr + arch, -1, 0, 0, 0},
      {"no markers", mach, -1, 0, 0, 0},
      {"marker with a trailing blank", mach + "SUBGRMAP \n" + subgr + "ARCHMAP\n" + arch, -1, 0,
       0, 0},
      {"markers out of order", mach + "ARCHMAP\n" + arch + "SUBGRMAP\n" + subgr, -1, 0, 0, 0},
      // The later markers count: the LUMEN row between the SUBGRMAP lines is
      // a machine row, the row between the ARCHMAP lines a subgraphics row.
      {"repeated markers",
       "1 1 3 -1 1 KB40\nSUBGRMAP\n7 2 -1 -1 0 LUMEN\nSUBGRMAP\n" + subgr + "ARCHMAP\n" + subgr +
           "ARCHMAP\nKB52 R10000 64bit\n",
       0, 2, 2, 1},
      {"three-name subgraphics row stops the load",
       mach + "SUBGRMAP\n" + subgr + "KB40 LUMEN LUMEN\n" + subgr + "ARCHMAP\n" + arch, -1, 2, 1,
       0},
      {"short machine row stops the load", "7 2 -1 -1 0 LUMEN\n1 1 3\nSUBGRMAP\nARCHMAP\n", -1, 1,
       0, 0},
      {"short architecture row stops the load",
       mach + "SUBGRMAP\n" + subgr + "ARCHMAP\nKB40 R4000 32bit\nKB52\nKB40 R4000 32bit\n", -1, 2,
       1, 1},
      {"a split long line is parsed piecewise",
       "1 1 3 -1 1 " + std::string(250, 'N') + "\nSUBGRMAP\nARCHMAP\n", -1, 1, 0, 0},
  };
  for (const auto& c : cases) {
    std::vector<Subgr_Map> s(3);
    std::vector<Mach_Map> m(3);
    std::vector<Arch_Map> a(3);
    EXPECT_EQ(c.status, getMachTables(s, m, a, dir.write("machfile", c.text))) << c.name;
    EXPECT_EQ(c.mach, m.size()) << c.name;
    EXPECT_EQ(c.subgr, s.size()) << c.name;
    EXPECT_EQ(c.arch, a.size()) << c.name;
  }
}

TEST(MachTablesTest, LoaderReadsTheFileItIsPointedAt) {
  TempDir dir;
  const std::string old = machFile();
  std::vector<Subgr_Map> s;
  std::vector<Mach_Map> m;
  std::vector<Arch_Map> a;
  setMachFile(dir.write("machfile", "SUBGRMAP\nARCHMAP\nKB40 R4000 32bit\n"));
  EXPECT_EQ(0, getMachTables(s, m, a));
  EXPECT_EQ(1u, a.size());
  setMachFile(dir.file("missing"));
  EXPECT_EQ(0, getMachTables(s, m, a));
  EXPECT_EQ(13u, a.size());
  setMachFile(old);
}

std::string field(const std::string& s) { return s.empty() ? "NULL" : s; }

// The built-in list must load to the documented counts, keep the column
// layout, and be consistent with itself: every board a map names exists as
// a machine row, so the attribute toggles built from it make sense.
TEST(MachTablesTest, BuiltInTables) {
  const std::vector<std::string>& list = builtinMachList();
  TempDir dir;
  std::vector<Subgr_Map> s;
  std::vector<Mach_Map> m;
  std::vector<Arch_Map> a;
  ASSERT_EQ(0, getMachTables(s, m, a, dir.file("missing")));
  ASSERT_EQ(91u, list.size());
  ASSERT_EQ(40u, m.size());
  ASSERT_EQ(36u, s.size());
  ASSERT_EQ(13u, a.size());
  EXPECT_EQ("SUBGRMAP", list[40]);
  EXPECT_EQ("ARCHMAP", list[77]);

  char line[512];
  std::set<std::string> graphics, cpus;
  std::multiset<std::string> processors;
  int class12 = 0;
  for (std::size_t i = 0; i < m.size(); ++i) {
    const Mach_Map& r = m[i];
    std::snprintf(line, sizeof line, "%-6d%-6d%-6d%-9d%-6d%s", r.mclass, r.type, r.value, r.mask,
                  r.category, field(r.name).c_str());
    EXPECT_EQ(list[i], line);
    if (r.mclass == 7) graphics.insert(r.name);
    if (r.mclass == 1 && r.type == 1) cpus.insert(r.name);
    if (r.mclass == 1 && r.type == 2) {
      processors.insert(r.name);
      EXPECT_TRUE(r.mask == 3840 || r.mask == 65280) << line;
    }
    class12 += r.mclass == 12;
    EXPECT_TRUE(r.category >= 0 && r.category <= 4) << line;
  }
  EXPECT_EQ(15u, graphics.size());
  EXPECT_EQ(15u, cpus.size());
  EXPECT_EQ(9u, processors.size());
  EXPECT_EQ((std::set<std::string>{"R3000", "R4000", "R5000", "R8000", "R10000"}),
            std::set<std::string>(processors.begin(), processors.end()));
  EXPECT_EQ(1, class12);

  for (std::size_t i = 0; i < s.size(); ++i) {
    const Subgr_Map& r = s[i];
    std::snprintf(line, sizeof line, "%-12s%-17s%-17s%-17s%s", field(r.cpuboard).c_str(),
                  field(r.gfxname).c_str(), field(r.gfxboard).c_str(), field(r.subgr).c_str(),
                  r.model.c_str());
    EXPECT_EQ(list[41 + i], line);
    EXPECT_EQ(1u, cpus.count(r.cpuboard)) << line;
    EXPECT_EQ(1u, graphics.count(r.gfxboard)) << line;
  }
  std::set<std::string> archProcessors;
  for (std::size_t i = 0; i < a.size(); ++i) {
    const Arch_Map& r = a[i];
    std::snprintf(line, sizeof line, "%-12s%-22s%s", r.cpuboard.c_str(), r.processor.c_str(),
                  r.wordsize.c_str());
    EXPECT_EQ(list[78 + i], line);
    EXPECT_EQ(1u, cpus.count(r.cpuboard)) << line;
    EXPECT_TRUE(r.wordsize == "32bit" || r.wordsize == "64bit") << line;
    archProcessors.insert(r.processor);
  }
  EXPECT_EQ((std::set<std::string>{"R3000", "R4000", "R8000", "R10000"}), archProcessors);
}

}  // namespace
