#include "idb/IdbFileSorter.h"

#include <cerrno>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "idb/Idb.h"
#include "util/TempDir.h"

namespace {

// What opening and saving through Idb writes: the bytes the sorter must match.
std::string savedByIdb(const TempDir& dir, const std::string& in) {
  Idb db;
  EXPECT_TRUE(db.open(dir.file(in)).ok());
  EXPECT_TRUE(db.save(dir.file("idb.out")).ok());
  return dir.read("idb.out");
}

std::string sortedBySorter(const TempDir& dir, const std::string& in) {
  Outcome status = IdbFileSorter::sortFile(dir.file(in), dir.file("sorter.out"));
  EXPECT_TRUE(status.ok()) << status.message();
  return dir.read("sorter.out");
}

TEST(IdbFileSorterTest, WritesWhatOpenAndSaveWrite) {
  struct Case {
    const char* name;
    std::string in;
    std::string out;
  };
  const Case cases[] = {
      {"canonical lines, last without newline",
       "f 0644 root sys b b t\nl 0777 root sys a a t symval(x)",
       "l 0777 root sys a a t symval(x)\nf 0644 root sys b b t\n"},
      {"comments, empty and blank lines are dropped",
       "# head\nf 0644 root sys b b t\n\n   \n#f 0644 root sys a a t\nf 0644 root sys c c t\n",
       "f 0644 root sys b b t\nf 0644 root sys c c t\n"},
      {"lines the writer changes are reformatted",
       "f  0755 bin bin c c t  x  y\nfile 755 root sys b b t \nf 00644 r s a a t\n"
       "f 0755 r s d d t\n",
       "f 0644 r s a a t\nf 0755 root sys b b t\nf 0755 bin bin c c t x y\nf 0755 r s d d t\n"},
      {"quoted and escaped blanks stay inside attributes",
       "f 0755 r s b b t preop('chmod 4755 x') config(noupdate)\nf 0644 r s a a t a\\ b "
       "exitop(\"echo  two\")\nf 0644 r s c c t 'open run\n",
       "f 0644 r s a a t a\\ b exitop(\"echo  two\")\n"
       "f 0755 r s b b t preop('chmod 4755 x') config(noupdate)\nf 0644 r s c c t 'open run\n"},
      {"equal paths keep their order, reformatted or not",
       "f 0644 r s same 1 t\nf  0644 r s same 2 t\nf 0644 r s same 3 t\nf 0644 r s a 0 t\n",
       "f 0644 r s a 0 t\nf 0644 r s same 1 t\nf 0644 r s same 2 t\nf 0644 r s same 3 t\n"},
      {"paths that share more than one key, prefixes first",
       "f 0644 r s usr/share/locale/de/x 1 t\nf 0644 r s usr/share/locale/de 2 t\n"
       "f 0644 r s usr/share/locale/ 3 t\nf 0644 r s usr/share/locale/da/x 4 t\n"
       "f 0644 r s usr/share/locale/de/x 5 t\nf 0644 r s usr/share/locale/de/\xc3\xa9 6 t\n",
       "f 0644 r s usr/share/locale/ 3 t\nf 0644 r s usr/share/locale/da/x 4 t\n"
       "f 0644 r s usr/share/locale/de 2 t\nf 0644 r s usr/share/locale/de/x 1 t\n"
       "f 0644 r s usr/share/locale/de/x 5 t\nf 0644 r s usr/share/locale/de/\xc3\xa9 6 t\n"},
      {"only comments", "# nothing\n\n", ""},
  };
  for (const Case& c : cases) {
    TempDir dir;
    dir.write("in.idb", c.in);
    EXPECT_EQ(c.out, sortedBySorter(dir, "in.idb")) << c.name;
    EXPECT_EQ(c.out, savedByIdb(dir, "in.idb")) << c.name;
  }
}

// Enough lines for the radix passes and the helper thread, with paths that
// tie over several keys, duplicates, and a share of lines to reformat.
TEST(IdbFileSorterTest, LargeFileMatchesIdb) {
  std::mt19937 random(7);
  const char* const tops[] = {"usr/share/locale/", "usr/lib/", "usr/share/locale/de/LC_MESSAGES/",
                              "etc/", ""};
  std::string text;
  for (int i = 0; i < 60000; ++i) {
    std::string path = tops[random() % 5];
    for (unsigned k = 1 + random() % 12; k; --k) path += static_cast<char>('a' + random() % 3);
    bool loose = random() % 50 == 0;
    text += std::string(loose ? "f  644 " : "f 0644 ") + "root sys " + path + " src" +
            std::to_string(i) + " t" + (random() % 4 ? "" : " config(x) 'a b'") + "\n";
    if (random() % 1000 == 0) text += "# comment\n";
  }
  TempDir dir;
  dir.write("big.idb", text);
  std::string expected = savedByIdb(dir, "big.idb");
  ASSERT_GT(expected.size(), 1000000u);
  EXPECT_TRUE(sortedBySorter(dir, "big.idb") == expected);
}

TEST(IdbFileSorterTest, FailuresAreIdbsAndWriteNothing) {
  struct Case {
    const char* name;
    std::string in;  // nothing: the input does not exist
    std::string message;
  };
  const Case cases[] = {
      {"missing tag", "f 0644 root sys b b t\nf 0644 root sys a a\n",
       "Couldn't read idb '%' (Expected tag in field 7 on line 2)."},
      {"NUL byte", std::string("f 0644 r s a a t\nf 0644 r\0t s b b t\n", 33),
       "Couldn't read idb '%' (Unexpected NUL byte on line 2)."},
      {"blanks without newline", "f 0644 r s a a t\n   ",
       "Couldn't read idb '%' (Expected type in field 1 on line 2)."},
      {"missing file", "", "Couldn't open idb '%' (No such file or directory)."},
  };
  for (const Case& c : cases) {
    TempDir dir;
    std::string in = c.in.empty() ? dir.file("none.idb") : dir.write("in.idb", c.in);
    Outcome status = IdbFileSorter::sortFile(in, dir.file("out.idb"));
    std::string message = c.message;
    message.replace(message.find('%'), 1, in);
    EXPECT_EQ(message, status.message()) << c.name;
    EXPECT_EQ("<missing>", dir.read("out.idb")) << c.name;
  }
}

TEST(IdbFileSorterTest, SortsInPlaceAndReportsSaveErrors) {
  TempDir dir;
  std::string in = dir.write("in.idb", "f 0644 r s b b t\nf 0644 r s a a t\n");
  Outcome status = IdbFileSorter::sortFile(in, in);
  EXPECT_TRUE(status.ok()) << status.message();
  EXPECT_EQ("f 0644 r s a a t\nf 0644 r s b b t\n", dir.read("in.idb"));

  // A save failure, not Idb's "Couldn't open idb" for the input.
  status = IdbFileSorter::sortFile(in, dir.file("no/dir/out.idb"));
  EXPECT_EQ("No such file or directory", status.message());
  EXPECT_EQ(ENOENT, status.code());
}

}  // namespace
