#include "util/Utils.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "util/TempDir.h"

namespace {

// Sets (or unsets) an environment variable for the life of the object.
class ScopedEnv {
 public:
  ScopedEnv(const char* name, const std::optional<std::string>& value) : _name(name) {
    if (const char* old = std::getenv(name)) _old = old;
    if (value)
      setenv(name, value->c_str(), 1);
    else
      unsetenv(name);
  }
  ~ScopedEnv() {
    if (_old)
      setenv(_name.c_str(), _old->c_str(), 1);
    else
      unsetenv(_name.c_str());
  }

 private:
  std::string _name;
  std::optional<std::string> _old;
};

// Changes the current directory for the life of the object.
class ScopedCwd {
 public:
  explicit ScopedCwd(const std::string& dir) {
    char buf[4096];
    _old = getcwd(buf, sizeof buf) ? buf : "/";
    EXPECT_EQ(0, chdir(dir.c_str())) << dir;
  }
  ~ScopedCwd() { (void)chdir(_old.c_str()); }

 private:
  std::string _old;
};

// A tree of directories and links shared by the canonicalisation tests.
// "@T" in a case's text stands for the tree's root.
class LinkTree {
 public:
  LinkTree() {
    _dir.mkdir("p/q");
    _dir.mkdir("x");
    link(_dir.file("p/q"), "l");          // absolute
    link("p/q", "r");                     // relative
    link("l", "n");                       // to another link
    link("p/q/..", "m");                  // with ".." in its text
    link("loop", "loop");                 // to itself
    link("b", "a");                       // a -> b -> a
    link("a", "b");
    link("/nonexistent-tamblin/zz", "dangling");
  }
  const std::string& root() const { return _dir.path(); }
  std::string expand(const std::string& text) const {
    std::string out = text;
    for (std::size_t at; (at = out.find("@T")) != std::string::npos;) out.replace(at, 2, root());
    return out;
  }

