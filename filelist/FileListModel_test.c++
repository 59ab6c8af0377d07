#include "filelist/FileListModel.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "filelist/AddFilesPartner.h"
#include "filelist/AttrsPartner.h"
#include "filelist/BuildPartner.h"
#include "filelist/FileListDisplay.h"
#include "filelist/FileNamePrompt.h"
#include "filelist/LineMatcher.h"
#include "filelist/PermsPartner.h"
#include "filelist/SpecGraphPartner.h"
#include "filelist/TagsPartner.h"
#include "idb/StringSet.h"
#include "util/RecordingReporter.h"
#include "util/TempDir.h"

namespace {

using Lines = std::vector<std::string>;
using Positions = std::vector<int>;

// Every partner writes its calls into one log, so tests see their order.
struct CallLog {
  Lines calls;
};

class FakeAdd : public AddFilesPartner {
 public:
  explicit FakeAdd(CallLog& log) : _log(log) {}
  void newSourceRootDirectory(const std::string& r) override { _log.calls.push_back("add.root " + r); }
  void unmark(const std::string& s) override { _log.calls.push_back("add.unmark " + s); }
  void refresh() override { _log.calls.push_back("add.refresh"); }
  void setCurrent(const std::string& p) override { _log.calls.push_back("add.current " + p); }

 private:
  CallLog& _log;
};

class FakeTags : public TagsPartner {
 public:
  explicit FakeTags(CallLog& log) : _log(log) {}
  void refresh() override { _log.calls.push_back("tags.refresh"); }
  std::string getCurrent() override { return current; }
  void setCurrent(const std::string& t) override { _log.calls.push_back("tags.current " + t); }
  std::string current = "new.sw.tag";

 private:
  CallLog& _log;
};

class FakePerms : public PermsPartner {
 public:
  explicit FakePerms(CallLog& log) : _log(log) {}
  void setSourceRoot(const std::string& r) override { _log.calls.push_back("perms.root " + r); }
  void setDestRoot(const std::string& r) override { _log.calls.push_back("perms.dest " + r); }
  void setCurrent(const std::string& src, const std::string& dst, unsigned long mode,
                  const std::string& owner, const std::string& group) override {
    char m[16];
    std::snprintf(m, sizeof m, "%04lo", mode);
    _log.calls.push_back("perms.current " + src + " " + dst + " " + m + " " + owner + " " + group);
  }

 private:
  CallLog& _log;
};

class FakeAttrs : public AttrsPartner {
 public:
  explicit FakeAttrs(CallLog& log) : _log(log) {}
  void setCurrent(const std::vector<std::string>& attrs) override {
    std::string s = "attrs.current";
    for (const std::string& a : attrs) s += " " + a;
    _log.calls.push_back(s);
  }

 private:
  CallLog& _log;
};

class FakeBuild : public BuildPartner {
 public:
  explicit FakeBuild(CallLog& log) : _log(log) {}
  void setSourceRoot(const std::string& r) override { _log.calls.push_back("build.root " + r); }
  void setDestRoot(const std::string& r) override { _log.calls.push_back("build.dest " + r); }
  std::string getDistDir() override { return distDir; }
  std::string distDir = "/usr/dist";

 private:
  CallLog& _log;
};

// A graph of products by name; a patch subsystem's tag is derived from the
// source tag the way the graph names it.
class FakeSpec : public SpecGraphPartner {
 public:
  explicit FakeSpec(CallLog& log) : _log(log) {}
  std::string getProductName() override { return products.empty() ? "" : products.front(); }
  std::string createPatchSubsystem(const std::string& patch, const std::string& tag) override {
    _log.calls.push_back("spec.patch " + patch + " " + tag);
    return patch + ".patched." + tag.substr(tag.rfind('.') + 1);
  }
  void deleteProduct(const std::string& name) override {
    _log.calls.push_back("spec.delete " + name);
    if (!stubborn) products.erase(products.begin());
  }
  Lines products;
  bool stubborn = false;

 private:
  CallLog& _log;
};

class FakePrompt : public FileNamePrompt {
 public:
  explicit FakePrompt(CallLog& log) : _log(log) {}
  bool askFileName(const std::string& title, const std::string& filter, const std::string& proposed,
                   std::string* chosen) override {
    _log.calls.push_back("prompt " + title + "|" + filter + "|" + proposed);
    if (answer) *chosen = *answer;
    return answer.has_value();
  }
  std::optional<std::string> answer;

 private:
  CallLog& _log;
};

class FakeDisplay : public FileListDisplay {
 public:
  explicit FakeDisplay(CallLog& log) : _log(log) {}
  void linesChanged() override { _log.calls.push_back("display.lines"); }
  void selectionChanged() override { _log.calls.push_back("display.selection"); }
  void showLastLine() override { _log.calls.push_back("display.last"); }
  void fileNameChanged(const std::string& label) override { _log.calls.push_back("display.name " + label); }

