#include "spec/SpecLexer.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
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

TEST(EnvsubTest, BoundedByTokenLengthAndBudget) {
  setenv("TAMBLIN_DOUBLE", "$TAMBLIN_DOUBLE$TAMBLIN_DOUBLE", 1);
  setenv("TAMBLIN_HALF", std::string(kSpecMaxToken / 2, 'h').c_str(), 1);
  struct Case {
    std::string in;
    std::size_t budget;
    EnvsubResult result;
    std::size_t used;  // of the budget
  } cases[] = {
      // A value that doubles itself would take 2^20 times its size.
      {"$TAMBLIN_DOUBLE", 1u << 20, EnvsubResult::kTooLong, 0},
      // The pass that met references, and the one that found none left.
      {"$TAMBLIN_HALF$TAMBLIN_HALF", 1u << 20, EnvsubResult::kDone, 2 * kSpecMaxToken},
      {"$TAMBLIN_HALF$TAMBLIN_HALF$TAMBLIN_HALF", 1u << 20, EnvsubResult::kTooLong, 0},
      {"$TAMBLIN_HALF", 100, EnvsubResult::kOutOfBudget, 100},
      {"no reference", 100, EnvsubResult::kDone, 12},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.in);
    std::string text = c.in;
    std::size_t budget = c.budget;
    EXPECT_EQ(c.result, envsub(text, &budget));
    if (c.result != EnvsubResult::kDone) {
      EXPECT_EQ(c.in, text);  // left as it was
    }
    if (c.result != EnvsubResult::kTooLong) {
      EXPECT_EQ(c.used, c.budget - budget);
    }
  }
  unsetenv("TAMBLIN_DOUBLE");
  unsetenv("TAMBLIN_HALF");
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
               {55, "spec :"},
               {56, "-no such reduction-"},
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
  ASSERT_TRUE(graph.open(path).ok());
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
          // The process that exits may have made its own scratch directory
          // (a death test may run the test from its start); it goes too.
          static std::string scratch;
          scratch = dir.path();
          std::atexit([] { std::filesystem::remove_all(scratch); });
          SpecGraphModel graph(&reporter);
          (void)graph.open(path);
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
  (void)graph.open(path);
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
  (void)graph.open(path);
  EXPECT_EQ("", ::testing::internal::GetCapturedStdout());
}

TEST_F(SpecLexerFileTest, ReadStateDoesNotLeakBetweenReads) {
  // A file ending inside a quote, then a clean file: the second starts
  // outside any quote, at line 1, with no include left open.
  dir.write("inc.spec", "product q id Q endproduct\n");
  std::string broken = dir.write("broken.spec", "include inc.spec\nproduct p id \"open\n");
  std::string clean = dir.write("clean.spec", "product r id R endproduct\nendproduct\n");
  SpecGraphModel graph(&reporter);
  (void)graph.open(broken);
  reporter.clear();
  (void)graph.open(clean);
  EXPECT_EQ((std::vector<std::string>{"Error reading " + clean +
                                      ", line 2:  syntax error (at 'endproduct')",
                                      "Read " + clean + " up to line 2; the rest was skipped."}),
            reporter.texts("log"));
  EXPECT_EQ("r", graph.getProductName());
}

}  // namespace

