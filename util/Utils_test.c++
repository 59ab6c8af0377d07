#include "util/Utils.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "util/TempDir.h"

namespace {

using Opt = std::optional<std::string>;

// Sets (or, with nullopt, unsets) an environment variable while in scope.
class ScopedEnv {
 public:
  ScopedEnv(const char* name, const Opt& value) : _name(name) {
    if (const char* old = std::getenv(name)) _old = old;
    set(value);
  }
  ~ScopedEnv() { set(_old); }

 private:
  void set(const Opt& v) { v ? setenv(_name.c_str(), v->c_str(), 1) : unsetenv(_name.c_str()); }
  std::string _name;
  Opt _old;
};

// Changes the current directory while in scope.
class ScopedCwd {
 public:
  explicit ScopedCwd(const std::string& dir) : _old(std::filesystem::current_path().string()) {
    EXPECT_EQ(0, chdir(dir.c_str())) << dir;
  }
  ~ScopedCwd() { (void)chdir(_old.c_str()); }

 private:
  std::string _old;
};

// Directories p/q and x, and links: l -> <abs>/p/q, r -> p/q, n -> l,
// m -> p/q/.., loop -> loop, a -> b -> a, dangling -> a missing path.
// "@T" in a case stands for the tree's root.
class LinkTree {
 public:
  LinkTree() {
    _dir.mkdir("p/q");
    _dir.mkdir("x");
    const std::vector<std::pair<std::string, std::string>> links = {
        {"l", _dir.file("p/q")}, {"r", "p/q"}, {"n", "l"}, {"m", "p/q/.."}, {"loop", "loop"},
        {"a", "b"}, {"b", "a"}, {"dangling", "/nonexistent-tamblin/zz"}};
    for (const auto& [name, target] : links)
      EXPECT_EQ(0, symlink(target.c_str(), _dir.file(name).c_str())) << name;
  }
  std::string operator()(std::string text) const {
    for (std::size_t at; (at = text.find("@T")) != std::string::npos;) text.replace(at, 2, root());
    return text;
  }
  const std::string& root() const { return _dir.path(); }