 private:
  void link(const std::string& target, const std::string& name) {
    ASSERT_EQ(0, symlink(target.c_str(), _dir.file(name).c_str())) << name;
  }
  TempDir _dir;
};

struct PathCase {
  std::string in;
  std::string out;
};

TEST(UtilsTest, DcanonRemovesDotsSlashesAndParents) {
  const std::vector<PathCase> cases = {
      {"/", "/"},
      {"//", "/"},
      {"/a/b", "/a/b"},
      {"/a//b///c", "/a/b/c"},
      {"/a/./b/.", "/a/b"},
      {"/./.", "/"},
      {"/a/b/", "/a/b"},
      {"/a/b/..", "/a"},
      {"/a/b/../..", "/"},
      {"/..", "/"},
      {"/../../a", "/a"},
      {"/a/../../b/./c/..", "/b"},
      {"/a/.../b", "/a/.../b"},  // only "." and ".." are special
      {"/a/..b/.c", "/a/..b/.c"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.out, dcanon(c.in)) << c.in;
}

TEST(UtilsTest, DcanonFollowsOnlyLinksThatAParentFollows) {
  LinkTree tree;
  const std::vector<PathCase> cases = {
      {"@T/l/..", "@T/p"},
      {"@T/r/..", "@T/p"},
      {"@T/l/../q", "@T/p/q"},
      {"@T/l/./..", "@T/p"},
      {"@T/l//../", "@T/p"},
      {"@T/l/../..", "@T"},
      {"@T/l", "@T/l"},            // no ".." behind it: the link stays
      {"@T/l/x/..", "@T/l"},       // the ".." belongs to x, which is no link
      {"@T/n/..", "@T/p"},         // link to a link
      {"@T/m/..", "@T"},           // the link text's own ".." counts
      {"@T/dangling/..", "/nonexistent-tamblin"},
      {"@T/loop/..", "@T"},        // loops end and fall back to the text
      {"@T/a/..", "@T"},
      {"@T/a/../x", "@T/x"},
  };
  for (const auto& c : cases) EXPECT_EQ(tree.expand(c.out), dcanon(tree.expand(c.in))) << c.in;
}

TEST(UtilsTest, DcanonLeavesTheTextBeforeStartAlone) {
  EXPECT_EQ("/./a/b", dcanon("/./a/./b", 3));
  EXPECT_EQ("/x/y", dcanon("/x//./y", 3));
  EXPECT_EQ("/x/z", dcanon("/x/y/../z", 3));
}

TEST(UtilsDeathTest, DcanonAbortsOnRelativePath) {
  EXPECT_DEATH(dcanon("a/b"), "Utils\\.c\\+\\+");
  EXPECT_DEATH(dcanon(""), "Utils\\.c\\+\\+");
}

TEST(UtilsTest, NormalizeMakesAbsoluteCanonicalPaths) {
  LinkTree tree;
  ScopedCwd cwd(tree.expand("@T/x"));
  ScopedEnv home("HOME", tree.expand("@T/p"));
  ScopedEnv unset("TAMBLIN_UNSET", std::nullopt);
  const std::vector<PathCase> cases = {
      {"a/../b", "@T/x/b"},
      {"", "@T/x"},
      {".", "@T/x"},
      {"../l/..", "@T/p"},
      {"@T/x//y/./", "@T/x/y"},
      {"/..", "/"},
      {"~", "@T/p"},
      {"~/q/..", "@T/p"},
      {"~nosuchuser-tamblin/y", "@T/x/~nosuchuser-tamblin/y"},
      {"$TAMBLIN_UNSET/y", "@T/x/$TAMBLIN_UNSET/y"},  // only "~" paths are expanded
  };
  for (const auto& c : cases) EXPECT_EQ(tree.expand(c.out), normalize(tree.expand(c.in))) << c.in;
}

TEST(UtilsTest, NormalizeOfTildeWithoutHomeStaysAbsolute) {
  TempDir dir;
  ScopedCwd cwd(dir.path());
  ScopedEnv home("HOME", std::nullopt);
  EXPECT_EQ(dir.path(), normalize("~"));
  EXPECT_EQ("/y", normalize("~/y"));
}

TEST(UtilsTest, SamePathComparesInodesNotTexts) {
  TempDir dir;
  std::string file = dir.write("f", "x");
  std::string other = dir.write("g", "x");
  ASSERT_EQ(0, symlink(file.c_str(), dir.file("link").c_str()));
  ASSERT_EQ(0, ::link(file.c_str(), dir.file("hard").c_str()));
  struct Case {
    std::string a, b;
    bool same;
  };
  const std::vector<Case> cases = {
      {file, file, true},
      {file, dir.file("link"), true},
      {dir.file("hard"), file, true},
      {dir.path(), dir.path() + "/.", true},
      {dir.path() + "/", dir.path() + "/./", true},
      {file, other, false},
      {dir.file("missing"), file, false},
      {file, dir.file("missing"), false},
      {dir.file("missing"), dir.file("missing"), true},  // equal texts need no stat
      {dir.file("missing"), dir.file("missing/"), false},
  };
  for (const auto& c : cases) EXPECT_EQ(c.same, samePath(c.a, c.b)) << c.a << " vs " << c.b;
}

TEST(UtilsTest, TrimCurrentStripsTheCurrentDirectory) {
  TempDir dir;
  std::string x = dir.mkdir("x");
  dir.mkdir("xy");
  struct Case {
    std::optional<std::string> pwd;
    std::string cwd;
    std::string path;
    std::string out;
  };
  const std::vector<Case> cases = {
      {x, x, x + "/y", "y"},
      {x, x, x + "/y/z", "y/z"},
      {x, x, "/z", "/z"},
      {x, x, x, x},                      // the directory itself is no child
      {x, x, x + "y/z", x + "y/z"},      // a sibling sharing the name's start
      {std::nullopt, x, x + "/y", "y"},  // no PWD: getcwd
      {"/elsewhere-tamblin", x, x + "/y", "y"},
      {"/", x, "/x/y", "x/y"},
      {std::nullopt, "/", "/x/y", "x/y"},
      {"y", x, "y/z", "z"},  // PWD is trusted as it is
      {"", x, "/q", "q"},    // an empty PWD gives the prefix "/"
  };
  for (const auto& c : cases) {
    ScopedCwd cwd(c.cwd);
    ScopedEnv pwd("PWD", c.pwd);
    EXPECT_EQ(c.out, trimCurrent(c.path)) << "PWD=" << c.pwd.value_or("<unset>") << " cwd="
                                          << c.cwd << " path=" << c.path;
  }
}

TEST(UtilsTest, IsShellPatternLooksForAnyPatternCharacter) {
  struct Case {
    const char* s;
    bool pattern;
  };
  const std::vector<Case> cases = {
      {nullptr, false}, {"", false},    {"a.c", false},  {"/usr/lib/x", false},
      {"*.c", true},    {"$HOME", true}, {"a?", true},    {"[ab]", true},
      {"x]", true},     {"~user", true}, {"a b", false},  {"{a,b}", false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.pattern, isShellPattern(c.s)) << (c.s ? c.s : "<null>");
    if (c.s) {
      EXPECT_EQ(c.pattern, isShellPattern(std::string(c.s))) << c.s;
    }
  }
}

TEST(UtilsTest, BaseAndDirectoryNames) {
  struct Case {
    std::string path, base, dir;
  };
  const std::vector<Case> cases = {
      {"a/b", "b", "a"},
      {"a/b/", "b", "a"},
      {"a//b/", "b", "a"},
      {"a/b/c", "c", "a/b"},
      {"/a/b", "b", "/a"},
      {"abc", "abc", "."},
      {"usr", "usr", "."},
      {"/usr", "usr", ""},  // kept on purpose: callers read "" as the root
      {"//usr", "usr", ""},
      {"/usr/", "usr", ""},
      {"/", "", "/"},
      {"//", "", "/"},
      {"", "", "."},
      {"a///", "a", "."},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.base, mypathbasename(c.path)) << c.path;
    EXPECT_EQ(c.dir, mypathdirname(c.path)) << c.path;
  }
}

TEST(UtilsTest, ExpandTildeAndLeadingVariable) {
  struct passwd* me = getpwuid(getuid());
  ASSERT_NE(nullptr, me);
  std::string user = me->pw_name;
  std::string userHome = me->pw_dir;
  struct Case {
    std::optional<std::string> home;
    std::string in, out;
  };
  const std::vector<Case> cases = {
      {"/h/me", "~", "/h/me"},
      {"/h/me", "~/x/y", "/h/me/x/y"},
      {"/h/me", "~" + user + "/x", userHome + "/x"},
      {"/h/me", "~" + user, userHome},
      {"/h/me", "~nosuchuser-tamblin/x", "~nosuchuser-tamblin/x"},
      {std::nullopt, "~/x", "/x"},
      {std::nullopt, "~", ""},
      {"/h/me", "$TAMBLIN_V/x", "/v/w/x"},
      {"/h/me", "$TAMBLIN_V", "/v/w"},
      {"/h/me", "$TAMBLIN_UNSET/x", "$TAMBLIN_UNSET/x"},
      {"/h/me", "a/$TAMBLIN_V", "a/$TAMBLIN_V"},        // only a leading one
      {"/h/me", "$TAMBLIN_V/$TAMBLIN_V", "/v/w/$TAMBLIN_V"},  // and only one
      {"$TAMBLIN_V", "~/x", "/v/w/x"},  // the variable is expanded after the tilde
      {"/h/me", "x~", "x~"},
  };
  ScopedEnv v("TAMBLIN_V", std::string("/v/w"));
  ScopedEnv unset("TAMBLIN_UNSET", std::nullopt);
  for (const auto& c : cases) {
    ScopedEnv home("HOME", c.home);
    EXPECT_EQ(c.out, mypathexpandtilde(c.in)) << c.in << " HOME=" << c.home.value_or("<unset>");
  }
}

TEST(UtilsDeathTest, OutOfMemoryExitsWithItsMessage) {
  EXPECT_EXIT(outOfMemory(), testing::ExitedWithCode(255), "^Malloc failed\n$");
}

}  // namespace
