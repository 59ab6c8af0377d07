#include "spec/SpecRules.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "spec/SpecGraphModel.h"
#include "util/RecordingReporter.h"
#include "util/TempDir.h"

namespace {

std::string bound(const SpecBound& b) { return b.kind == SpecBound::None ? "-" : b.text; }

// kind:name[low,high]|name... ; one entry per rule.
std::string dump(const SpecRules& rules) {
  std::string out;
  for (const SpecRule& r : rules.rules()) {
    if (!out.empty()) out += "; ";
    out += std::string(SpecRules::keyword(r.kind)) + "@" + std::to_string(r.line) + ":";
    for (size_t i = 0; i < r.targets.size(); i++) {
      const SpecTarget& t = r.targets[i];
      out += (i ? "|" : "") + t.name + "[" + bound(t.low) + "," + bound(t.high) + "]";
    }
  }
  for (const SpecRulesError& e : rules.errors())
    out += " !" + std::to_string(e.line) + ": " + e.message;
  return out;
}

TEST(SpecRulesTest, Table) {
  const struct {
    const char* text;
    const char* dump;
  } cases[] = {
      {"", ""},
      {"replaces self", "replaces@1:self[-,-]"},
      {"replaces self\nincompat x 0 oldvers", "replaces@1:self[-,-]; incompat@2:x[0,oldvers]"},
      {"incompat a b 1 maxint c", "incompat@1:a[-,-]|b[1,maxint]|c[-,-]"},
      // As the reader stores a group of two triples.
      {"prereq (\n    a 0 oldvers\n    b 1 2\n)", "prereq@1:a[0,oldvers]|b[1,2]"},
      // Line breaks carry nothing: a group the reader broke oddly reads the same.
      {"prereq (\n    a 0\n oldvers b 1 2\n)", "prereq@1:a[0,oldvers]|b[1,2]"},
      {"prereq ( a 0 maxint )\nprereq ( b 0 maxint )", "prereq@1:a[0,maxint]; prereq@2:b[0,maxint]"},
      {"follows p.sw.base 3 3\nupdates p.sw.old 0 maxint",
       "follows@1:p.sw.base[3,3]; updates@2:p.sw.old[0,maxint]"},
      // A single number after a name is a name of its own.
      {"incompat a 1", "incompat@1:a[-,-]|1[-,-]"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.dump, dump(SpecRules(c.text))) << c.text;
}

TEST(SpecRulesTest, Errors) {
  const struct {
    const char* text;
    const char* dump;
  } cases[] = {
      {"self", " !1: expected a relation (replaces, incompat, prereq, follows, updates) at 'self'"},
      {"replaces self\nprereq a 0 1", "replaces@1:self[-,-] !2: prereq without '('"},
      {"prereq (\n a 0 maxint\n", " !2: prereq group without ')'"},
      {"prereq ( )", " !1: empty prereq group"},
      {"prereq ( a 0 )",
       " !1: prereq group of 2 words: each subsystem needs two version bounds"},
      {"prereq ( a new maxint )",
       " !1: bad version bounds 'new maxint' of a (a number, maxint or oldvers)"},
      {"incompat\nreplaces self", "replaces@2:self[-,-] !1: incompat names no subsystem"},
      {"incompat a ( b", " !1: unexpected '(' in incompat"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.dump, dump(SpecRules(c.text))) << c.text;
}

TEST(SpecRulesTest, BoundsThatRestrictNothing) {
  SpecRules rules("incompat a 0 maxint b 2 oldvers");
  ASSERT_EQ(2u, rules.rules()[0].targets.size());
  const SpecTarget& a = rules.rules()[0].targets[0];
  const SpecTarget& b = rules.rules()[0].targets[1];
  EXPECT_TRUE(a.low.open());
  EXPECT_TRUE(a.high.open());
  EXPECT_FALSE(b.low.open());
  EXPECT_FALSE(b.high.open());
  EXPECT_EQ(SpecBound::OldVers, b.high.kind);
}

// The rules text the reader builds from a file parses to the relations the
// file wrote, and every node knows the line of its name.
TEST(SpecRulesTest, FromTheReader) {
  TempDir dir;
  RecordingReporter reporter;
  SpecGraphModel graph(&reporter);
  const std::string path = dir.write("p.spec",
                                     "product p id \"P\"\n"
                                     "  image sw id \"S\" version 2\n"
                                     "    subsys base id \"B\" required\n"
                                     "      replaces self\n"
                                     "      prereq ( q.sw.lib 1 maxint q.sw.alt 0 oldvers )\n"
                                     "      incompat p.sw.old 0 oldvers\n"
                                     "      exp p.sw.base\n"
                                     "    endsubsys\n"
                                     "  endimage\n"
                                     "endproduct\n");
  ASSERT_TRUE(graph.open(path).ok());
  const SpecNode* base = graph.getNode("p.sw.base");
  ASSERT_NE(nullptr, base);
  EXPECT_EQ(
      "replaces@1:self[-,-]; prereq@2:q.sw.lib[1,maxint]|q.sw.alt[0,oldvers]; "
      "incompat@6:p.sw.old[0,oldvers]",
      dump(SpecRules(base->rules())));
  EXPECT_EQ(path, base->sourceFile());
  EXPECT_EQ(3, base->sourceLine());
  EXPECT_EQ(2, graph.getNode("p.sw")->sourceLine());
  EXPECT_EQ(1, graph.getNode("p")->sourceLine());
}

}  // namespace
