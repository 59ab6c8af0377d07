#include "idb/Idb.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "util/AtomicFile.h"
#include "util/TempDir.h"

namespace {

// What storageProblem() found, "none" when the record reads back.
std::string problem(const Outcome& status) { return status.ok() ? "none" : status.message(); }

std::vector<std::string> lines(const Idb& db) {
  std::vector<std::string> out;
  for (int i = 0; i < db.count(); ++i) out.push_back(db.line(i));
  return out;
}

std::vector<std::string> dsts(const Idb& db) {
  std::vector<std::string> out;
  for (const idb& r : db.records()) out.emplace_back(r.dstpath());
  return out;
}

Idb parsed(const std::string& text) {
  Idb db;
  Outcome status = db.readText(text);
  EXPECT_TRUE(status.ok()) << status.message();
  return db;
}

// ---- Reading

TEST(IdbReadTest, FieldsOfOneLine) {
  struct Case {
    const char* line;
    char type;
    unsigned mode;
    const char* owner;
    const char* dst;
    const char* tag;
    std::vector<std::string> attrs;
    const char* written;  // nullptr: the line itself
  };
  const Case cases[] = {
      {"f 0755 root sys usr/bin/tool build/tool tool.sw.base\n", 'f', 0755, "root",
       "usr/bin/tool", "tool.sw.base", {}, "f 0755 root sys usr/bin/tool build/tool tool.sw.base"},
      {"l 0777 root sys usr/lib/x lib/x tool.sw.base symval(x.1)", 'l', 0777, "root", "usr/lib/x",
       "tool.sw.base", {"symval(x.1)"}, nullptr},
      // Runs of blanks separate like one; the rest of the type token is ignored.
      {"file   644  bin  staff  a   b   t   x  y\n", 'f', 0644, "bin", "a", "t", {"x", "y"},
       "f 0644 bin staff a b t x y"},
      {"f 10755 root sys a b t", 'f', 0x11ED, "root", "a", "t", {}, "f 10755 root sys a b t"},
      // Single blanks, but not the written form all the same.
      {"file 0644 bin staff a b t x", 'f', 0644, "bin", "a", "t", {"x"}, "f 0644 bin staff a b t x"},
      {"f 644 bin staff a b t", 'f', 0644, "bin", "a", "t", {}, "f 0644 bin staff a b t"},
      {"f 00644 bin staff a b t", 'f', 0644, "bin", "a", "t", {}, "f 0644 bin staff a b t"},
      {"f 0644 bin staff a b t x ", 'f', 0644, "bin", "a", "t", {"x"}, "f 0644 bin staff a b t x"},
      {"f 0644 bin staff a b t  x", 'f', 0644, "bin", "a", "t", {"x"}, "f 0644 bin staff a b t x"},
      {"f +644 bin staff a b t", 'f', 0644, "bin", "a", "t", {}, "f 0644 bin staff a b t"},
      {"f -1 bin staff a b t", 'f', 0xFFFF, "bin", "a", "t", {}, "f 177777 bin staff a b t"},
      {"f 377777 bin staff a b t", 'f', 0xFFFF, "bin", "a", "t", {}, "f 177777 bin staff a b t"},
      {"f 7777777777777777777777777 bin staff a b t", 'f', 0xFFFF, "bin", "a", "t", {},
       "f 177777 bin staff a b t"},
      {"f abc root sys a b t", 'f', 0, "root", "a", "t", {}, "f 0000 root sys a b t"},
      {"f 7 root sys a b t", 'f', 7, "root", "a", "t", {}, "f 0007 root sys a b t"},
      {"f 1777777 root sys a b t", 'f', 0xFFFF, "root", "a", "t", {}, "f 177777 root sys a b t"},
      {"d 0755 root sys a b t \n", 'd', 0755, "root", "a", "t", {}, "d 0755 root sys a b t"},
      // Tabs and carriage returns are ordinary characters of a field.
      {"f 0644 ro\tot sys a b t\r", 'f', 0644, "ro\tot", "a", "t\r", {}, nullptr},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    Idb db;
    Outcome status = db.readLine(c.line);
    ASSERT_TRUE(status.ok()) << status.message();
    ASSERT_EQ(1, db.count());
    const idb& r = *db[0];
    EXPECT_EQ(c.type, r.type());
    EXPECT_EQ(c.mode, r.mode());
    EXPECT_EQ(c.owner, r.owner());
    EXPECT_EQ(c.dst, r.dstpath());
    EXPECT_EQ(c.tag, r.tag());
    EXPECT_EQ(c.attrs, r.attrs());
    std::string expected = c.written ? c.written : c.line;
    EXPECT_EQ(expected, db.line(0));
  }
}

TEST(IdbReadTest, SkippedLinesAndMessages) {
  struct Case {
    std::string line;
    const char* message;  // nullptr: skipped without a record
  };
  const Case cases[] = {
      {"# a comment f 0755 root sys a b t\n", nullptr},
      {"#\n", nullptr},
      {"\n", nullptr},
      {"    \n", nullptr},
      {"   ", "Expected type in field 1"},
      {"", "Expected type in field 1"},
      {"f\n", "Expected mode in field 2"},
      {"f 0755\n", "Expected owner in field 3"},
      {"f 0755 root   \n", "Expected group in field 4"},
      {"f 0755 root sys\n", "Expected destination path in field 5"},
      {"f 0755 root sys a\n", "Expected source path in field 6"},
      {"f 0755 root sys a b\n", "Expected tag in field 7"},
      {"f 0755 root sys a b   \n", "Expected tag in field 7"},
      {std::string("f 0755 root sys a b t\0x\n", 24), "Unexpected NUL byte"},
      {"f 0755 root sys a b t\nf 0755 root sys c d t\n", "Unexpected newline"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    Idb db;
    Outcome status = db.readLine(c.line);
    if (c.message) {
      ASSERT_FALSE(status.ok());
      EXPECT_EQ(c.message, status.message());
    } else {
      EXPECT_TRUE(status.ok());
    }
    EXPECT_EQ(0, db.count());
  }
}

TEST(IdbReadTest, FileMessagesNameTheLineAndKeepEarlierRecords) {
  struct Case {
    std::string text;
    std::string message;
    int kept;
  };
  const Case cases[] = {
      {"# only comments\n\n#\n   \n", "", 0},
      {"f 0644 root sys a b t\n\nf 0644 root sys c d\nf 0644 root sys e f t\n",
       "Couldn't read idb 'x.idb' (Expected tag in field 7 on line 3).", 1},
      {"#\nf 0644 root sys a b t\nf 0644 root sys c d t", "", 2},
      {"f 0644 root sys a b t\n  ", "Couldn't read idb 'x.idb' (Expected type in field 1 on line 2).",
       1},
      {std::string("f 0644 root sys a b t\nf 0644 ro\0t sys c d t\n", 44),
       "Couldn't read idb 'x.idb' (Unexpected NUL byte on line 2).", 1},
      {std::string(5000, 'x') + " 0644\n", "Couldn't read idb 'x.idb' (Expected owner in field 3 on line 1).",
       0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    Idb db;
    Outcome status = db.readText(c.text, "x.idb");
    EXPECT_EQ(c.message, status.message());
    EXPECT_EQ(c.kept, db.count());
  }
}

TEST(IdbReadTest, AttributeSplitting) {
  struct Case {
    const char* text;
    std::vector<std::string> attrs;
  };
  const Case cases[] = {
      {"preop('chmod 4755 x') config(noupdate)", {"preop('chmod 4755 x')", "config(noupdate)"}},
      {"a  b", {"a", "b"}},
      {"   a   ", {"a"}},
      {"a\\ b", {"a\\ b"}},
      {"x\\'y z", {"x\\'y", "z"}},
      {"exitop(\"echo a b\") c", {"exitop(\"echo a b\")", "c"}},
      {"'a \"b' c", {"'a \"b'", "c"}},
      {"\"a 'b\" c", {"\"a 'b\"", "c"}},
      {"pre('unclosed a b", {"pre('unclosed a b"}},
      {"trail\\", {"trail\\"}},
      {"'' x", {"''", "x"}},
      {"", {}},
      {"   ", {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    // Through the line reader ...
    Idb db;
    std::string line = std::string("f 0644 root sys a b t ") + c.text + "\n";
    ASSERT_TRUE(db.readLine(line).ok());
    EXPECT_EQ(c.attrs, db[0]->attrs());
    // ... and when assigned to an existing record.
    Idb other;
    other.addRecord('f', 0644, "root", "sys", "a", "b", "t", {"first"});
    other.parseAttributes(1, c.text);
    std::vector<std::string> expected{"first"};
    expected.insert(expected.end(), c.attrs.begin(), c.attrs.end());
    EXPECT_EQ(expected, other[0]->attrs());
  }
}

// ---- Round trips, sorting, saving

TEST(IdbFileTest, RoundTripIsByteStable) {
  const std::string text =
      "# header comment\n"
      "f 0755 root sys usr/bin/tool build/tool tool.sw.base\n"
      "\n"
      "l 0777 root sys usr/lib/x lib/x tool.sw.base symval(x.1)\n"
      "f  644 bin bin  etc/conf   src/conf  tool.sw.base config(noupdate)  preop('chmod 4755 x')\n"
      "c 0600 root sys dev/null dev/null tool.sw.base dev(1,3)\n"
      "f 04711 root sys usr/bin/su build/su tool.sw.base a\\ b \"q r\"";
  TempDir dir;
  std::string first = dir.write("in.idb", text);
  Idb db;
  ASSERT_TRUE(db.open(first).ok());
  EXPECT_EQ(5, db.count());
  ASSERT_TRUE(db.save(dir.file("one.idb")).ok());
  Idb again;
  ASSERT_TRUE(again.open(dir.file("one.idb")).ok());
  ASSERT_TRUE(again.save(dir.file("two.idb")).ok());
  EXPECT_EQ(dir.read("one.idb"), dir.read("two.idb"));
  EXPECT_EQ(
      "c 0600 root sys dev/null dev/null tool.sw.base dev(1,3)\n"
      "f 0644 bin bin etc/conf src/conf tool.sw.base config(noupdate) preop('chmod 4755 x')\n"
      "f 4711 root sys usr/bin/su build/su tool.sw.base a\\ b \"q r\"\n"
      "f 0755 root sys usr/bin/tool build/tool tool.sw.base\n"
      "l 0777 root sys usr/lib/x lib/x tool.sw.base symval(x.1)\n",
      dir.read("one.idb"));
  // A database with a name keeps it when saved elsewhere.
  EXPECT_EQ(first, db.name());
}

TEST(IdbFileTest, SortIsByteOrderAndStable) {
  struct Case {
    std::vector<std::string> dsts;
    std::vector<std::string> sorted;
  };
  const Case cases[] = {
      {{"b", "a"}, {"a", "b"}},
      {{"a0", "a/b", "a", "B", "_"}, {"B", "_", "a", "a/b", "a0"}},
      // Long shared prefixes, paths that end inside an eight-byte group.
      {{"usr/share/doc/pkg/zz", "usr/share/doc/pkg/z", "usr/share/doc/pkg", "usr/share/doc/pkf",
        "usr/share/doc/pkg/"},
       {"usr/share/doc/pkf", "usr/share/doc/pkg", "usr/share/doc/pkg/", "usr/share/doc/pkg/z",
        "usr/share/doc/pkg/zz"}},
      {{"\xC3\xA9", "z", "\x7F"}, {"z", "\x7F", "\xC3\xA9"}},
      // Paths of exactly one or two key lengths, equal and empty ones.
      {{"abcdefgh", "", "abcdefgh", "abcdefghijklmnop", "abcdefgh"},
       {"", "abcdefgh", "abcdefgh", "abcdefgh", "abcdefghijklmnop"}},
      {{}, {}},
  };
  for (const Case& c : cases) {
    Idb db;
    for (const std::string& d : c.dsts) db.addRecord('f', 0644, "root", "sys", d, "s", "t");
    db.sort();
    EXPECT_EQ(c.sorted, dsts(db));
  }

  // Equal destinations keep their order; checked against the standard
  // library on enough records to take the radix path, with many ties.
  std::mt19937 rng(7);
  std::vector<std::pair<std::string, std::string>> model;
  Idb db;
  const char* parts[] = {"usr/", "lib", "share/", "x", "long-directory-name/", "a", ""};
  for (int i = 0; i < 3000; ++i) {
    std::string d;
    for (int k = rng() % 6; k >= 0; --k) d += parts[rng() % 7];
    std::string src = std::to_string(i);
    model.emplace_back(d, src);
    db.addRecord('f', 0644, "root", "sys", d, src, "t");
  }
  std::stable_sort(model.begin(), model.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  db.sort();
  ASSERT_EQ(model.size(), static_cast<std::size_t>(db.count()));
  for (int i = 0; i < db.count(); ++i) {
    ASSERT_EQ(model[i].first, db[i]->dstpath()) << i;
    ASSERT_EQ(model[i].second, db[i]->srcpath()) << i;
  }
}

TEST(IdbFileTest, SaveSortsAndKeepsNameRules) {
  TempDir dir;
  Idb db;
  ASSERT_TRUE(db.readText("f 0644 root sys b b t\nf 0644 root sys a a t\n").ok());
  EXPECT_EQ("", db.name());
  EXPECT_EQ(ENOENT, db.save().code());  // nameless and no target
  ASSERT_TRUE(db.save(dir.file("new.idb")).ok());
  EXPECT_EQ(dir.file("new.idb"), db.name());  // a nameless database takes the target
  EXPECT_EQ((std::vector<std::string>{"a", "b"}), dsts(db));
  EXPECT_EQ("f 0644 root sys a a t\nf 0644 root sys b b t\n", dir.read("new.idb"));

  // Failure: the errno comes back and nothing changes on disk or in memory.
  db.addRecord('f', 0644, "root", "sys", "0", "0", "t");
  EXPECT_EQ(ENOENT, db.save(dir.file("no/such/dir/x.idb")).code());
  EXPECT_EQ(dir.file("new.idb"), db.name());
  EXPECT_EQ((std::vector<std::string>{"a", "b", "0"}), dsts(db));  // not sorted after all
  const std::string fifo = dir.file("fifo");
  ASSERT_EQ(0, mkfifo(fifo.c_str(), 0644));
  EXPECT_EQ(AtomicFile::kNotRegular, db.save(fifo).code());
  EXPECT_EQ((std::vector<std::string>{"a", "b", "0"}), dsts(db));
  // A writable file in a directory that is not is written in place.
  dir.mkdir("ro");
  std::string kept = dir.write("ro/kept.idb", "old\n");
  chmod(dir.file("ro").c_str(), 0555);
  EXPECT_TRUE(db.save(kept).ok());
  EXPECT_EQ("f 0644 root sys 0 0 t\nf 0644 root sys a a t\nf 0644 root sys b b t\n",
            dir.read("ro/kept.idb"));
  chmod(dir.file("ro").c_str(), 0755);

  // Saving through a symbolic link keeps the link and keeps the mode bits.
  std::string real = dir.write("real.idb", "");
  chmod(real.c_str(), 0640);
  ASSERT_EQ(0, symlink("real.idb", dir.file("link.idb").c_str()));
  ASSERT_TRUE(db.save(dir.file("link.idb")).ok());
  struct stat st;
  ASSERT_EQ(0, lstat(dir.file("link.idb").c_str(), &st));
  EXPECT_TRUE(S_ISLNK(st.st_mode));
  ASSERT_EQ(0, stat(real.c_str(), &st));
  EXPECT_EQ(0640u, st.st_mode & 07777);
  EXPECT_EQ("f 0644 root sys 0 0 t\nf 0644 root sys a a t\nf 0644 root sys b b t\n",
            dir.read("real.idb"));
}

TEST(IdbFileTest, OpenAndAppendMessages) {
  TempDir dir;
  std::string good = dir.write("good.idb", "f 0644 root sys a a t\n");
  std::string bad = dir.write("bad.idb", "f 0644 root sys b b t\nf 0644 root sys\n");
  std::string missing = dir.file("missing.idb");

  Idb db;
  ASSERT_TRUE(db.open(good).ok());
  EXPECT_EQ("Couldn't open idb '" + missing + "' (No such file or directory).",
            db.open(missing).message());
  EXPECT_EQ(good, db.name());  // unchanged
  EXPECT_EQ(1, db.count());
  EXPECT_EQ("Couldn't open idb '" + dir.path() + "' (Is a directory).",
            db.open(dir.path()).message());
  EXPECT_EQ(1, db.count());
  EXPECT_EQ("Couldn't open idb '" + missing + "'.\n", db.append(missing).message());

  EXPECT_EQ("Couldn't read idb '" + bad + "' (Expected destination path in field 5 on line 2).",
            db.append(bad).message());
  EXPECT_EQ((std::vector<std::string>{"a", "b"}), dsts(db));
  EXPECT_EQ(good, db.name());  // append keeps the name

  EXPECT_FALSE(db.open(bad).ok());
  EXPECT_EQ(bad, db.name());
  EXPECT_EQ((std::vector<std::string>{"b"}), dsts(db));
}

TEST(IdbFileTest, LargeFilesMatchLineByLineReading) {
  // Big enough for the reader, the sort and the writer to share work with a
  // helper thread; the result must not differ from one line at a time.
  std::mt19937 rng(3);
  std::string text;
  std::vector<std::string> expected;  // written form, in file order
  const int kLines = 64000;
  for (int i = 0; i < kLines; ++i) {
    std::string dst = "usr/share/tamblin/dir" + std::to_string(rng() % 97) + "/file" +
                      std::to_string(rng() % 5000);  // duplicates on purpose
    std::string src = "src/" + std::to_string(i);
    if (i % 1000 == 0) text += "# comment " + std::to_string(i) + "\n\n";
    if (i % 3 == 0) {
      text += "f   644 root sys " + dst + " " + src + " t.sw.base  config(noupdate)\n";
      expected.push_back("f 0644 root sys " + dst + " " + src + " t.sw.base config(noupdate)");
    } else {
      text += "l 0777 bin bin " + dst + " " + src + " t.sw.lib symval(x) 'a b'\n";
      expected.push_back("l 0777 bin bin " + dst + " " + src + " t.sw.lib symval(x) 'a b'");
    }
  }
  ASSERT_GT(text.size(), 4u << 20);

  Idb db;
  ASSERT_TRUE(db.readText(text).ok());
  ASSERT_EQ(expected, lines(db));
  Idb oneByOne;
  std::size_t at = 0;
  while (at < text.size()) {
    std::size_t nl = text.find('\n', at);
    ASSERT_TRUE(oneByOne.readLine(text.substr(at, nl + 1 - at)).ok());
    at = nl + 1;
  }
  ASSERT_EQ(expected, lines(oneByOne));

  std::stable_sort(expected.begin(), expected.end(), [](const std::string& a, const std::string& b) {
    auto dstOf = [](const std::string& l) {
      std::size_t p = 0;
      for (int f = 0; f < 4; ++f) p = l.find(' ', p) + 1;
      return l.substr(p, l.find(' ', p) - p);
    };
    return dstOf(a) < dstOf(b);
  });
  TempDir dir;
  ASSERT_TRUE(db.save(dir.file("big.idb")).ok());
  std::string joined;
  for (const std::string& l : expected) joined += l + "\n";
  EXPECT_EQ(joined, dir.read("big.idb"));

  // Bad lines in either half: the message names the right line, and the
  // records before it are kept.
  std::size_t firstHalf = text.find("\nl 0777", text.size() / 4) + 1;
  std::size_t secondHalf = text.find("\nl 0777", text.size() * 3 / 4) + 1;
  for (std::size_t cut : {firstHalf, secondHalf}) {
    Idb before;
    ASSERT_TRUE(before.readText(text.substr(0, cut)).ok());
    for (const std::string& bad : {std::string("f 0644 root\n"), std::string("f 0644 r\0t sys a b t\n", 22)}) {
      std::string broken = text.substr(0, cut) + bad + text.substr(cut);
      int line = 1 + static_cast<int>(std::count(broken.begin(), broken.begin() + cut, '\n'));
      Idb partial;
      Outcome status = partial.readText(broken, "big.idb");
      std::string what = bad.size() > 12 ? "Unexpected NUL byte" : "Expected group in field 4";
      EXPECT_EQ("Couldn't read idb 'big.idb' (" + what + " on line " + std::to_string(line) + ").",
                status.message());
      EXPECT_EQ(lines(before), lines(partial));
    }
  }
}

TEST(IdbFileTest, ReadsFromPipes) {
  TempDir dir;
  std::string fifo = dir.file("pipe.idb");
  ASSERT_EQ(0, mkfifo(fifo.c_str(), 0600));
  std::string text;
  for (int i = 0; i < 3000; ++i) text += "f 0644 root sys d" + std::to_string(i) + " s t\n";
  std::thread writer([&]() {
    std::FILE* f = std::fopen(fifo.c_str(), "w");
    if (!f) return;
    std::fwrite(text.data(), 1, text.size(), f);
    std::fclose(f);
  });
  Idb db;
  Outcome status = db.open(fifo);
  writer.join();
  EXPECT_TRUE(status.ok()) << status.message();
  ASSERT_EQ(3000, db.count());
  EXPECT_EQ("f 0644 root sys d2999 s t", db.line(2999));
}

// ---- Editing

TEST(IdbEditTest, DeleteAttributesKeepsDerivedOnesInOrder) {
  struct Case {
    std::vector<std::string> attrs;
    std::vector<std::string> kept;
  };
  const Case cases[] = {
      {{"symval(x.1)", "config(noupdate)"}, {"symval(x.1)"}},
      {{"config(noupdate)", "symval(x.1)", "mach(CPU=R4000)", "dev(1,3)"}, {"symval(x.1)", "dev(1,3)"}},
      {{"config(noupdate)", "nostrip"}, {}},
      {{"xdev(2)"}, {"xdev(2)"}},  // a substring test, as the format has it
      {{}, {}},
  };
  for (const Case& c : cases) {
    Idb db;
    db.addRecord('l', 0777, "root", "sys", "a", "a", "t", c.attrs);
    db.deleteAttributes(1);
    EXPECT_EQ(c.kept, db[0]->attrs());
    EXPECT_EQ(static_cast<int>(c.kept.size()), db[0]->nattrs());
  }
}

TEST(IdbEditTest, ItemNumbering) {
  Idb db = parsed("f 0644 root sys a a t\nf 0644 root sys b b t\nf 0644 root sys c c t\n");
  EXPECT_EQ(nullptr, db[-1]);
  EXPECT_EQ(nullptr, db[3]);
  db.addAttribute(2, "one");  // one-based: record b
  db.addAttribute(0, "none");
  db.addAttribute(4, "none");
  EXPECT_EQ(1, db[1]->nattrs());
  EXPECT_EQ(0, db[0]->nattrs() + db[2]->nattrs());
  db.setOwner(1, "bin");  // zero-based: record b
  EXPECT_EQ("bin", db[1]->owner());
  db.remove(1);  // one-based: record a
  EXPECT_EQ((std::vector<std::string>{"b", "c"}), dsts(db));
  db.remove(0);
  db.remove(3);
  EXPECT_EQ(2, db.count());
  db.removeItems({2, 1, 2});
  EXPECT_EQ(0, db.count());
}

TEST(IdbEditTest, CopiesAreIndependent) {
  Idb db = parsed("f 0644 root sys a a t x\nf 0644 root sys b b t symval(q) y\n");
  db.setName("main.idb");
  db.setSourceRoot("/src");
  db.addAttribute(1, "grown");  // leaves spare room in record a's array
  Idb undo;
  undo = db;
  EXPECT_EQ("main.idb", undo.name());
  EXPECT_EQ("", undo.sourceRoot());
  std::vector<std::string> before = lines(undo);

  // Both sides add into what was one shared attribute array.
  db.addAttribute(1, "mine");
  undo.addAttribute(1, "theirs");
  db.setDstpath(1, "changed");
  db.setMode(0, 0700);
  db.deleteAttributes(2);
  db.addRecord('d', 0755, "root", "sys", "new", "new", "t");
  EXPECT_EQ("f 0644 root sys a a t x grown theirs", undo.line(0));
  EXPECT_EQ("f 0700 root sys a a t x grown mine", db.line(0));
  EXPECT_EQ(before[1], undo.line(1));
  EXPECT_EQ("f 0644 root sys changed b t symval(q)", db.line(1));
  EXPECT_EQ(2, undo.count());

  // The copy outlives the original's storage.
  db.clear();
  EXPECT_EQ("", db.name());
  EXPECT_EQ(0, db.count());
  EXPECT_EQ(before[1], undo.line(1));
  Idb third(undo);
  undo.clear();
  EXPECT_EQ("f 0644 root sys a a t x grown theirs", third.line(0));
}

TEST(IdbEditTest, EveryEditIsWrittenNotTheLineItWasReadFrom) {
  // A record read from a line the writer would produce is written by
  // copying that line; an edit that did not drop it would be lost on save.
  const std::string original = "f 0644 root sys dst src t.i.s x";
  struct Case {
    const char* what;
    std::function<void(Idb&)> edit;
    const char* expected;
  } cases[] = {
      {"type", [](Idb& db) { db.setType(0, 'd'); }, "d 0644 root sys dst src t.i.s x"},
      {"mode", [](Idb& db) { db.setMode(0, 0755); }, "f 0755 root sys dst src t.i.s x"},
      {"owner", [](Idb& db) { db.setOwner(0, "bin"); }, "f 0644 bin sys dst src t.i.s x"},
      {"group", [](Idb& db) { db.setGroup(0, "adm"); }, "f 0644 root adm dst src t.i.s x"},
      {"dstpath", [](Idb& db) { db.setDstpath(0, "d2"); }, "f 0644 root sys d2 src t.i.s x"},
      {"srcpath", [](Idb& db) { db.setSrcpath(0, "s2"); }, "f 0644 root sys dst s2 t.i.s x"},
      {"tag", [](Idb& db) { db.setTag(0, "p.i.t"); }, "f 0644 root sys dst src p.i.t x"},
      {"addAttribute", [](Idb& db) { db.addAttribute(1, "y"); }, "f 0644 root sys dst src t.i.s x y"},
      {"parseAttributes", [](Idb& db) { db.parseAttributes(1, "y z"); },
       "f 0644 root sys dst src t.i.s x y z"},
      {"deleteAttributes", [](Idb& db) { db.deleteAttributes(1); }, "f 0644 root sys dst src t.i.s"},
  };
  for (const Case& c : cases) {
    Idb db = parsed(original + "\n");
    ASSERT_EQ(original, db.line(0));
    c.edit(db);
    EXPECT_EQ(c.expected, db.line(0)) << c.what;
    std::string all;
    db.write(all, 0);
    EXPECT_EQ(c.expected, all) << c.what;
  }
}

TEST(IdbEditTest, FindFollowsEveryChange) {
  // Random edits checked against a linear search for the first match.
  std::mt19937 rng(11);
  Idb db;
  auto linear = [&db](const std::string& d) -> int {
    for (int i = 0; i < db.count(); ++i)
      if (db[i]->dstpath() == d) return i;
    return -1;
  };
  auto name = [&rng]() { return "p" + std::to_string(rng() % 40); };
  for (int step = 0; step < 4000; ++step) {
    switch (rng() % 7) {
      case 0:
      case 1: db.addRecord('f', 0644, "root", "sys", name(), "s", "t"); break;
      case 2: (void)db.readLine("f 0644 root sys " + name() + " s t\n"); break;
      case 3: if (db.count()) db.setDstpath(rng() % db.count(), name()); break;
      case 4: if (db.count() > 30) db.remove(1 + rng() % db.count()); break;
      case 5: if (rng() % 10 == 0) db.sort(); break;
      case 6: if (rng() % 20 == 0) { Idb copy = db; db = copy; } break;
    }
    std::string probe = name();
    ASSERT_EQ(linear(probe), db.findIndex(probe)) << "step " << step << " " << probe;
  }
  EXPECT_EQ(nullptr, db.find(static_cast<const char*>(nullptr)));
}

// ---- Adding files from the file system

TEST(IdbAddTest, RealFiles) {
  TempDir dir;
  std::string root = dir.mkdir("root");
  std::string file = dir.write("root/bin/tool", "#!/bin/sh\n");
  chmod(file.c_str(), 04755);
  ASSERT_EQ(0, symlink("tool.1", dir.file("root/bin/link").c_str()));
  std::string longTarget(300, 'l');
  ASSERT_EQ(0, symlink(longTarget.c_str(), dir.file("root/bin/longlink").c_str()));
  ASSERT_EQ(0, mkfifo(dir.file("root/fifo").c_str(), 0620));
  chmod(dir.file("root/fifo").c_str(), 0620);  // whatever the umask
  bool root_user = geteuid() == 0;
  if (root_user) {
    ASSERT_EQ(0, mknod(dir.file("root/dev").c_str(), S_IFCHR | 0600, makedev(4, 70000)));
  }

  struct Case {
    std::string path;
    std::string expected;
  };
  std::vector<Case> cases = {
      {file, " 4755 {o} {g} bin/tool bin/tool tag"},
      {dir.file("root/bin"), " 0755 {o} {g} bin bin tag"},
      {dir.file("root/bin/link"), " 0777 {o} {g} bin/link bin/link tag symval(tool.1)"},
      {dir.file("root/bin/longlink"),
       " 0777 {o} {g} bin/longlink bin/longlink tag symval(" + longTarget + ")"},
      {dir.file("root/fifo"), " 0620 {o} {g} fifo fifo tag"},
  };
  const char* types = "fdllp";
  if (root_user) {
    cases.push_back({dir.file("root/dev"), " 0600 {o} {g} dev dev tag dev(4,70000)"});
  }

  Idb db;
  for (std::size_t i = 0; i < cases.size(); ++i) {
    SCOPED_TRACE(cases[i].path);
    chmod(dir.file("root/bin").c_str(), 0755);
    ASSERT_TRUE(db.add(cases[i].path, "tag", root));
    struct stat st;
    lstat(cases[i].path.c_str(), &st);
    std::string expected = cases[i].expected;
    expected.replace(expected.find("{o}"), 3, std::string(db[i]->owner()));
    expected.replace(expected.find("{g}"), 3, std::string(db[i]->group()));
    char t = i < 5 ? types[i] : 'c';
    EXPECT_EQ(std::string(1, t) + expected, db.line(static_cast<int>(i)));
    EXPECT_EQ(t, type(st));
  }
  EXPECT_EQ(root_user ? "root" : db[0]->owner(), db[0]->owner());

  // Stripping attributes keeps the link target.
  db.addAttribute(3, "config(noupdate)");
  db.deleteAttributes(3);
  EXPECT_EQ((std::vector<std::string>{"symval(tool.1)"}), db[2]->attrs());

  // A root of "/" has no separator to skip; a path outside the root loses
  // the root's length all the same.
  EXPECT_TRUE(db.add(file, "t", "/"));
  EXPECT_EQ(file.substr(1), db[db.count() - 1]->dstpath());
  EXPECT_TRUE(db.add(file, "t", "/nowhere"));
  EXPECT_EQ(file.substr(8), db[db.count() - 1]->srcpath());

  int before = db.count();
  testing::internal::CaptureStderr();
  EXPECT_FALSE(db.add(dir.file("root/none"), "t", root));
  EXPECT_EQ(dir.file("root/none") + " does not exist.\n", testing::internal::GetCapturedStderr());
  EXPECT_EQ(before, db.count());
}

TEST(IdbEditTest, StorageProblemsOfRecords) {
  Idb db;
  // Read from text: a tab is kept inside a field, but other readers split
  // at it.
  ASSERT_TRUE(db.readText("f 0644 root sys a\tb ab t\nf 0644 root sys ok ok t 'x y' a\\ b\n").ok());
  const struct {
    const char* fields[5];  // owner, group, dstpath, srcpath, tag
    std::vector<std::string> attrs;
    const char* problem;  // null: reads back
  } cases[] = {
      {{"root", "sys", "a", "a", "t"}, {"config(noupdate)", "'a b'"}, nullptr},
      {{"root", "sys", "a b", "a", "t"}, {}, "the destination path holds a blank"},
      {{"root", "sys", "a", "a\nb", "t"}, {}, "the source path holds a newline"},
      {{"r\too", "sys", "a", "a", "t"}, {}, "the owner holds a tab"},
      {{"root", "sys", "a", "a", ""}, {}, "the tag is empty"},
      {{"root", "sys", "a", "a", "t"}, {"two words"}, "the attributes do not read back the same"},
      {{"root", "sys", "a", "a", "t"}, {""}, "the attributes do not read back the same"},
  };
  EXPECT_EQ("the destination path holds a tab", problem(db.storageProblem(0)));
  EXPECT_TRUE(db.storageProblem(1).ok());
  for (const auto& c : cases) {
    int i = db.addRecord('f', 0644, c.fields[0], c.fields[1], c.fields[2], c.fields[3],
                         c.fields[4], c.attrs);
    EXPECT_EQ(c.problem ? c.problem : "none", problem(db.storageProblem(i)))
        << db.line(i);
  }
  EXPECT_EQ("", Idb::relativePath("/r", "/r"));
  EXPECT_EQ("a/b", Idb::relativePath("/r/a/b", "/r"));
  EXPECT_EQ("r/a", Idb::relativePath("/r/a", "/"));
}

}  // namespace
