#include "spec/SpecMapping.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

TEST(SpecMappingTest, Parse) {
  const struct {
    const char* text;
    const char* dump;
  } cases[] = {
      {"", ""},
      {"p.sw.base", "p.sw.base"},
      {"a\nb", "(a | b)"},
      {"a b c", "((a | b) | c)"},
      {"a | b & c", "(a | (b & c))"},
      {"a || b && !c", "(a | (b & !c))"},
      {"(a|b)&!c", "((a | b) & !c)"},
      {"!!a", "!!a"},
  };
  for (const auto& c : cases) {
    SpecMapping m(c.text);
    EXPECT_EQ("", m.error()) << c.text;
    EXPECT_EQ(c.dump, m.dump()) << c.text;
  }
  EXPECT_TRUE(SpecMapping("").empty());
  EXPECT_EQ((std::vector<std::string>{"a", "b", "c"}), SpecMapping("(a|b)&!c").words());
}

TEST(SpecMappingTest, Errors) {
  const struct {
    const char* text;
    const char* error;
  } cases[] = {
      {"(a", "unbalanced '('"},
      {"a)", "unbalanced ')'"},
      {"a &", "expression ends after an operator"},
      {"a & | b", "'|' where a tag was expected"},
      {"& a", "'&' where a tag was expected"},
      {"!", "expression ends after an operator"},
  };
  for (const auto& c : cases) {
    SpecMapping m(c.text);
    EXPECT_EQ(c.error, m.error()) << c.text;
    EXPECT_FALSE(m.matches("a")) << c.text;
    EXPECT_TRUE(m.words().empty()) << c.text;
    EXPECT_FALSE(m.empty()) << c.text;
  }
}

TEST(SpecMappingTest, Matches) {
  const struct {
    const char* text;
    const char* tag;
    bool match;
  } cases[] = {
      {"p.sw.base", "p.sw.base", true},
      {"p.sw.base", "p.sw.bas", false},
      {"p.sw.base", "p.sw.base2", false},
      {"p.sw.base\np.sw.lib", "p.sw.lib", true},
      {"p.sw.*", "p.sw.lib", true},
      {"p.sw.*", "p.man.page", false},
      {"p.sw.* & !p.sw.doc", "p.sw.doc", false},
      {"p.sw.* & !p.sw.doc", "p.sw.bin", true},
      {"p.sw.[ab]*", "p.sw.base", true},
      {"p.sw.[ab]*", "p.sw.lib", false},
      {"", "anything", false},
  };
  for (const auto& c : cases) EXPECT_EQ(c.match, SpecMapping(c.text).matches(c.tag)) << c.text;
}

}  // namespace
