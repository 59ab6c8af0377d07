#include "pkg/DebName.h"

#include <gtest/gtest.h>

namespace {

TEST(DebNameTest, Package) {
  const struct {
    const char* tag;
    const char* name;
    const char* problem;  // "" when Debian takes it
  } cases[] = {
      {"p.sw.base", "p.sw.base", ""},
      {"My_Prod.sw.Base", "my-prod.sw.base", ""},
      {"a b$c", "a-b-c", ""},
      {"x", "x", "package name 'x' is shorter than two characters"},
      {"_tool", "-tool", "package name '-tool' does not start with a letter or digit"},
      {"lib+x", "lib+x", ""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.name, DebName::package(c.tag)) << c.tag;
    EXPECT_EQ(c.problem, DebName::packageProblem(c.name).message()) << c.tag;
  }
}

TEST(DebNameTest, Version) {
  const struct {
    const char* version;
    const char* problem;
  } cases[] = {
      {"1", ""},
      {"1.2.3", ""},
      {"2:1.0-3", ""},
      {"1.0~rc1+b2", ""},
      {"", "version '' is empty"},
      {"v1", "version 'v1' does not start with a digit"},
      {"1_2", "version '1_2' holds '_'"},
      {"x:1", "version 'x:1' has an epoch that is not a number"},
      {"1-", "version '1-' ends with '-'"},
      {"1:2", ""},
      {"1-a_b", "version '1-a_b' holds '_' in its revision"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(c.problem, DebName::versionProblem(c.version).message()) << c.version;
}

}  // namespace
