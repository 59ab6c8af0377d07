#include "spec/SpecLexer.h"

#include <unistd.h>

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "spec/SpecGraphModel.h"
#include "spec/SpecReader.h"
#include "util/RecordingReporter.h"
#include "util/TempDir.h"

namespace {

TEST(EnvsubTest, Substitution) {
  setenv("TAMBLIN_A", "alpha", 1);
  setenv("TAMBLIN_REF", "<$TAMBLIN_A>", 1);
  setenv("TAMBLIN_EMPTY", "", 1);
  setenv("TAMBLIN_LOOP", "x$TAMBLIN_LOOP", 1);
  unsetenv("TAMBLIN_UNSET");
  const std::string home = std::getenv("HOME") ? std::getenv("HOME") : "";
  const std::string longText(600, 'y');
  struct Case {
    std::string in;
    std::string out;
  } cases[] = {
      {"${HOME}/specs", home + "/specs"},
      {"$HOME/specs", home + "/specs"},
      {"$TAMBLIN_UNSET", "$TAMBLIN_UNSET"},
      {"a${TAMBLIN_UNSET}b", "a${TAMBLIN_UNSET}b"},
      {"\\$TAMBLIN_A", "\\$TAMBLIN_A"},
      {"\\\\$TAMBLIN_A", "\\\\alpha"},
      {"$TAMBLIN_A$TAMBLIN_A", "alphaalpha"},
      {"$TAMBLIN_A.x", "alpha.x"},
      {"${TAMBLIN_A}x", "alphax"},
      {"${TAMBLIN_A", "alpha"},
      {"${}", "${}"},
      {"$", "$"},
      {"$-", "$-"},
      {"a$TAMBLIN_EMPTY.b", "a.b"},
      {"$TAMBLIN_REF", "<alpha>"},
      {longText + "$TAMBLIN_A", longText + "alpha"},
      {"trailing\\", "trailing\\"},
      // Twenty passes, then the reference stays.
      {"$TAMBLIN_LOOP", std::string(20, 'x') + "$TAMBLIN_LOOP"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.in);
    std::string text = c.in;
    envsub(text);
    EXPECT_EQ(c.out, text);
  }
  unsetenv("TAMBLIN_A");
  unsetenv("TAMBLIN_REF");
  unsetenv("TAMBLIN_EMPTY");
  unsetenv("TAMBLIN_LOOP");
}

TEST(EnvsubTest, RunawayGrowthStops) {
  std::string value;
  for (int i = 0; i < 50; ++i) value += "$TAMBLIN_GROW";
  setenv("TAMBLIN_GROW", value.c_str(), 1);
  std::string text = "$TAMBLIN_GROW";
  envsub(text);
  // 50^20 characters are not built; the text stops a little past a megabyte.
  EXPECT_GT(text.size(), 1000000u);
  EXPECT_LT(text.size(), 3000000u);
  unsetenv("TAMBLIN_GROW");
}

TEST(BuildStringTest, Joins) {
  struct Case {
    const char* first;
    const char* sep;
    const char* second;
    const char* out;
  } cases[] = {
      {"a", " ", "b", "a b"},      {nullptr, "\n", "b", "b"}, {"", "\n", "b", "b"},
      {"a", "\n", nullptr, "a\n"}, {"a", "", ")", "a)"},      {nullptr, " ", nullptr, ""},
  };
  for (const Case& c : cases) {
    char* joined = BuildString(c.first, c.sep, c.second);
    EXPECT_STREQ(c.out, joined);
    std::free(joined);
  }
}

TEST(SpecTablesTest, Names) {
  struct Case {
    int number;
    const char* token;
  } tokens[] = {{257, "WORD"},       {258, "IDENTIFIER"}, {261, "NL"}, {262, "PRODUCT"},
                {270, "DEFAULT"},    {274, "ID"},         {284, "INPLACE"},
                {'(', "'('"},        {')', "')'"},         {285, "-unknown-"},
                {256, "-unknown-"},  {'x', "-unknown-"}};
  for (const Case& c : tokens) EXPECT_STREQ(c.token, specTokenName(c.number)) << c.number;
  struct Rule {
    int number;
    const char* text;
  } rules[] = {{0, "-no such reduction-"},
               {1, "spec : products"},
               {2, "spec : error"},
               {22, "imageorder :"},
               {45, "prereq : WORD"},
               {54, "words : SINGLEQUOTE SINGLEQUOTE"},
               {55, "-no such reduction-"},
               {-1, "-no such reduction-"}};
  for (const Rule& r : rules) EXPECT_STREQ(r.text, specRuleText(r.number)) << r.number;
}

class SpecLexerFileTest : public ::testing::Test {
 protected:
  TempDir dir;
  RecordingReporter reporter;
};

TEST_F(SpecLexerFileTest, LongestToken) {
  // Exactly the limit is fine, in a word and in a quoted stretch.
  std::string limit(kSpecMaxToken, 'n');
  std::string path = dir.write("ok.spec", "product " + limit + " id \"" + limit + "\" endproduct\n");
  SpecGraphModel graph(&reporter);
  ASSERT_TRUE(graph.open(path));
  EXPECT_TRUE(graph.lastReadReport().clean());
  EXPECT_EQ(limit, graph.getProductName());
}

TEST_F(SpecLexerFileTest, OverlongTokenEndsTheProgram) {
  std::string over(kSpecMaxToken + 1, 'n');
  const std::string cases[] = {
      "product " + over + " id P endproduct\n",
      "product p id \"a " + over + "\" endproduct\n",
      "include " + over + "\n",
  };
  for (const std::string& text : cases) {
    std::string path = dir.write("long.spec", text);
    // The message goes to standard output; send it where the check looks.
    EXPECT_EXIT(
        {
          dup2(2, 1);
          SpecGraphModel graph(&reporter);
          graph.open(path);
        },
        ::testing::ExitedWithCode(1), "Input string too long, limit 1000\n");
  }
}

TEST_F(SpecLexerFileTest, DebugTrace) {
  std::string path =
      dir.write("d.spec", "product p id \"My 'x'\" endproduct\ninclude none.spec\n");
  SpecGraphModel graph(&reporter);
  specDebug = 1;
  ::testing::internal::CaptureStdout();
  graph.open(path);
  std::string out = ::testing::internal::GetCapturedStdout();
  specDebug = 0;
  const char* expected[] = {
      "\nKeyword(262): 'product'\n",
      "'p' ",
      "Double Quote\n",
      "\"My\" ",
      "Inside double, hit single\n",
      "\nEnd Double Quote\n",
      "\nWord Separator\n",
      "\nInclude(1): 'none.spec'\n",
      "\nReduce 9: productname : WORD\n",
      "\nReduce 51: words : DOUBLEQUOTE words DOUBLEQUOTE\n",
      "\nToken 257 (WORD)\n",
  };
  for (const char* e : expected) EXPECT_NE(std::string::npos, out.find(e)) << e;
  // Without the switch nothing is printed.
  ::testing::internal::CaptureStdout();
  graph.open(path);
  EXPECT_EQ("", ::testing::internal::GetCapturedStdout());
}

TEST_F(SpecLexerFileTest, ReadStateDoesNotLeakBetweenReads) {
  // A file ending inside a quote, then a clean file: the second starts
  // outside any quote, at line 1, with no include left open.
  dir.write("inc.spec", "product q id Q endproduct\n");
  std::string broken = dir.write("broken.spec", "include inc.spec\nproduct p id \"open\n");
  std::string clean = dir.write("clean.spec", "product r id R endproduct\nendproduct\n");
  SpecGraphModel graph(&reporter);
  graph.open(broken);
  reporter.clear();
  graph.open(clean);
  EXPECT_EQ((std::vector<std::string>{"Error reading " + clean +
                                      ", line 2:  syntax error (at 'endproduct')"}),
            reporter.texts("log"));
  EXPECT_EQ("r", graph.getProductName());
}

}  // namespace