 private:
  CallLog& _log;
};

// Sets or unsets an environment variable for the life of the object.
class ScopedEnv {
 public:
  ScopedEnv(const char* name, const char* value) : _name(name) {
    if (const char* old = std::getenv(name)) _old = old;
    if (value)
      setenv(name, value, 1);
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

const char* const kThree =
    "f 0755 root sys usr/bin/tool build/tool tool.sw.base\n"
    "d 0755 bin bin usr/lib/tool lib tool.sw.lib config(noupdate)\n"
    "l 0777 root sys usr/lib/x lib/x tool.sw.lib symval(x.1) preop('a b')\n";

class FileListModelTest : public testing::Test {
 protected:
  FileListModelTest() {
    model.setAddFilesPartner(&add);
    model.setTagsPartner(&tags);
    model.setPermsPartner(&perms);
    model.setAttrsPartner(&attrs);
    model.setBuildPartner(&build);
    model.setSpecGraphPartner(&spec);
    model.setFileNamePrompt(&prompt);
  }

  // Opens text as the idb "t.idb" and forgets the events so far.
  void openText(const std::string& text, const std::string& name = "t.idb") {
    ASSERT_TRUE(model.open(dir.write(name, text)).ok()) << testing::PrintToString(rep.texts("log"));
    rep.clear();
    log.calls.clear();
  }

  Lines lines() {
    Lines out;
    for (int p = 1; p <= model.lineCount(); p++) out.emplace_back(model.line(p));
    return out;
  }

  // The records as idb lines, whatever view is showing.
  Lines records() {
    int view = model.view();
    model.setView(FileListModel::kBuildView);
    model.refresh();
    Lines out = lines();
    model.setView(view);
    model.refresh();
    return out;
  }

  // Source files under src/, each with some content.
  std::string makeSources(const Lines& rels) {
    for (const std::string& r : rels) dir.write("src/" + r, "x");
    return dir.file("src");
  }

  TempDir dir;
  RecordingReporter rep;
  CallLog log;
  FakeAdd add{log};
  FakeTags tags{log};
  FakePerms perms{log};
  FakeAttrs attrs{log};
  FakeBuild build{log};
  FakeSpec spec{log};
  FakePrompt prompt{log};
  FileListModel model{rep};
};

TEST_F(FileListModelTest, LinesOfEachView) {
  openText(kThree);
  const struct {
    int view;
    Lines expected;
  } cases[] = {
      {FileListModel::kTagView, {"tool.sw.base build/tool", "tool.sw.lib lib", "tool.sw.lib lib/x"}},
      {FileListModel::kPermsView,
       {"f 0755 root sys usr/bin/tool", "d 0755 bin bin usr/lib/tool", "l 0777 root sys usr/lib/x"}},
      {FileListModel::kAttributesView,
       {"usr/bin/tool", "usr/lib/tool config(noupdate)", "usr/lib/x symval(x.1) preop('a b')"}},
      {FileListModel::kBuildView,
       {"f 0755 root sys usr/bin/tool build/tool tool.sw.base",
        "d 0755 bin bin usr/lib/tool lib tool.sw.lib config(noupdate)",
        "l 0777 root sys usr/lib/x lib/x tool.sw.lib symval(x.1) preop('a b')"}},
  };
  for (const auto& c : cases) {
    model.setView(c.view);
    model.refresh();
    EXPECT_EQ(lines(), c.expected) << "view " << c.view;
  }

  // The hierarchy view and an unknown view leave the lines as they were.
  const Lines shown = lines();
  model.setView(FileListModel::kHierarchyView);
  model.refresh();
  EXPECT_EQ(lines(), shown);
  model.setView(9);
  testing::internal::CaptureStderr();
  model.refresh();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "FileList::refresh\tUnrecognized view: 9\n");
  EXPECT_EQ(lines(), shown);

  model.setView(FileListModel::kTagView);
  openText("# nothing here\n\n");
  EXPECT_EQ(model.lineCount(), 0);
}

TEST_F(FileListModelTest, SelectionByExpressionFollowsTheView) {
  openText(kThree);
  const struct {
    int view;
    const char* expr;
    Positions selected;
  } cases[] = {
      {FileListModel::kTagView, "lib", {2, 3}},
      {FileListModel::kTagView, ".*", {1, 2, 3}},
      {FileListModel::kTagView, "^$", {}},
      {FileListModel::kTagView, "[0-9]", {}},
      {FileListModel::kTagView, "tool$", {1}},
      {FileListModel::kPermsView, "[0-9]", {1, 2, 3}},
      {FileListModel::kPermsView, "^d ", {2}},
      {FileListModel::kPermsView, "root", {1, 3}},
      {FileListModel::kAttributesView, "tool$", {1}},
      {FileListModel::kAttributesView, "symval", {3}},
      {FileListModel::kBuildView, "tool\\.sw\\.base", {1}},
      {FileListModel::kBuildView, "'a b'", {3}},
  };
  for (const auto& c : cases) {
    model.setView(c.view);
    model.refresh();
    EXPECT_TRUE(model.selectMatching(c.expr));
    EXPECT_EQ(model.selectedPositions(), c.selected) << "view " << c.view << " expr " << c.expr;
    EXPECT_EQ(model.totalSelected(), static_cast<int>(c.selected.size()));
  }

  // An expression that does not compile rings the bell and keeps the selection.
  model.setSelectedPositions({1, 3});
  rep.clear();
  EXPECT_FALSE(model.selectMatching("["));
  EXPECT_EQ(model.selectedPositions(), (Positions{1, 3}));
  EXPECT_EQ(rep.events(), (std::vector<RecordingReporter::Event>{{"bell", ""}}));
}

// A long list is matched in parts at once; the selection must be what
// matching each line in turn gives, at the seams as well.
TEST_F(FileListModelTest, SelectionOfALongListMatchesLineByLine) {
  const char* tags[] = {"t.sw.base", "t.sw.lib", "t.man.pages"};
  std::string text;
  const int total = 50001;
  for (int i = 0; i < total; i++)
    text += "f 0644 root sys usr/f" + std::to_string(i) + " src/f" + std::to_string(i) + " " +
            tags[i % 3] + "\n";
  openText(text);
  model.setView(FileListModel::kTagView);
  model.refresh();
  for (const char* expr : {"^t.sw.(base|lib) ", "f2500[01]$", "7$", ".*", "^$", "x"}) {
    ASSERT_TRUE(model.selectMatching(expr));
    LineMatcher matcher(expr);
    Positions expected;
    for (int p = 1; p <= model.lineCount(); p++)
      if (matcher.matches(model.line(p))) expected.push_back(p);
    EXPECT_EQ(model.selectedPositions(), expected) << expr;
    EXPECT_EQ(model.totalSelected(), static_cast<int>(expected.size())) << expr;
  }
  EXPECT_EQ(model.totalSelected(), 0);  // "x" is in no line
}

TEST_F(FileListModelTest, SelectTagAndCounts) {
  openText(kThree);
  model.setView(FileListModel::kTagView);
  model.refresh();
  model.selectTag("tool.sw.lib");
  EXPECT_EQ(model.selectedPositions(), (Positions{2, 3}));
  EXPECT_EQ(model.totalSelected(), 2);
  EXPECT_EQ(model.totalDirsSelected(), 1);
  model.selectTag("tool.sw");  // whole tags only
  EXPECT_EQ(model.totalSelected(), 0);
  EXPECT_EQ(model.totalDirsSelected(), 0);
  model.setSelectedPositions({0, 2, 2, 4, -1});
  EXPECT_EQ(model.selectedPositions(), (Positions{2}));
}

TEST_F(FileListModelTest, FailedOpenLeavesTheIdbUntouched) {
  openText(kThree, "good.idb");
  const Lines before = records();
  const std::string dirPath = dir.mkdir("dir.idb");
  const std::string missing = dir.file("missing.idb");
  const std::string bad = dir.write("bad.idb", "f 0644 root sys a a t\nf 0644 root sys b b\n");
  // Good lines for well over a megabyte, the bad one beyond the first slice
  // the open checks before it lets the old idb go; and a NUL in the last line.
  std::string many;
  for (int i = 0; i < 20000; i++)
    many += "f 0644 root sys usr/share/doc/file" + std::to_string(i) + " src/file t.sw.base\n";
  const std::string lateBad = dir.write("late.idb", many + "f 0644 root sys z z\n");
  const std::string lateNul = dir.write("nul.idb", many + std::string("f 0644 root\0 sys z z t\n", 24));
  const struct {
    std::string file;
    std::vector<RecordingReporter::Event> events;
  } cases[] = {
      {dirPath, {{"warning", "'" + dirPath + "' is not a regular file.\nTry again."}}},
      {missing,
       {{"log", "Couldn't open idb '" + missing + "' (No such file or directory)."}, {"show", ""}}},
      {bad,
       {{"log", "Couldn't read idb '" + bad + "' (Expected tag in field 7 on line 2)."},
        {"show", ""}}},
      {lateBad,
       {{"log", "Couldn't read idb '" + lateBad + "' (Expected tag in field 7 on line 20001)."},
        {"show", ""}}},
      {lateNul,
       {{"log", "Couldn't read idb '" + lateNul + "' (Unexpected NUL byte on line 20001)."},
        {"show", ""}}},
  };
  for (const auto& c : cases) {
    rep.clear();
    Outcome opened = model.open(c.file);
    EXPECT_FALSE(opened.ok()) << c.file;
    EXPECT_EQ(rep.events(), c.events);
    EXPECT_EQ(opened.message(), c.events.front().text);  // what the user was shown
    EXPECT_EQ(records(), before) << c.file;
    EXPECT_EQ(model.fileNameLabel(), "Idb File:  " + dir.file("good.idb"));
    EXPECT_FALSE(model.modified());
    model.undo();  // the undo copy was made equal to the idb again
    EXPECT_EQ(records(), before) << c.file;
  }
}

TEST_F(FileListModelTest, OpenTellsThePanelsAndUndoChangesNothing) {
  model.setView(FileListModel::kTagView);
  const std::string file = dir.write("a.idb", kThree);
  ASSERT_TRUE(model.open(file).ok());
  EXPECT_EQ(rep.texts("log"), Lines{"Opened idb '" + file + "'."});
  EXPECT_EQ(log.calls, (Lines{"add.refresh", "tags.refresh"}));
  EXPECT_EQ(model.idbFileName(), file);
  EXPECT_EQ(model.lineCount(), 3);
  const Lines opened = records();
  model.undo();
  EXPECT_EQ(records(), opened);
}

TEST_F(FileListModelTest, AppendAddsOrRestores) {
  openText(kThree, "base.idb");
  const Lines before = records();
  const std::string bad =
      dir.write("bad.idb", "f 0644 root sys a a t\nf 0644 root sys b b t\nf 0644 root\n");
  EXPECT_FALSE(model.appendFile(bad).ok());
  EXPECT_EQ(rep.texts("log"),
            Lines{"Couldn't read idb '" + bad + "' (Expected group in field 4 on line 3)."});
  EXPECT_EQ(records(), before);
  EXPECT_FALSE(model.modified());

  const std::string more = dir.write("more.idb", "f 0644 root sys a a t\n");
  log.calls.clear();
  EXPECT_TRUE(model.appendFile(more).ok());
  Lines after = before;
  after.push_back("f 0644 root sys a a t");
  EXPECT_EQ(records(), after);
  EXPECT_TRUE(model.modified());
  EXPECT_EQ(model.idbFileName(), dir.file("base.idb"));
  EXPECT_EQ(log.calls, (Lines{"add.refresh", "tags.refresh"}));
  model.undo();
  EXPECT_EQ(records(), before);
}

TEST_F(FileListModelTest, SaveRefusalsAndSuccess) {
  model.setView(FileListModel::kTagView);
  openText("f 0644 root sys b b t\nf 0644 root sys a a t\n");
  model.clear();  // nameless and empty, with its own records below
  ASSERT_TRUE(
      model.appendFile(dir.write("in.idb", "f 0644 root sys b b t\nf 0644 root sys a a t\n")).ok());
  spec.products = {"prod"};
  rep.clear();

  // No name: the user is asked, proposing the product's name; cancel
  // refuses, with nothing to show.
  Outcome saved = model.save(nullptr);
  EXPECT_FALSE(saved.ok());
  EXPECT_EQ(saved.message(), "");
  EXPECT_EQ(log.calls.back(), "prompt Save Idb|*idb|prod.idb");

  // Into the distribution directory, written differently: refused.
  dir.mkdir("dist");
  build.distDir = dir.file("dist/./");
  EXPECT_FALSE(model.save(dir.file("dist/x.idb").c_str()).ok());
  EXPECT_EQ(rep.texts("error"),
            Lines{"Save target directory matches Distribution Directory.\n"
                  "The build operation creates a binary version of the idb file in\n"
                  "the distribution directory.  Pick another directory to save your\n"
                  "ascii files into."});
  EXPECT_EQ(dir.read("dist/x.idb"), "<missing>");
  build.distDir = "/usr/dist";

  const std::string notRegular = dir.mkdir("sub.idb");
  rep.clear();
  saved = model.save(notRegular.c_str());
  EXPECT_EQ(rep.texts("warning"), Lines{"'" + notRegular + "' is not a regular file.\nTry again."});
  EXPECT_EQ(rep.texts("warning"), Lines{saved.message()});

  const std::string noDir = dir.file("nodir/x.idb");
  rep.clear();
  saved = model.save(noDir.c_str());
  EXPECT_EQ(saved.code(), ENOENT);
  EXPECT_EQ(rep.events(), (std::vector<RecordingReporter::Event>{
                              {"log", "Couldn't save idb '" + noDir + "' (No such file or directory)."},
                              {"show", ""}}));
  EXPECT_TRUE(model.modified());

  // The chosen name is taken; the records come out sorted and the lines
  // follow them, with nothing selected any more.
  model.setSelectedPositions({1});
  prompt.answer = dir.file("out.idb");
  rep.clear();
  EXPECT_TRUE(model.save(nullptr).ok());
  EXPECT_EQ(dir.read("out.idb"), "f 0644 root sys a a t\nf 0644 root sys b b t\n");
  EXPECT_EQ(rep.texts("log"), Lines{"Saved idb '" + dir.file("out.idb") + "'."});
  EXPECT_FALSE(model.modified());
  EXPECT_EQ(model.idbFileName(), dir.file("out.idb"));
  EXPECT_EQ(lines(), (Lines{"t a", "t b"}));
  EXPECT_EQ(model.totalSelected(), 0);

  // Later saves go to the idb's own name without asking.
  log.calls.clear();
  EXPECT_TRUE(model.save(nullptr).ok());
  EXPECT_TRUE(log.calls.empty());
}

TEST_F(FileListModelTest, FileBrowsers) {
  spec.products = {"prod"};
  const std::string a = dir.write("a.idb", "f 0644 root sys a a t\n");
  const std::string b = dir.write("b.idb", "f 0644 root sys b b t\n");
  EXPECT_FALSE(model.showOpenBrowser());  // cancelled
  EXPECT_EQ(log.calls, Lines{"prompt Open Idb|*idb|"});
  prompt.answer = a;
  EXPECT_TRUE(model.showOpenBrowser());
  EXPECT_EQ(model.idbFileName(), a);

  prompt.answer = b;
  log.calls.clear();
  rep.clear();
  EXPECT_TRUE(model.showReadBrowser());
  EXPECT_EQ(log.calls.front(), "prompt Append Idb|*idb|prod.idb");
  EXPECT_EQ(rep.texts("log"), Lines{"Appended idb '" + b + "'."});
  EXPECT_EQ(model.getList(), (Lines{"t a", "t b"}));

  // Open asks about the unsaved append before any dialog; declined, no dialog.
  rep.answer(false);
  log.calls.clear();
  EXPECT_FALSE(model.showOpenBrowser());
  EXPECT_TRUE(log.calls.empty());
  EXPECT_EQ(rep.texts("question").size(), 1u);

  prompt.answer = dir.file("c.idb");
  EXPECT_TRUE(model.showSaveBrowser());
  EXPECT_EQ(log.calls.front(), "prompt Save Idb|*idb|prod.idb");
  EXPECT_EQ(dir.read("c.idb"), "f 0644 root sys a a t\nf 0644 root sys b b t\n");
}

TEST_F(FileListModelTest, TheDisplayIsToldWhatToMirror) {
  const std::string src = makeSources({"new"});
  ASSERT_TRUE(model.setSourceRoot(src));
  FakeDisplay display(log);
  model.setDisplay(&display);
  model.setView(FileListModel::kTagView);
  const std::string file = dir.write("a.idb", "f 0644 root sys x new t\n");
  log.calls.clear();
  ASSERT_TRUE(model.open(file).ok());
  EXPECT_EQ(log.calls, (Lines{"display.lines", "add.refresh", "tags.refresh", "display.name Idb File:  " + file}));

  const struct {
    const char* name;
    std::function<void(FileListModel&)> op;
    Lines calls;
  } cases[] = {
      {"select", [](FileListModel& m) { m.selectMatching("t"); }, {"display.selection"}},
      {"select tag", [](FileListModel& m) { m.selectTag("t"); }, {"display.selection"}},
      {"edit", [](FileListModel& m) { m.replaceOwner("bin"); }, {"display.lines"}},
      {"refresh", [](FileListModel& m) { m.refresh(); }, {"display.lines"}},
      {"hierarchy view", [](FileListModel& m) { m.setView(0); m.refresh(); m.setView(1); }, {}},
      {"add", [&src](FileListModel& m) { m.add({src + "/new"}); }, {"display.lines", "display.last"}},
  };
  for (const auto& c : cases) {
    log.calls.clear();
    c.op(model);
    EXPECT_EQ(log.calls, c.calls) << c.name;
  }
  model.setDisplay(nullptr);
}

TEST_F(FileListModelTest, GesturesChangeOnlyTheRowsTheyNameAndKeepThroughRefresh) {
  openText(kThree);
  model.setView(FileListModel::kTagView);
  model.refresh();
  FakeDisplay display(log);
  model.setDisplay(&display);
  const struct {
    const char* name;
    std::function<void(FileListModel&)> op;
    std::vector<int> selected;
  } cases[] = {
      {"click", [](FileListModel& m) { m.selectOne(2); }, {2}},
      {"ctrl-click", [](FileListModel& m) { m.toggleSelected(3); }, {2, 3}},
      {"ctrl-click again", [](FileListModel& m) { m.toggleSelected(2); }, {3}},
      {"shift-click", [](FileListModel& m) { m.selectRange(3, 1); }, {1, 2, 3}},
      {"ctrl-drag off", [](FileListModel& m) { m.setRangeSelected(2, 3, false); }, {1}},
      {"ctrl+/", [](FileListModel& m) { m.selectAll(); }, {1, 2, 3}},
      {"ctrl+\\", [](FileListModel& m) { m.deselectAll(); }, {}},
      {"out of range", [](FileListModel& m) { m.selectOne(4); }, {}},
      {"filter, then a click", [](FileListModel& m) { m.selectMatching("lib"); m.toggleSelected(1); },
       {1, 2, 3}},
      {"refresh keeps it", [](FileListModel& m) { m.selectOne(3); m.setView(2); m.refresh(); }, {3}},
  };
  for (const auto& c : cases) {
    log.calls.clear();
    c.op(model);
    EXPECT_EQ(c.selected, model.selectedPositions()) << c.name;
    EXPECT_EQ(static_cast<int>(c.selected.size()), model.totalSelected()) << c.name;
    for (int p = 1; p <= 3; ++p)
      EXPECT_EQ(std::count(c.selected.begin(), c.selected.end(), p) == 1, model.isSelected(p))
          << c.name << " " << p;
    EXPECT_FALSE(log.calls.empty()) << c.name << ": the display is told";
  }
  // Edits act on exactly what the gestures left.
  model.selectRange(1, 2);
  model.replaceOwner("adm");
  Lines owners;
  for (int i = 0; i < model.idb().count(); ++i) owners.emplace_back(model.idb()[i]->owner());
  EXPECT_EQ((Lines{"adm", "adm", "root"}), owners);
  model.setDisplay(nullptr);
}

TEST_F(FileListModelTest, AbandonChangesAsksOnlyWhenModified) {
  openText(kThree, "named.idb");
  EXPECT_TRUE(model.abandonChanges());
  EXPECT_TRUE(rep.events().empty());

  model.setSelectedPositions({1});
  model.replaceOwner("adm");
  const std::string question = "There have been changes since you last saved.\n"
                               "Abandon changes to idb file '" + dir.file("named.idb") + "'?\n";
  rep.answer(false);
  EXPECT_FALSE(model.abandonChanges());
  rep.answer(true);
  EXPECT_TRUE(model.abandonChanges());
  EXPECT_EQ(rep.texts("question"), (Lines{question, question}));

  // Clearing asks the same; declined, nothing changes.
  rep.clear();
  rep.answer(false);
  model.clear();
  EXPECT_EQ(model.idb().count(), 3);
  rep.answer(true);
  log.calls.clear();
  model.clear();
  EXPECT_EQ(model.idb().count(), 0);
  EXPECT_EQ(model.fileNameLabel(), "Idb File:  ");
  EXPECT_EQ(log.calls, (Lines{"add.refresh", "tags.refresh"}));

  // A nameless idb is asked about without a name.
  rep.clear();
  rep.answer(false);
  EXPECT_FALSE(model.abandonChanges());
  EXPECT_EQ(rep.texts("question"),
            Lines{"There have been changes since you last saved.\nAbandon changes to idb file?\n"});
}

TEST_F(FileListModelTest, UndoTwiceRedoes) {
  openText(kThree);
  const Lines original = records();
  model.setSelectedPositions({2});
  model.replaceTag("other.sw.tag");
  const Lines changed = records();
  ASSERT_NE(changed, original);
  model.undo();
  EXPECT_EQ(records(), original);
  model.undo();
  EXPECT_EQ(records(), changed);
}

TEST_F(FileListModelTest, UndoOfAnEditKeepsAMovedRoot) {
  const std::string a = makeSources({"f"});
  const std::string b = dir.mkdir("b");
  dir.write("b/f", "x");
  ASSERT_TRUE(model.setSourceRoot(a));
  openText("f 0644 root sys f f t\n");
  ASSERT_EQ(model.setSourceRoot(b), b);  // found there too: paths kept
  model.setSelectedPositions({1});
  model.replaceTag("u");
  model.undo();
  EXPECT_EQ(model.sourceRoot(), b);
  EXPECT_EQ(records(), Lines{"f 0644 root sys f f t"});
}

TEST_F(FileListModelTest, RemoveUnmarksPathsNoRecordInstallsTo) {
  openText(
      "f 0644 root sys s7 s1 t\n"
      "f 0644 root sys s6 s2 t\n"
      "f 0644 root sys d3 s7 t\n"
      "f 0644 root sys d4 s4 t\n"
      "f 0644 root sys x5 s6 t\n"
      "f 0644 root sys d6 s8 t\n"
      "f 0644 root sys s9 s9 t\n");
  const Lines original = records();
  model.removeSelected();  // nothing selected: nothing happens
  EXPECT_EQ(records(), original);
  EXPECT_FALSE(model.modified());

  // s7 stays: record 1 installs to it.  s6 stays: record 2 still installs to
  // it when record 5 goes (the last goes first).
  model.setSelectedPositions({2, 3, 5, 6, 7});
  model.removeSelected();
  EXPECT_EQ(log.calls, (Lines{"add.unmark s9", "add.unmark s8", "add.unmark s2"}));
  EXPECT_EQ(records(), (Lines{"f 0644 root sys s7 s1 t", "f 0644 root sys d4 s4 t"}));
  EXPECT_EQ(model.totalSelected(), 0);
  EXPECT_TRUE(model.modified());
  model.undo();
  EXPECT_EQ(records(), original);
}

TEST_F(FileListModelTest, EditsOfTheSelectedRecords) {
  const std::string text =
      "f 0644 root sys usr/bin/tool build/tool t.sw.base\n"
      "d 0755 root sys usr/lib lib t.sw.lib\n"
      "l 0777 root sys usr/lib/x lib/x t.sw.lib symval(x.1) config(noupdate)\n"
      "f 0644 root sys tool tool t.sw.base exitop(x)\n"
      "f 0644 root sys /etc5 etc5 t.sw.base\n";
  const struct {
    const char* name;
    std::function<void(FileListModel&)> edit;
    Lines expected;  // records 2 to 5, which are selected
  } cases[] = {
      {"replaceMode", [](FileListModel& m) { m.replaceMode(04755); },
       {"d 4755 root sys usr/lib lib t.sw.lib",
        "l 4755 root sys usr/lib/x lib/x t.sw.lib symval(x.1) config(noupdate)",
        "f 4755 root sys tool tool t.sw.base exitop(x)", "f 4755 root sys /etc5 etc5 t.sw.base"}},
      {"replaceOwner", [](FileListModel& m) { m.replaceOwner("bin"); },
       {"d 0755 bin sys usr/lib lib t.sw.lib",
        "l 0777 bin sys usr/lib/x lib/x t.sw.lib symval(x.1) config(noupdate)",
        "f 0644 bin sys tool tool t.sw.base exitop(x)", "f 0644 bin sys /etc5 etc5 t.sw.base"}},
      {"replaceGroup", [](FileListModel& m) { m.replaceGroup("staff"); },
       {"d 0755 root staff usr/lib lib t.sw.lib",
        "l 0777 root staff usr/lib/x lib/x t.sw.lib symval(x.1) config(noupdate)",
        "f 0644 root staff tool tool t.sw.base exitop(x)", "f 0644 root staff /etc5 etc5 t.sw.base"}},
      {"replaceSourceDir", [](FileListModel& m) { m.replaceSourceDir("new/dir"); },
       {"d 0755 root sys usr/lib new/dir/lib t.sw.lib",
        "l 0777 root sys usr/lib/x new/dir/x t.sw.lib symval(x.1) config(noupdate)",
        "f 0644 root sys tool new/dir/tool t.sw.base exitop(x)",
        "f 0644 root sys /etc5 new/dir/etc5 t.sw.base"}},
      {"replaceSourceFile", [](FileListModel& m) { m.replaceSourceFile("other/y"); },
       {"d 0755 root sys usr/lib ./y t.sw.lib",
        "l 0777 root sys usr/lib/x lib/y t.sw.lib symval(x.1) config(noupdate)",
        "f 0644 root sys tool ./y t.sw.base exitop(x)", "f 0644 root sys /etc5 ./y t.sw.base"}},
      {"replaceDestDir", [](FileListModel& m) { m.replaceDestDir("opt"); },
       {"d 0755 root sys opt/lib lib t.sw.lib",
        "l 0777 root sys opt/x lib/x t.sw.lib symval(x.1) config(noupdate)",
        "f 0644 root sys opt/tool tool t.sw.base exitop(x)", "f 0644 root sys opt/etc5 etc5 t.sw.base"}},
      {"replaceDestFile", [](FileListModel& m) { m.replaceDestFile("other/y"); },
       {"d 0755 root sys usr/y lib t.sw.lib",
        "l 0777 root sys usr/lib/y lib/x t.sw.lib symval(x.1) config(noupdate)",
        "f 0644 root sys ./y tool t.sw.base exitop(x)", "f 0644 root sys /y etc5 t.sw.base"}},
      {"replaceTag", [](FileListModel& m) { m.replaceTag("p.q.r"); },
       {"d 0755 root sys usr/lib lib p.q.r",
        "l 0777 root sys usr/lib/x lib/x p.q.r symval(x.1) config(noupdate)",
        "f 0644 root sys tool tool p.q.r exitop(x)", "f 0644 root sys /etc5 etc5 p.q.r"}},
      {"addAttribute", [](FileListModel& m) { m.addAttribute("postop('a b')"); },
       {"d 0755 root sys usr/lib lib t.sw.lib postop('a b')",
        "l 0777 root sys usr/lib/x lib/x t.sw.lib symval(x.1) config(noupdate) postop('a b')",
        "f 0644 root sys tool tool t.sw.base exitop(x) postop('a b')",
        "f 0644 root sys /etc5 etc5 t.sw.base postop('a b')"}},
      {"addDirsAttribute", [](FileListModel& m) { m.addDirsAttribute("config(suggest)"); },
       {"d 0755 root sys usr/lib lib t.sw.lib config(suggest)",
        "l 0777 root sys usr/lib/x lib/x t.sw.lib symval(x.1) config(noupdate)",
        "f 0644 root sys tool tool t.sw.base exitop(x)", "f 0644 root sys /etc5 etc5 t.sw.base"}},
      {"deleteAttributes", [](FileListModel& m) { m.deleteAttributes(); },
       {"d 0755 root sys usr/lib lib t.sw.lib", "l 0777 root sys usr/lib/x lib/x t.sw.lib symval(x.1)",
        "f 0644 root sys tool tool t.sw.base", "f 0644 root sys /etc5 etc5 t.sw.base"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    openText(text);
    model.deselectAll();
    const Lines original = records();

    c.edit(model);  // nothing selected: nothing changes
    EXPECT_EQ(records(), original);
    EXPECT_FALSE(model.modified());

    // An edit before, so that undo shows where the step began.
    model.setSelectedPositions({1});
    model.replaceGroup("pre");
    const Lines before = records();
    model.setSelectedPositions({2, 3, 4, 5});
    c.edit(model);
    Lines expected = c.expected;
    expected.insert(expected.begin(), "f 0644 root pre usr/bin/tool build/tool t.sw.base");
    EXPECT_EQ(records(), expected);
    EXPECT_TRUE(model.modified());
    model.undo();  // each edit on its own is one step
    EXPECT_EQ(records(), before);
  }
}

// What each button of the panels does to the model, as the panel does it,
// is one undo step: one undo brings back exactly the idb and source root it
// began with, and the list is refreshed once, at its end.  An edit that
// takes no undo copy lets undo fall back past the edit made just before it;
// one that takes a second copy halfway stops undo halfway.
TEST_F(FileListModelTest, EachUserEditIsOneUndoStep) {
  const std::string src = makeSources({"top/bin/tool", "top/lib/x", "top/new"});
  const std::string top = src + "/top";
  const std::string more = dir.write("more.idb", "f 0644 root sys usr/more new t.sw.more\n");
  using Edit = FileListModel::Edit;
  const struct {
    const char* name;
    Positions selected;
    std::function<void(FileListModel&)> edit;
  } cases[] = {
      {"Tags: assign a tag", {1, 3}, [](FileListModel& m) { m.replaceTag("new.sw.tag"); }},
      {"Permissions: assign every field", {1, 2}, [](FileListModel& m) {
         Edit edit(m);
         m.replaceDestDir("opt");
         m.replaceDestFile("renamed");
         m.replaceMode(0700);
         m.replaceOwner("bin");
         m.replaceGroup("bin");
       }},
      {"Permissions: assign the mode", {2}, [](FileListModel& m) {
         Edit edit(m);
         m.replaceMode(0600);
       }},
      {"Permissions: assign the owner", {2}, [](FileListModel& m) {
         Edit edit(m);
         m.replaceOwner("adm");
       }},
      {"Attributes: assign", {1, 2, 3}, [](FileListModel& m) {
         Edit edit(m);
         m.deleteAttributes();
         m.addAttribute("config(suggest)");
         m.addAttribute("postop('x y')");
       }},
      {"Attributes: assign none", {3}, [](FileListModel& m) {
         Edit edit(m);
         m.deleteAttributes();
       }},
      {"Add Files", {}, [&src](FileListModel& m) { m.add({src + "/top/new"}); }},
      {"Delete Selected Items", {1, 3}, [](FileListModel& m) { m.removeSelected(); }},
      {"Append", {}, [&more](FileListModel& m) { ASSERT_TRUE(m.appendFile(more).ok()); }},
      {"Source Root moved up, paths rewritten", {},
       [&src](FileListModel& m) { ASSERT_TRUE(m.setSourceRoot(src)); }},
      {"Create Patch", {}, [](FileListModel& m) { m.createPatch("patch", {2}); }},
  };
  FakeDisplay display(log);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    ASSERT_TRUE(model.setSourceRoot(top));
    openText(
        "f 0755 root sys usr/bin/tool bin/tool t.sw.base\n"
        "d 0755 bin bin usr/lib lib t.sw.lib config(noupdate)\n"
        "l 0777 root sys usr/lib/x lib/x t.sw.lib symval(x.1) preop('a b')\n");
    model.setView(FileListModel::kTagView);
    // A step before, so that an edit without a step of its own shows.
    model.setSelectedPositions({1, 2, 3});
    model.replaceGroup("earlier");
    const Lines before = records();
    model.setSelectedPositions(c.selected);

    model.setDisplay(&display);
    log.calls.clear();
    c.edit(model);
    EXPECT_EQ(std::count(log.calls.begin(), log.calls.end(), "display.lines"), 1)
        << testing::PrintToString(log.calls);
    model.setDisplay(nullptr);
    const Lines after = records();
    EXPECT_NE(after, before);

    model.undo();
    EXPECT_EQ(records(), before);
    EXPECT_EQ(model.sourceRoot(), top);
    model.undo();
    EXPECT_EQ(records(), after);
  }
}

TEST_F(FileListModelTest, TagsAndListOfAllRecords) {
  openText(kThree);
  std::unique_ptr<StringSet> tagSet = model.getTags();
  EXPECT_EQ(tagSet->name(), "Tags in File List");
  ASSERT_EQ(tagSet->count(), 2);
  EXPECT_STREQ(tagSet->item(0), "tool.sw.base");
  EXPECT_STREQ(tagSet->item(1), "tool.sw.lib");
  EXPECT_EQ(model.getList(), (Lines{"tool.sw.base build/tool", "tool.sw.lib lib", "tool.sw.lib lib/x"}));
  std::string buffer;
  EXPECT_EQ("tool.sw.lib lib/x", model.listLine(3, buffer));
  EXPECT_EQ("", model.listLine(4, buffer));

  model.fixTag("tool.sw", "x.y.z");  // no record carries it
  EXPECT_FALSE(model.modified());
  model.fixTag("tool.sw.lib", "tool.sw.libs");
  EXPECT_TRUE(model.modified());
  EXPECT_EQ(model.getList(), (Lines{"tool.sw.base build/tool", "tool.sw.libs lib", "tool.sw.libs lib/x"}));
}

TEST_F(FileListModelTest, CreatePatchKeepsExactlyTheChosenItems) {
  const struct {
    int records;
    Positions keep;
    Lines remaining;  // source paths
  } cases[] = {
      {3, {2}, {"s2"}},
      {4, {1, 3}, {"s1", "s3"}},
      {4, {4}, {"s4"}},
      {3, {1, 2, 3}, {"s1", "s2", "s3"}},
      {3, {}, {}},
  };
  for (const auto& c : cases) {
    std::string text;
    for (int i = 1; i <= c.records; i++)
      text += "f 0644 root sys d" + std::to_string(i) + " s" + std::to_string(i) + " my.sw." +
              (i % 2 ? "base" : "lib") + "\n";
    openText(text);
    spec.products = {"my", "p1"};
    model.setSelectedPositions({1});
    model.createPatch("p1", c.keep);
    Lines srcs;
    for (const std::string& l : model.getList()) srcs.push_back(l.substr(l.find(' ') + 1));
    EXPECT_EQ(srcs, c.remaining);
    EXPECT_EQ(model.totalSelected(), 0);
    for (const std::string& l : model.getList())
      EXPECT_EQ(l.substr(0, l.find(' ')), l.find("s1") != std::string::npos || l.find("s3") != std::string::npos
                                               ? "p1.patched.base"
                                               : "p1.patched.lib");
    EXPECT_EQ(spec.products, Lines{"p1"});
    EXPECT_EQ(model.idbFileName(), "");
    EXPECT_EQ(model.idb().name(), "");
    model.undo();
    EXPECT_EQ(model.idb().count(), c.records);
  }

  // One question per source tag; a graph that cannot delete a product is not
  // asked forever.
  openText("f 0644 root sys a a my.sw.base\nf 0644 root sys b b my.sw.base\n");
  spec.products = {"my"};
  spec.stubborn = true;
  model.createPatch("p2", {1, 2});
  EXPECT_EQ(log.calls, (Lines{"spec.patch p2 my.sw.base", "spec.delete my", "add.refresh", "tags.refresh"}));
}

TEST_F(FileListModelTest, SourceRootKeepsPathsOrRewritesThem) {
  // Files under a/b, listed relative to a.
  const std::string a = dir.mkdir("a");
  dir.write("a/b/x", "x");
  dir.write("a/b/y", "y");
  ASSERT_TRUE(model.setSourceRoot(a));
  openText("f 0644 root sys b/x b/x t\nf 0644 root sys usr/y b/y t\n");

  // Moving down to a/b: every file lies under it, so the paths are rewritten;
  // a file installed where it lies keeps doing so.
  const std::string ab = a + "/b";
  EXPECT_EQ(model.setSourceRoot(ab + "/"), ab);
  EXPECT_EQ(model.sourceRoot(), ab);
  EXPECT_EQ(records(), (Lines{"f 0644 root sys x x t", "f 0644 root sys usr/y y t"}));
  EXPECT_TRUE(model.modified());
  EXPECT_EQ(log.calls, (Lines{"add.root " + ab, "perms.root " + ab, "build.root " + ab}));

  // Undo brings paths and root back together.
  model.undo();
  EXPECT_EQ(model.sourceRoot(), a);
  EXPECT_EQ(records(), (Lines{"f 0644 root sys b/x b/x t", "f 0644 root sys usr/y b/y t"}));
  model.undo();
  EXPECT_EQ(model.sourceRoot(), ab);

  // Moving up to a when the files exist as a/<srcpath> too keeps the paths.
  dir.write("a/x", "x");
  dir.write("a/y", "y");
  EXPECT_EQ(model.setSourceRoot(a), a);
  EXPECT_EQ(records(), (Lines{"f 0644 root sys x x t", "f 0644 root sys usr/y y t"}));

  // Not a directory: refused with the text as typed.
  rep.clear();
  EXPECT_FALSE(model.setSourceRoot("a/x"));
  EXPECT_EQ(rep.texts("error"), Lines{"Source Root 'a/x' is not a directory."});
  EXPECT_EQ(model.sourceRoot(), a);
}

TEST_F(FileListModelTest, SourceRootRefusalsReportTheCloserReading) {
  const std::string a = dir.mkdir("a");
  const std::string sub = dir.mkdir("a/sub");
  const std::string empty = dir.mkdir("empty");
  for (const char* f : {"a/sub/p", "a/sub/q", "a/sub/s", "a/r", "a/s", "a/sub/sub/s"})
    dir.write(f, "x");
  ASSERT_TRUE(model.setSourceRoot(a));
  const struct {
    const char* name;
    std::string records;
    std::string newRoot;
    std::string message;
    Positions selected;
  } cases[] = {
      // Not found under sub: sub/p, r (2).  Outside sub: r, s (2).  A tie
      // shows the missing files.
      {"tie", "f 0644 root sys 1 sub/p t\nf 0644 root sys 2 r t\nf 0644 root sys 3 s t\n", sub,
       "2 (of 3 entries) not found under Source Root " + sub + ".", {1, 2}},
      // Not found under sub: sub/p, r, sub/q (3).  Outside: r, s (2).  The
      // files outside are shown.
      {"outside", "f 0644 root sys 1 sub/p t\nf 0644 root sys 2 r t\nf 0644 root sys 3 s t\n"
                  "f 0644 root sys 4 sub/s t\nf 0644 root sys 5 sub/q t\n",
       sub, "2 (of 5 entries) not found under Source Root " + sub + ".", {2, 3}},
      {"nothing found", "f 0644 root sys 1 r t\nf 0644 root sys 2 s t\n", empty,
       "No files found under Source Root " + empty + ".", {1, 2}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    openText(c.records);
    const Lines before = records();
    EXPECT_FALSE(model.setSourceRoot(c.newRoot));
    EXPECT_EQ(rep.texts("error"), Lines{c.message});
    EXPECT_EQ(model.selectedPositions(), c.selected);
    EXPECT_EQ(model.sourceRoot(), a);
    EXPECT_EQ(records(), before);
    EXPECT_TRUE(log.calls.empty());
  }
}

TEST_F(FileListModelTest, CantStripRootThroughSymbolicLinks) {
  const std::string a = dir.mkdir("a");
  const std::string real = dir.mkdir("real");
  dir.write("real/f", "x");
  dir.write("a/g", "x");
  ASSERT_EQ(symlink("../real", (a + "/l").c_str()), 0);
  ASSERT_EQ(symlink("a", dir.file("la").c_str()), 0);
  ASSERT_EQ(symlink("nowhere", (a + "/dangle").c_str()), 0);
  ASSERT_TRUE(model.setSourceRoot(a));
  openText("f 0644 root sys l/f l/f t\nf 0644 root sys g g t\n");

  const struct {
    std::string root;
    int outside;
  } cases[] = {
      {"/", 0},
      {a, 0},
      // A link to the root: a/l/f is under it only by the test that takes the
      // character after the prefix from the resolved path, which fails here.
      {dir.file("la"), 1},
      {real, 1},            // a/l/f resolves into it, a/g does not
      {dir.path(), 0},
      {dir.file("re"), 2},  // a prefix of "real" is not a directory above it
  };
  for (const auto& c : cases) EXPECT_EQ(model.cantStripRoot(c.root, false), c.outside) << c.root;

  // With report, the records outside are selected and named.
  EXPECT_EQ(model.cantStripRoot(real, true), 1);
  EXPECT_EQ(model.selectedPositions(), Positions{2});
  EXPECT_EQ(rep.texts("error"), Lines{"1 (of 2 entries) not found under Source Root " + real + "."});

  // A file that only lies under the new root through a link in its path is
  // rewritten relative to where it really is.
  openText("f 0644 root sys l/f l/f t\n");
  EXPECT_EQ(model.setSourceRoot(real), real);
  EXPECT_EQ(records(), Lines{"f 0644 root sys f f t"});

  // A link that leads nowhere is found (lstat) but cannot be resolved.
  model.clear();
  ASSERT_TRUE(model.setSourceRoot(a));
  openText("f 0644 root sys dangle dangle t\n");
  EXPECT_EQ(model.cantStripRoot(real, false), 1);
  const Lines logged = rep.texts("log");
  ASSERT_EQ(logged.size(), 2u);
  EXPECT_EQ(logged[0], "Unable to resolve links for " + a + "/dangle: No such file or directory");
  EXPECT_EQ(logged[1], "   (at '" + a + "/nowhere' in '" + a + "/dangle')");

  // Every record counts when some record is missing under the present root.
  openText("f 0644 root sys g g t\nf 0644 root sys gone gone t\nf 0644 root sys l/f l/f t\n");
  EXPECT_EQ(model.cantStripRoot(a, false), 3);
}

TEST_F(FileListModelTest, EmptyIdbAcceptsAnyDirectory) {
  for (const std::string& root : {dir.mkdir("one"), dir.mkdir("two/three"), std::string("/")}) {
    EXPECT_EQ(model.setSourceRoot(root), root);
    EXPECT_EQ(model.idb().sourceRoot(), root);
  }
  EXPECT_FALSE(model.modified());
  EXPECT_TRUE(rep.events().empty());
}

TEST_F(FileListModelTest, DestinationRoot) {
  const std::string d = dir.mkdir("dest");
  EXPECT_EQ(model.destRoot(), nullptr);
  EXPECT_EQ(model.setDestRoot(d + "//."), d);
  EXPECT_EQ(log.calls, (Lines{"perms.dest " + d, "build.dest " + d}));
  log.calls.clear();
  EXPECT_EQ(model.setDestRoot(d), d);  // already there: nobody is told
  EXPECT_TRUE(log.calls.empty());
  EXPECT_FALSE(model.setDestRoot(dir.file("nope")));
  EXPECT_EQ(rep.texts("error"), Lines{"Destination Root '" + dir.file("nope") + "' is not a directory."});
  ASSERT_NE(model.destRoot(), nullptr);
  EXPECT_EQ(*model.destRoot(), d);
}

TEST_F(FileListModelTest, RootsFromTheEnvironment) {
  const std::string plain = dir.write("plain", "x");
  const std::string d = dir.mkdir("d");
  const std::string start = model.sourceRoot();
  {
    ScopedEnv sbase("SBASE", nullptr), rbase("RBASE", nullptr);
    model.initSourceRoot();
    model.initDestRoot();
    EXPECT_TRUE(rep.events().empty());
    EXPECT_EQ(model.sourceRoot(), start);
  }
  {
    ScopedEnv sbase("SBASE", (plain + "/.").c_str()), rbase("RBASE", (plain + "//").c_str());
    model.initSourceRoot();
    model.initDestRoot();
    EXPECT_EQ(rep.events(), (std::vector<RecordingReporter::Event>{
                                {"log", "SBASE (" + plain + ") is not a directory."}, {"show", ""},
                                {"log", "RBASE (" + plain + ") is not a directory."}, {"show", ""}}));
    EXPECT_EQ(model.sourceRoot(), start);
    EXPECT_EQ(model.destRoot(), nullptr);
  }
  {
    ScopedEnv sbase("SBASE", d.c_str()), rbase("RBASE", d.c_str());
    model.initSourceRoot();
    model.initDestRoot();
    EXPECT_EQ(model.sourceRoot(), d);
    ASSERT_NE(model.destRoot(), nullptr);
    EXPECT_EQ(*model.destRoot(), d);
  }
}

TEST_F(FileListModelTest, MissingFilesAreSelectedAndBlockAddingAndDoubleClick) {
  const std::string src = makeSources({"a", "b", "new"});
  ASSERT_TRUE(model.setSourceRoot(src));
  openText("f 0644 root sys a a t\nf 0644 root sys gone gone t\nf 0644 root sys b b t\n");
  EXPECT_EQ(model.cantPrependRoot(src, false), 1);
  EXPECT_TRUE(rep.events().empty());
  EXPECT_EQ(model.totalUnfound(), 1);
  EXPECT_EQ(model.selectedPositions(), Positions{2});
  EXPECT_EQ(rep.texts("error"), Lines{"1 (of 3 entries) not found under Source Root " + src + "."});

  rep.clear();
  model.add({src + "/new"});
  EXPECT_EQ(model.idb().count(), 3);
  EXPECT_EQ(rep.texts("error"), Lines{"1 (of 3 entries) not found under Source Root " + src + "."});
  rep.clear();
  model.showCurrent(1);
  EXPECT_EQ(rep.texts("error").size(), 1u);
  EXPECT_TRUE(log.calls.empty());
}

TEST_F(FileListModelTest, AddAndDoubleClick) {
  const std::string src = makeSources({"bin/tool", "lib/x"});
  ASSERT_EQ(symlink("x", (src + "/lib/l").c_str()), 0);
  ASSERT_TRUE(model.setSourceRoot(src));
  openText("f 0644 root sys usr/bin/tool bin/tool t.sw.base config(noupdate) exitop('a b')\n");
  model.setView(FileListModel::kTagView);

  model.add({});
  EXPECT_FALSE(model.modified());
  tags.current = "t.sw.lib";
  model.add({src + "/lib/x", src + "/lib/l"});
  EXPECT_TRUE(model.modified());
  EXPECT_EQ(lines(), (Lines{"t.sw.base bin/tool", "t.sw.lib lib/x", "t.sw.lib lib/l"}));
  EXPECT_EQ(model.idb()[2]->type(), 'l');
  EXPECT_EQ(model.idb()[2]->attrs(), Lines{"symval(x)"});
  model.undo();
  EXPECT_EQ(lines(), Lines{"t.sw.base bin/tool"});

  model.showCurrent(1);
  EXPECT_EQ(log.calls.back(), "attrs.current config(noupdate) exitop('a b')");
  EXPECT_EQ(Lines(log.calls.end() - 4, log.calls.end()),
            (Lines{"add.current " + src + "/bin/tool", "tags.current t.sw.base",
                   "perms.current bin/tool usr/bin/tool 0644 root sys",
                   "attrs.current config(noupdate) exitop('a b')"}));
}

TEST_F(FileListModelTest, SourcePathsInADirectory) {
  const std::string root = dir.mkdir("src");
  ASSERT_TRUE(model.setSourceRoot(root));
  openText(
      "f 0644 root sys 1 bin/tool t\n"
      "l 0777 root sys 2 bin/link t symval(tool)\n"
      "d 0755 root sys 3 bin/sub t\n"
      "f 0644 root sys 4 top t\n"
      "d 0755 root sys 5 topdir t\n"
      "f 0644 root sys 6 lib/x t\n"
      "f 0644 root sys 7 bin/tool t\n");
  const struct {
    std::string dir;
    Lines names;
  } cases[] = {
      // Records elsewhere contribute their own directory, as they always have.
      {root + "/bin", {"tool", "link", "link/", "sub/", ".", "./", "lib"}},
      {root, {"top", "topdir/"}},
      {root + "/", {"top", "topdir/"}},
      {root + "/none", {"bin", "bin/", ".", "./", "lib"}},
  };
  for (const auto& c : cases) {
    std::unique_ptr<StringSet> set = model.srcpathsInDir(c.dir);
    EXPECT_EQ(set->name(), "Source Paths In Directory");
    Lines names;
    for (int i = 0; i < set->count(); i++) names.push_back(set->item(i));
    EXPECT_EQ(names, c.names) << c.dir;
  }
}

}  // namespace

namespace {

TEST_F(FileListModelTest, AddSkipsNamesAnIdbCannotHoldAndTheRootItself) {
  const std::string src =
      makeSources({"ok/a", "dir with space/f", "tab\tname", "a\n/etc", "cr\rname"});
  const std::string outside = dir.write("elsewhere", "x");
  ASSERT_TRUE(model.setSourceRoot(src));
  model.setView(FileListModel::kTagView);
  // What the browser hands over for "./", "../" and a few odd names.
  model.add({src, src + "/ok", src + "/ok/a", src + "/dir with space", src + "/dir with space/f",
             src + "/tab\tname", src + "/a\n", src + "/a\n/etc", src + "/cr\rname", outside});
  EXPECT_EQ(lines(), (Lines{"new.sw.tag ok", "new.sw.tag ok/a", "new.sw.tag cr\rname"}));
  const std::string cannot = ", which an idb line cannot hold.";
  EXPECT_EQ(rep.events(),
            (std::vector<RecordingReporter::Event>{
                {"log", "Skipped '" + src + "/dir with space': its name holds a blank" + cannot},
                {"log", "Skipped '" + src + "/dir with space/f': its name holds a blank" + cannot},
                {"log", "Skipped '" + src + "/tab\\tname': its name holds a tab" + cannot},
                {"log", "Skipped '" + src + "/a\\n': its name holds a newline" + cannot},
                {"log", "Skipped '" + src + "/a\\n/etc': its name holds a newline" + cannot},
                {"log", "Skipped '" + outside + "': it is outside Source Root '" + src + "'."},
                {"show", ""}}));
  EXPECT_TRUE(model.modified());
  for (int i = 0; i < model.idb().count(); i++) EXPECT_TRUE(model.idb().storageProblem(i).ok());

  // Nothing left to add: no undo step, no change.
  rep.clear();
  model.add({src + "/dir with space", src});
  EXPECT_EQ(lines().size(), 3u);
  EXPECT_EQ(rep.texts("log").size(), 1u);
  model.undo();
  EXPECT_EQ(lines(), Lines{});  // the undo copy is still the one before the first add
}

TEST_F(FileListModelTest, TypedValuesAreDeblanked) {
  openText("f 0644 root sys usr/bin/tool build/tool t.sw.base\n");
  model.setSelectedPositions({1});
  model.replaceDestDir("opt/my dir");
  model.replaceDestFile("new\tname");
  model.replaceSourceDir("src dir");
  model.replaceSourceFile("a\nb");
  model.replaceOwner(" \t ");  // nothing left: the owner stays
  model.replaceGroup("st aff");
  EXPECT_EQ(records(), Lines{"f 0644 root staff opt/mydir/newname srcdir/ab t.sw.base"});
  EXPECT_TRUE(model.idb().storageProblem(0).ok());
}

// A save that fails after sorting leaves the records in the order the list
// shows, so the selection still names the records the user chose.
TEST_F(FileListModelTest, FailedSaveKeepsLinesAndSelection) {
  std::string text;
  for (int i = 2000; i >= 1; i--)
    text += "f 0644 root sys z/" + std::to_string(i) + " z/" + std::to_string(i) + " t\n";
  openText(text);
  model.setView(FileListModel::kPermsView);
  model.refresh();
  model.setSelectedPositions({1});
  const Lines before = lines();
  ASSERT_EQ(before[0], "f 0644 root sys z/2000");

  struct rlimit old;
  ASSERT_EQ(0, getrlimit(RLIMIT_FSIZE, &old));
  struct rlimit small = {4096, old.rlim_max};
  ASSERT_EQ(0, setrlimit(RLIMIT_FSIZE, &small));
  Outcome saved = model.save(dir.file("out.idb").c_str());
  setrlimit(RLIMIT_FSIZE, &old);

  // The failure returned is the message the log shows, with its cause.
  EXPECT_EQ("Couldn't save idb '" + dir.file("out.idb") + "' (File too large).", saved.message());
  EXPECT_EQ(EFBIG, saved.code());
  EXPECT_EQ(rep.texts("log"),
            Lines{"Couldn't save idb '" + dir.file("out.idb") + "' (File too large)."});
  EXPECT_EQ(dir.read("out.idb"), "<missing>");
  EXPECT_EQ(lines(), before);
  EXPECT_EQ(model.selectedPositions(), Positions{1});
  model.removeSelected();
  EXPECT_EQ(model.idb().find("z/2000"), nullptr);
  EXPECT_NE(model.idb().find("z/1"), nullptr);
}

TEST_F(FileListModelTest, SaveKeepsLinksAndRefusesWhatIsNotAFile) {
  openText("f 0644 root sys b b t\n");
  const std::string a = dir.write("a.idb", "old\n");
  ASSERT_EQ(0, link(a.c_str(), dir.file("b.idb").c_str()));
  EXPECT_TRUE(model.save(dir.file("b.idb").c_str()).ok());
  EXPECT_EQ(dir.read("a.idb"), "f 0644 root sys b b t\n");
  const std::string fifo = dir.file("fifo.idb");
  ASSERT_EQ(0, mkfifo(fifo.c_str(), 0644));
  rep.clear();
  EXPECT_FALSE(model.save(fifo.c_str()).ok());
  EXPECT_EQ(rep.texts("warning"), Lines{"'" + fifo + "' is not a regular file.\nTry again."});
  struct stat st;
  ASSERT_EQ(0, stat(fifo.c_str(), &st));
  EXPECT_TRUE(S_ISFIFO(st.st_mode));
}

}  // namespace
