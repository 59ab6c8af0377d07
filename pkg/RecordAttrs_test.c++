#include "pkg/RecordAttrs.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "idb/Idb.h"

namespace {

using Lines = std::vector<std::string>;

// Attribute text as it stands in an idb line, split by the idb's own reader.
RecordAttrs fromLine(const std::string& attrs) {
  Idb idb;
  EXPECT_TRUE(idb.readLine("f 0755 root sys a a t " + attrs + "\n").ok());
  return RecordAttrs::of(*idb[0]);
}

TEST(RecordAttrsTest, CommandsAcrossBlanks) {
  const struct {
    const char* attrs;
    Lines preop, postop;
  } cases[] = {
      // As the Attributes panel writes a two-line command.
      {"postop(echo one;echo two)", {}, {"echo one", "echo two"}},
      // Written by hand with blanks: the idb splits it, the builder joins it.
      {"postop(echo one; echo two)", {}, {"echo one", "echo two"}},
      {"preop('chmod 4755 x')", {"chmod 4755 x"}, {}},
      {"preop(\"a; b\")", {"a", "b"}, {}},
      // Quotes inside the command keep a ";" and the command's own quotes.
      {"preop(echo 'a;b' c)", {"echo 'a;b' c"}, {}},
      {"preop(echo a\\;b)", {"echo a\\;b"}, {}},
      {"preop(f (x) y) postop(z)", {"f (x) y"}, {"z"}},
      {"preop() nostrip", {}, {}},
  };
  for (const auto& c : cases) {
    RecordAttrs a = fromLine(c.attrs);
    EXPECT_EQ(c.preop, a.preop) << c.attrs;
    EXPECT_EQ(c.postop, a.postop) << c.attrs;
    EXPECT_EQ(Lines{}, a.problems) << c.attrs;
  }
}

TEST(RecordAttrsTest, Values) {
  RecordAttrs a = fromLine(
      "symval(../lib/x.so.1) config(suggest) nostrip stripdso mach(CPUBOARD=IP22) noshare "
      "exitop(e) removeop(r)");
  EXPECT_TRUE(a.hasSymval);
  EXPECT_EQ("../lib/x.so.1", a.symval);
  EXPECT_EQ(RecordAttrs::Suggest, a.config);
  EXPECT_TRUE(a.nostrip);
  EXPECT_TRUE(a.stripdso);
  EXPECT_EQ((Lines{"mach(CPUBOARD=IP22)", "noshare"}), a.ignored);
  EXPECT_EQ(Lines{"e"}, a.exitop);
  EXPECT_EQ(Lines{"r"}, a.removeop);
  RecordAttrs d = fromLine("dev(4,64) config(noupdate)");
  EXPECT_TRUE(d.hasDev);
  EXPECT_EQ(4u, d.major);
  EXPECT_EQ(64u, d.minor);
  EXPECT_EQ(RecordAttrs::NoUpdate, d.config);
}

TEST(RecordAttrsTest, Problems) {
  const struct {
    const char* attrs;
    Lines problems;
  } cases[] = {
      {"frobnicate", {"unknown attribute 'frobnicate'"}},
      {"config(always)", {"unknown config 'always' (update, noupdate or suggest)"}},
      {"dev(4)", {"bad device numbers in 'dev(4)' (dev(MAJOR,MINOR))"}},
      {"preop(echo a", {"unclosed '(' in attribute 'preop(echo a'"}},
  };
  for (const auto& c : cases) EXPECT_EQ(c.problems, fromLine(c.attrs).problems) << c.attrs;
}

}  // namespace
