// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <Xm/TextF.h>
#include <pwd.h>

#include <memory>
#include <string>
#include <vector>

#include "app/ui/LayoutChecks.h"
#include "filelist/FileListModel.h"
#include "filelist/FileListPerms.h"
#include "filelist/PanelFields.h"
#include "util/RecordingReporter.h"
#include "util/TempDir.h"
#include "util/UiTestApp.h"
#include "yr/YrApp.h"

namespace {

const char* const kNoSelection =
    "You haven't selected any idb entries to assign too.\nSelect items in the list on the right, "
    "then press Assign.\nDepress <Ctrl> when you click to select disjoint items.\nIf there are "
    "none, press <Tag Files> to add some first.";

class FileListPermsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    app = std::make_unique<YrApp>("Tamblin", UiTestApp::context(), UiTestApp::display());
    shell = newApplicationShell("permsShell");
    model = std::make_unique<FileListModel>(reporter);
    ASSERT_TRUE(model->setSourceRoot(tree.path()));
    std::vector<std::string> paths;
    for (const char* f : {"a", "b", "c"}) paths.push_back(tree.write(f, f));
    model->add(paths);
    ASSERT_EQ(3, model->idb().count());
    panel = std::make_unique<FileListPerms>("FileListPerms", shell);
    model->setPermsPartner(panel.get());
    panel->connect(*model, reporter);
    reporter.clear();
  }
  void TearDown() override {
    EXPECT_FALSE(app->isBusy());
    model->setPermsPartner(nullptr);
    panel.reset();
    XtDestroyWidget(shell);
    app.reset();
    UiTestApp::flush();
  }

  Widget w(const char* name) { return findWidget(panel->baseWidget(), name); }
  std::string text(const char* name) { return fieldText(w(name)); }
  void type(const char* name, const std::string& value) {
    XmTextFieldSetString(w(name), const_cast<char*>(value.c_str()));
  }
  void press(const char* name) { XtCallCallbacks(w(name), XmNactivateCallback, nullptr); }
  // Mode, owner, group, destination of record i as one line.
  std::string record(int i) {
    const idb* r = model->idb()[i];
    char mode[16];
    std::snprintf(mode, sizeof mode, "%04o", static_cast<unsigned>(r->mode()));
    return std::string(mode) + " " + std::string(r->owner()) + " " + std::string(r->group()) +
           " " + std::string(r->dstpath());
  }

  TempDir tree;
  RecordingReporter reporter;
  std::unique_ptr<YrApp> app;
  Widget shell = nullptr;
  std::unique_ptr<FileListModel> model;
  std::unique_ptr<FileListPerms> panel;
};

TEST_F(FileListPermsTest, ReturnInModeFieldShowsOctalAndSymbolicForms) {
  struct Case {
    const char* typed;
    const char* field;
    const char* label;
  } cases[] = {
      {"", "00", "---------"},       {"755", "0755", "rwxr-xr-x"}, {" 4 7 55", "04755", "rwsr-xr-x"},
      {"4644", "04644", "rwSr--r--"}, {"2745", "02745", "rwxr-lr-x"}, {"1776", "01776", "rwxrwxrwT"},
      {"rwx", "00", "---------"},
  };
  for (const Case& c : cases) {
    type("modeTextField", c.typed);
    press("modeTextField");
    EXPECT_EQ(c.field, text("modeTextField")) << c.typed;
    EXPECT_EQ(c.label, labelText(w("modeLabel1"))) << c.typed;
  }
}

TEST_F(FileListPermsTest, ReturnInOwnerAndGroupShowsIdsAndNames) {
  const std::string root = getpwuid(0)->pw_name;
  struct Case {
    const char* field;
    const char* label;
    const char* typed;
    std::string shownName;
    const char* shownId;
  } cases[] = {
      {"ownerTextField", "ownerLabel1", "0", root, "0"},
      {"ownerTextField", "ownerLabel1", "nobody-knows-me", root, "0"},
      {"ownerTextField", "ownerLabel1", "54321", "unknown", "54321"},
      {"groupTextField", "groupLabel1", "54321", "unknown", "54321"},
      {"groupTextField", "groupLabel1", "r o o t", "root", "0"},
  };
  for (const Case& c : cases) {
    type(c.field, c.typed);
    press(c.field);
    EXPECT_EQ(c.shownName, text(c.field)) << c.typed;
    EXPECT_EQ(c.shownId, labelText(w(c.label))) << c.typed;
  }
}