namespace {

// Runs with lowered read limits and puts the usual ones back.
class SpecReadLimitsTest : public SpecLexerFileTest {
 protected:
  SpecReadLimits saved = specReadLimits();
  ~SpecReadLimitsTest() override { specReadLimits() = saved; }
  std::vector<std::string> logged() const { return reporter.texts("log"); }
};

TEST_F(SpecReadLimitsTest, SubstitutionHasABudgetPerRead) {
  specReadLimits().maxExpansion = 10000;
  // Each reference costs two passes of 400 characters: twelve fit.
  std::string text = "setenv TAMBLIN_V=" + std::string(400, 'v') + "\nproduct p id P image i id I version 1\n";
  for (int i = 0; i < 20; ++i)
    text += "subsys s" + std::to_string(i) + " id $TAMBLIN_V endsubsys\n";
  text += "endimage endproduct\n";
  std::string path = dir.write("budget.spec", text);
  SpecGraphModel graph(&reporter);
  ASSERT_TRUE(graph.open(path).ok());
  EXPECT_EQ((std::vector<std::string>{
                "Error reading " + path + ", line 15:  environment substitution stopped after "
                "10000 characters; later references stay as written (at '$TAMBLIN_V')",
                "Read " + path + " without the text in error."}),
            logged());
  EXPECT_EQ(std::string(400, 'v'), graph.getNode("p.i.s11")->id());
  EXPECT_EQ("$TAMBLIN_V", graph.getNode("p.i.s12")->id());
  EXPECT_EQ("$TAMBLIN_V", graph.getNode("p.i.s19")->id());
  unsetenv("TAMBLIN_V");
}

TEST_F(SpecReadLimitsTest, SelfDoublingValuesStayAsWritten) {
  // As found: a value that doubles itself, used thirty times, took minutes
  // and gigabytes; each use now stops at the longest word.
  std::string text = "setenv TAMBLIN_D=$TAMBLIN_D$TAMBLIN_D\nproduct p id P image i id I version 1\n";
  for (int i = 0; i < 30; ++i)
    text += "subsys s" + std::to_string(i) + " id $TAMBLIN_D endsubsys\n";
  text += "endimage endproduct\n";
  std::string path = dir.write("double.spec", text);
  SpecGraphModel graph(&reporter);
  ASSERT_TRUE(graph.open(path).ok());
  EXPECT_EQ(30, graph.lastReadReport().errors);
  ASSERT_EQ(31u, logged().size());
  EXPECT_EQ("Error reading " + path + ", line 3:  environment substitution gives more than 1000 "
            "characters (at '$TAMBLIN_D')",
            logged()[0]);
  EXPECT_EQ("$TAMBLIN_D", graph.getNode("p.i.s29")->id());
  unsetenv("TAMBLIN_D");
}

TEST_F(SpecReadLimitsTest, MessagesPerReadAreCapped) {
  // A binary file is mostly bad characters: a few are shown, the rest
  // counted in one line.
  std::string junk(200000, '\x01');
  std::string path = dir.write("junk.spec", "product p id P\n" + junk + "\nendproduct\n");
  SpecGraphModel graph(&reporter);
  ASSERT_TRUE(graph.open(path).ok());
  EXPECT_EQ(200000, graph.lastReadReport().errors);
  std::vector<std::string> log = logged();
  ASSERT_EQ(102u, log.size());
  EXPECT_EQ("Error reading " + path + ", line 2:  bad character '\x01'\n (at '\x01')", log[99]);
  EXPECT_EQ("199900 more messages about " + path + " were suppressed.", log[100]);
  EXPECT_EQ("Read " + path + " without the text in error.", log[101]);
  EXPECT_EQ(100u, reporter.texts("show").size() - 1);
  EXPECT_EQ("product p\n    id P\nendproduct\n", [&] {
    char* buf = nullptr;
    size_t len = 0;
    std::FILE* fp = open_memstream(&buf, &len);
    graph.writeAll(fp);
    std::fclose(fp);
    std::string s(buf, len);
    std::free(buf);
    return s;
  }());
}

TEST_F(SpecReadLimitsTest, FilesAndBytesPerRead) {
  dir.write("small.spec", "\n");
  dir.write("big.spec", std::string(300, '\n'));
  struct Case {
    const char* name;
    int maxFiles;
    std::size_t maxBytes;
    std::string text;
    std::string message;
  } cases[] = {
      {"too many files", 3, 1u << 20,
       "include small.spec\ninclude small.spec\ninclude small.spec\n",
       "Include of 'small.spec' refused: this read has entered 3 files already."},
      {"too many bytes", 100, 200, "include small.spec\ninclude big.spec\n",
       "Couldn't open include 'big.spec' (File too large)."},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    reporter.clear();
    specReadLimits().maxFiles = c.maxFiles;
    specReadLimits().maxBytes = c.maxBytes;
    std::string path = dir.write("main.spec", c.text + "product p id P endproduct\n");
    SpecGraphModel graph(&reporter);
    ASSERT_TRUE(graph.open(path).ok());
    EXPECT_EQ((std::vector<std::string>{c.message,
                                        "Read " + path + " without the includes that failed."}),
              logged());
    EXPECT_EQ("p", graph.getProductName());
  }
}

}  // namespace