 private:
  TempDir _dir;
};

struct PathCase {
  std::string in, out;
};

TEST(UtilsTest, DcanonRemovesDotsSlashesAndParents) {
  const std::vector<PathCase> cases = {
      {"/", "/"}, {"//", "/"}, {"/a//b///c", "/a/b/c"}, {"/a/./b/.", "/a/b"}, {"/./.", "/"},
      {"/a/b/", "/a/b"}, {"/a/b/..", "/a"}, {"/a/b/../..", "/"}, {"/..", "/"},
      {"/../../a", "/a"}, {"/a/../../b/./c/..", "/b"},
      {"/a/.../b/..c/.d", "/a/.../b/..c/.d"},  // only "." and ".." are special
  };
  for (const auto& c : cases) EXPECT_EQ(c.out, dcanon(c.in)) << c.in;
  // The text before the start offset is taken as it is.
  EXPECT_EQ("/./a/b", dcanon("/./a/./b", 3));
  EXPECT_EQ("/x/z", dcanon("/x//y/../z", 3));
}

TEST(UtilsTest, DcanonFollowsOnlyLinksThatAParentFollows) {
  LinkTree t;
  const std::vector<PathCase> cases = {
      {"@T/l/..", "@T/p"}, {"@T/r/..", "@T/p"}, {"@T/l/../q", "@T/p/q"},
      {"@T/l/./..", "@T/p"}, {"@T/l//../", "@T/p"}, {"@T/l/../..", "@T"},
      {"@T/l", "@T/l"},       // no ".." behind it: the link stays
      {"@T/l/x/..", "@T/l"},  // the ".." belongs to x, which is no link
      {"@T/n/..", "@T/p"},    // a link to a link
      {"@T/m/..", "@T"},      // the link text's own ".." counts
      {"@T/dangling/..", "/nonexistent-tamblin"},
      {"@T/loop/..", "@T"},   // loops end, falling back to the text
      {"@T/a/../x", "@T/x"},
  };
  for (const auto& c : cases) EXPECT_EQ(t(c.out), dcanon(t(c.in))) << c.in;
}

TEST(UtilsDeathTest, DcanonAbortsOnRelativePath) {
  EXPECT_DEATH(dcanon("a/b"), "Utils\\.c\\+\\+");
  EXPECT_DEATH(dcanon(""), "Utils\\.c\\+\\+");
}

TEST(UtilsTest, NormalizeMakesAbsoluteCanonicalPaths) {
  LinkTree t;
  ScopedCwd cwd(t("@T/x"));
  ScopedEnv unset("TAMBLIN_UNSET", std::nullopt);
  struct Case {
    Opt home;
    std::string in, out;
  };
  const std::vector<Case> cases = {
      {"/h", "a/../b", "@T/x/b"}, {"/h", "", "@T/x"}, {"/h", ".", "@T/x"},
      {"/h", "../l/..", "@T/p"}, {"/h", "@T/x//y/./", "@T/x/y"}, {"/h", "/..", "/"},
      {t("@T/p"), "~", "@T/p"}, {t("@T/p"), "~/q/..", "@T/p"},
      {std::nullopt, "~", "@T/x"}, {std::nullopt, "~/y", "/y"},
      // Expansions that stay relative are taken from the current directory.
      {"/h", "~nosuchuser-tamblin/y", "@T/x/~nosuchuser-tamblin/y"},
      {"/h", "$TAMBLIN_UNSET/y", "@T/x/$TAMBLIN_UNSET/y"},
  };
  for (const auto& c : cases) {
    ScopedEnv home("HOME", c.home);
    EXPECT_EQ(t(c.out), normalize(t(c.in))) << c.in;
  }
}

TEST(UtilsTest, SamePathComparesInodesNotTexts) {
  TempDir dir;
  std::string f = dir.write("f", "x"), g = dir.write("g", "x"), missing = dir.file("missing");
  ASSERT_EQ(0, symlink(f.c_str(), dir.file("link").c_str()));
  ASSERT_EQ(0, ::link(f.c_str(), dir.file("hard").c_str()));
  struct Case {
    std::string a, b;
    bool same;
  };
  const std::vector<Case> cases = {
      {f, dir.file("link"), true}, {dir.file("hard"), f, true},
      {dir.path() + "/", dir.path() + "/./", true}, {f, g, false},
      {missing, f, false}, {f, missing, false},
      {missing, missing, true},  // equal texts need no stat
      {missing, missing + "/", false},
  };
  for (const auto& c : cases) EXPECT_EQ(c.same, samePath(c.a, c.b)) << c.a << " vs " << c.b;
}

TEST(UtilsTest, NotRegularFileMessageNamesWhatASaveMustNotReplace) {
  TempDir dir;
  const std::string f = dir.write("f", "x"), d = dir.mkdir("d");
  ASSERT_EQ(0, symlink(f.c_str(), dir.file("to-file").c_str()));
  ASSERT_EQ(0, symlink(d.c_str(), dir.file("to-dir").c_str()));
  ASSERT_EQ(0, mkfifo(dir.file("fifo").c_str(), 0600));
  const std::vector<std::pair<std::string, bool>> cases = {
      {f, false}, {dir.file("to-file"), false}, {dir.file("missing"), false},
      {d, true},  {dir.file("to-dir"), true},   {dir.file("fifo"), true},
      {"/dev/null", true},
  };
  for (const auto& [path, refused] : cases)
    EXPECT_EQ(refused ? "'" + path + "' is not a regular file.\nTry again." : "",
              notRegularFileMessage(path))
        << path;
}

TEST(UtilsTest, TrimCurrentStripsTheCurrentDirectory) {
  TempDir dir;
  std::string x = dir.mkdir("x");
  struct Case {
    Opt pwd;
    std::string cwd, path, out;
  };
  const std::vector<Case> cases = {
      {x, x, x + "/y/z", "y/z"}, {x, x, "/z", "/z"},
      {x, x, x, x},                  // the directory itself is no child of it
      {x, x, x + "y/z", x + "y/z"},  // nor is a sibling sharing its name's start
      {std::nullopt, x, x + "/y", "y"}, {"/elsewhere-tamblin", x, x + "/y", "y"},
      {"/", x, "/x/y", "x/y"}, {std::nullopt, "/", "/x/y", "x/y"},
      {"", x, "/q", "q"},  // an empty PWD gives the prefix "/"
  };
  for (const auto& c : cases) {
    ScopedCwd cwd(c.cwd);
    ScopedEnv pwd("PWD", c.pwd);
    EXPECT_EQ(c.out, trimCurrent(c.path)) << c.pwd.value_or("<unset>") << " " << c.path;
  }
}

TEST(UtilsTest, IsShellPatternLooksForAnyPatternCharacter) {
  const std::vector<std::pair<const char*, bool>> cases = {
      {nullptr, false}, {"", false}, {"a.c", false}, {"{a,b} c", false}, {"*.c", true},
      {"$HOME", true}, {"a?", true}, {"[ab", true}, {"x]", true}, {"~user", true},
  };
  for (const auto& [s, pattern] : cases) {
    EXPECT_EQ(pattern, isShellPattern(s)) << (s ? s : "<null>");
    if (s) {
      EXPECT_EQ(pattern, isShellPattern(std::string(s))) << s;
    }
  }
}

TEST(UtilsTest, BaseAndDirectoryNames) {
  struct Case {
    std::string path, base, dir;
  };
  const std::vector<Case> cases = {
      {"a/b", "b", "a"}, {"a//b/", "b", "a"}, {"a/b/c", "c", "a/b"}, {"/a/b", "b", "/a"},
      {"usr", "usr", "."}, {"a///", "a", "."}, {"", "", "."}, {"/", "", "/"}, {"//", "", "/"},
      {"/usr", "usr", ""},  // kept on purpose: callers read "" as the root
      {"//usr/", "usr", ""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.base, mypathbasename(c.path)) << c.path;
    EXPECT_EQ(c.dir, mypathdirname(c.path)) << c.path;
  }
}

TEST(UtilsTest, ExpandTildeAndLeadingVariable) {
  struct passwd* me = getpwuid(getuid());
  ASSERT_NE(nullptr, me);
  const std::string user = me->pw_name, userHome = me->pw_dir;
  ScopedEnv v("TAMBLIN_V", std::string("/v/w"));
  ScopedEnv unset("TAMBLIN_UNSET", std::nullopt);
  struct Case {
    Opt home;
    std::string in, out;
  };
  const std::vector<Case> cases = {
      {"/h", "~", "/h"}, {"/h", "~/x/y", "/h/x/y"}, {std::nullopt, "~/x", "/x"},
      {std::nullopt, "~", ""}, {"/h", "~" + user + "/x", userHome + "/x"},
      {"/h", "~" + user, userHome}, {"/h", "x~", "x~"},
      {"/h", "~nosuchuser-tamblin/x", "~nosuchuser-tamblin/x"},
      {"/h", "$TAMBLIN_V/x", "/v/w/x"}, {"/h", "$TAMBLIN_V", "/v/w"},
      {"/h", "$TAMBLIN_UNSET/x", "$TAMBLIN_UNSET/x"},
      {"/h", "a/$TAMBLIN_V", "a/$TAMBLIN_V"},                 // only a leading one
      {"/h", "$TAMBLIN_V/$TAMBLIN_V", "/v/w/$TAMBLIN_V"},     // and only one
      {"$TAMBLIN_V", "~/x", "/v/w/x"},  // the variable is expanded after the tilde
  };
  for (const auto& c : cases) {
    ScopedEnv home("HOME", c.home);
    EXPECT_EQ(c.out, mypathexpandtilde(c.in)) << c.in << " HOME=" << c.home.value_or("<unset>");
  }
}

TEST(UtilsDeathTest, OutOfMemoryExitsWithItsMessage) {
  EXPECT_EXIT(outOfMemory(), testing::ExitedWithCode(255), "^Malloc failed\n$");
}

}  // namespace

TEST(Utf8PrefixTest, NeverEndsInsideACharacter) {
  struct Case {
    std::string_view text;
    std::size_t limit;
    std::size_t expected;
  } cases[] = {
      {"abc", 5, 3},                    // shorter than the limit: whole
      {"abcd", 4, 4},                   // exactly the limit
      {"ab\xc3\xbc", 3, 2},             // would keep half of a two-byte letter
      {"ab\xc3\xbc" "c", 4, 4},         // the letter ends at the limit
      {"\xe2\x80\xa6xyz", 2, 0},        // inside a three-byte mark at the start
      {"a\xf0\x9f\x98\x80", 4, 1},      // inside a four-byte character
      {"\x80\x80\x80\x80", 2, 0},       // stray continuation bytes: nothing left
      {"abc", 0, 0},
  };
  for (const Case& c : cases)
    EXPECT_EQ(c.expected, utf8Prefix(c.text, c.limit)) << c.text << " " << c.limit;
}