TEST_F(FileListPermsTest, AssignAppliesFilledFieldsToSelectedEntriesOnly) {
  const std::string before0 = record(0), before2 = record(2);
  struct Case {
    const char* dir;
    const char* file;
    const char* mode;
    const char* owner;
    const char* group;
    const char* expected;  // record 1 afterwards ("" = unchanged)
    const char* message;   // the error posted, if any
  } cases[] = {
      {"", "", "4711", "", "", "4711 @ b", nullptr},
      {"", "", "rwx", "", "", "0000 @ b", nullptr},  // no normalisation without Return
      {"usr/bin", "tool", "640", "bin", "daemon", "0640 bin daemon usr/bin/tool", nullptr},
      {"/usr/bin", "", "755", "", "", "", "/usr/bin"},
  };
  model->setSelectedPositions({2});
  // The owner and group the file came with.
  const std::string ids = record(1).substr(5, record(1).size() - 7);
  for (const Case& c : cases) {
    const std::string before = record(1);
    type("destDirTextField", c.dir);
    type("destFileTextField", c.file);
    type("modeTextField", c.mode);
    type("ownerTextField", c.owner);
    type("groupTextField", c.group);
    reporter.clear();
    press("assignArrowButton");
    if (c.message) {
      ASSERT_EQ(1u, reporter.texts("error").size());
      EXPECT_EQ("Destinination Directory '" + std::string(c.message) +
                    "' is fully qualified.\nStrip the leading slash at least.  The Destination "
                    "Tree Root\nwill be prepended at install time.",
                reporter.texts("error")[0]);
      EXPECT_EQ(before, record(1)) << "nothing after the refused directory is assigned";
    } else {
      EXPECT_TRUE(reporter.texts("error").empty());
      std::string expected = c.expected;
      if (expected.find('@') != std::string::npos) expected.replace(expected.find('@'), 1, ids);
      EXPECT_EQ(expected, record(1)) << c.mode;
    }
    EXPECT_EQ(before0, record(0));
    EXPECT_EQ(before2, record(2));
  }
  // The refused Assign took its undo step all the same: undoing it keeps
  // the values of the Assign before.
  model->undo();
  EXPECT_EQ("0640 bin daemon usr/bin/tool", record(1));
  // Every field of one Assign goes back with one undo.
  type("destDirTextField", "opt");
  type("destFileTextField", "x");
  type("modeTextField", "600");
  type("ownerTextField", "daemon");
  type("groupTextField", "bin");
  press("assignArrowButton");
  EXPECT_EQ("0600 daemon bin opt/x", record(1));
  model->undo();
  EXPECT_EQ("0640 bin daemon usr/bin/tool", record(1));
}

TEST_F(FileListPermsTest, AssignWithoutSelectionPostsTheMessageAndChangesNothing) {
  type("modeTextField", "777");
  const std::string before = record(0);
  press("assignArrowButton");
  EXPECT_EQ(std::vector<std::string>{kNoSelection}, reporter.texts("error"));
  EXPECT_EQ(before, record(0));
}

TEST_F(FileListPermsTest, SetCurrentLoadsAndNormalisesTheEntry) {
  struct Case {
    const char* dst;
    unsigned long mode;
    const char* owner;
    const char* dir;
    const char* file;
    const char* modeText;
    const char* modeLabel;
  } cases[] = {
      {"usr/lib/libx.so", 0755, "root", "usr/lib", "libx.so", "0755", "rwxr-xr-x"},
      {"README", 0644, "0", "", "README", "0644", "rw-r--r--"},
  };
  for (const Case& c : cases) {
    panel->setCurrent("src/x", c.dst, c.mode, c.owner, "root");
    EXPECT_EQ(c.dir, text("destDirTextField"));
    EXPECT_EQ(c.file, text("destFileTextField"));
    EXPECT_EQ(c.modeText, text("modeTextField"));
    EXPECT_EQ(c.modeLabel, labelText(w("modeLabel1")));
    EXPECT_EQ(getpwuid(0)->pw_name, text("ownerTextField"));
    EXPECT_EQ("0", labelText(w("ownerLabel1")));
    EXPECT_EQ("0", labelText(w("groupLabel1")));
    EXPECT_EQ(tree.path(), text("sourceRootTextField"));
  }
  // A double click in the file list reaches the panel the same way.
  model->showCurrent(1);
  EXPECT_EQ("a", text("destFileTextField"));
}

TEST_F(FileListPermsTest, ApplyRestoresRefusedRootsAndResetClears) {
  TempDir dest;
  // A refused source root is shown again and the destination root is not
  // applied.
  type("sourceRootTextField", tree.file("missing-dir"));
  type("destRootTextField", dest.path());
  press("applyArrowButton");
  EXPECT_EQ(tree.path(), text("sourceRootTextField"));
  EXPECT_EQ(nullptr, model->destRoot());
  EXPECT_EQ(1u, reporter.texts("error").size());
  // Both accepted.
  type("sourceRootTextField", tree.path());
  type("destRootTextField", dest.path());
  press("applyArrowButton");
  ASSERT_NE(nullptr, model->destRoot());
  EXPECT_EQ(dest.path(), *model->destRoot());
  // A refused destination root only restores that field.
  type("destRootTextField", dest.file("nowhere"));
  press("applyArrowButton");
  EXPECT_EQ(dest.path(), text("destRootTextField"));
  // Reset: roots from the file list, everything else empty.
  type("sourceRootTextField", "/elsewhere");
  type("modeTextField", "755");
  press("modeTextField");
  press("resetPushButton");
  EXPECT_EQ(tree.path(), text("sourceRootTextField"));
  for (const char* f : {"modeTextField", "ownerTextField", "groupTextField", "destDirTextField",
                        "destFileTextField"})
    EXPECT_EQ("", text(f)) << f;
  EXPECT_EQ("", labelText(w("modeLabel1")));
}

}  // namespace
