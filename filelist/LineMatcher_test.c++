#include "filelist/LineMatcher.h"

#include <gtest/gtest.h>

namespace {

struct MatchCase {
  const char* expression;
  const char* line;
  bool matches;
};

TEST(LineMatcherTest, MatchesAnywhereInTheLine) {
  const MatchCase cases[] = {
      {".*", "tool.sw.base build/tool", true},
      {".*", "", true},
      {"^$", "", true},
      {"^$", "tool.sw.base build/tool", false},
      {"sw.base", "tool.sw.base build/tool", true},
      {"build/tool", "tool.sw.base build/tool", true},
      {"^build", "tool.sw.base build/tool", false},
      {"tool$", "tool.sw.base build/tool", true},
      {"base$", "tool.sw.base build/tool", false},
      {"[0-9]", "f 0755 root sys usr/bin/tool", true},
      {"[0-9]", "tool.sw.base build/tool", false},
      {"[[:digit:]]{4}", "f 0755 root sys usr/bin/tool", true},
      {"^[ld] ", "l 0777 root sys usr/lib/x lib/x tool symval(x.1)", true},
      {"^[ld] ", "f 0777 root sys usr/lib/x lib/x tool", false},
      {"lib|bin", "f 0755 root sys usr/bin/tool", true},
      {"(usr/)+bin", "f 0755 root sys usr/bin/tool", true},
      {"symval\\(", "l 0777 root sys x y t symval(x.1)", true},
      {"a+b", "caab", true},
      {"\\.so$", "t lib/libx.so", true},
      {"\\.so$", "t lib/libx.so.1", false},
      // Bytes outside ASCII are single characters, not broken UTF-8.
      {"caf.$", "t caf\xe9", true},
      {"\xe9", "t caf\xe9", true},
  };
  for (const MatchCase& c : cases) {
    LineMatcher m(c.expression);
    ASSERT_TRUE(m.ok()) << c.expression;
    EXPECT_EQ(m.matches(c.line), c.matches) << c.expression << " on '" << c.line << "'";
  }
}

// The shortcuts must agree with the expression itself on every line.
TEST(LineMatcherTest, ShortcutsAgreeWithMatching) {
  const struct {
    const char* expression;
    bool every, onlyEmpty;
  } cases[] = {
      {".*", true, false},      {"x*", true, false},       {"(a|)", true, false},
      {"", true, false},        {"^$", false, true},       {"$^", false, true},
      {"^^$$", false, true},    {"^", false, false},       {"$", false, false},
      {"^.*$", false, false},   {"^x*$", false, false},    {"a", false, false},
      {"[$]*", false, false},   {"\\\\.*", false, false},    {"^$|a", false, false},
      {"[", false, false},
  };
  const char* lines[] = {"", "a", "x", "tool.sw.base build/tool", "$", "."};
  for (const auto& c : cases) {
    LineMatcher m(c.expression);
    EXPECT_EQ(m.matchesEveryLine(), c.every) << c.expression;
    EXPECT_EQ(m.matchesOnlyEmptyLine(), c.onlyEmpty) << c.expression;
    for (const char* line : lines) {
      if (m.matchesEveryLine()) {
        EXPECT_TRUE(m.matches(line)) << c.expression << " on " << line;
      }
      if (m.matchesOnlyEmptyLine()) {
        EXPECT_EQ(m.matches(line), !*line) << c.expression << " on '" << line << "'";
      }
    }
  }
}

TEST(LineMatcherTest, RefusesExpressionsThatDoNotCompile) {
  for (const char* bad : {"[", "a[", "(", "a)", "*a", "x{2,1}", "[z-a]"}) {
    LineMatcher m(bad);
    EXPECT_FALSE(m.ok()) << bad;
    EXPECT_FALSE(m.matches("anything [ ( ) *a")) << bad;
  }
}

}  // namespace
