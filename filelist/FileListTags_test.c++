// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <Xm/List.h>
#include <Xm/TextF.h>

#include <memory>
#include <string>
#include <vector>

#include "filelist/FileListModel.h"
#include "filelist/FileListTags.h"
#include "spec/SpecGraphModel.h"
#include "util/RecordingReporter.h"
#include "util/TempDir.h"
#include "util/UiTestApp.h"

namespace {

using Items = std::vector<std::string>;

class FileListTagsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    shell = UiTestApp::newShell("tagsShell");
    fileList = std::make_unique<FileListModel>(reporter);
    spec = std::make_unique<SpecGraphModel>(&reporter);
    tags = std::make_unique<FileListTags>("fileListTags", shell, reporter);
    tags->connect(*fileList, *spec);
    tags->show();
    XtRealizeWidget(shell);
    UiTestApp::flush();
  }
  void TearDown() override {
    tags.reset();
    XtDestroyWidget(shell);
    UiTestApp::flush();
  }
  Widget find(const char* name) {
    return XtNameToWidget(tags->baseWidget(), (std::string("*") + name).c_str());
  }
  void press(const char* button) {
    XmAnyCallbackStruct cbs{};
    cbs.reason = XmCR_ACTIVATE;
    XtCallCallbacks(find(button), XmNactivateCallback, &cbs);
  }
  void type(const std::string& text) {
    XmTextFieldSetString(tags->tagField(), const_cast<char*>(text.c_str()));
  }
  void fill(const Items& items) {
    tags->deleteAll();
    for (const std::string& t : items) tags->add(t);
  }
  std::vector<std::string> recordTags() {
    std::vector<std::string> out;
    for (int i = 0; i < fileList->idb().count(); ++i) out.emplace_back(fileList->idb()[i]->tag());
    return out;
  }

  Widget shell = nullptr;
  RecordingReporter reporter;
  std::unique_ptr<FileListModel> fileList;
  std::unique_ptr<SpecGraphModel> spec;
  std::unique_ptr<FileListTags> tags;
};

TEST_F(FileListTagsTest, AddAppendsOnceAndSelectsTheNewTag) {
  EXPECT_EQ("?", tags->getCurrent());
  type("p.i.a");
  press("addPushButton");
  type("p.i.b");
  press("addPushButton");
  EXPECT_EQ((Items{"p.i.a", "p.i.b"}), tags->items());
  EXPECT_EQ(2, tags->selectedPosition());
  // Already listed, or empty: nothing changes, the selection included.
  XmListSelectPos(tags->tagsList(), 1, False);
  type("p.i.b");
  press("addPushButton");
  type("");
  press("addPushButton");
  EXPECT_EQ((Items{"p.i.a", "p.i.b"}), tags->items());
  EXPECT_EQ("p.i.a", tags->getCurrent());
  // Return in the field adds as well.
  type("p.i.c");
  XtCallCallbacks(tags->tagField(), XmNactivateCallback, nullptr);
  EXPECT_EQ("p.i.c", tags->getCurrent());
}

TEST_F(FileListTagsTest, DeleteAndReplaceKeepOneSelection) {
  struct Case {
    Items before;
    int selected;  // 0: none
    const char* button;
    const char* field;
    Items after;
    int selectedAfter;
  } cases[] = {
      {{"a", "b", "c"}, 3, "deletePushButton", "", {"a", "b"}, 2},
      {{"a", "b", "c"}, 1, "deletePushButton", "", {"b", "c"}, 1},
      {{"a", "b", "c"}, 2, "deletePushButton", "", {"a", "c"}, 1},
      {{"a"}, 1, "deletePushButton", "", {}, 0},
      {{"a", "b"}, 1, "deletePushButton", "", {"b"}, 1},
      {{"a", "b"}, 2, "deletePushButton", "", {"a"}, 1},
      {{"a", "b"}, 0, "deletePushButton", "", {"a", "b"}, 0},
      {{"a", "b", "c"}, 2, "replacePushButton", "x", {"a", "x", "c"}, 2},
      {{"a", "b", "c"}, 2, "replacePushButton", "b", {"a", "b", "c"}, 2},
      {{"a", "b", "c"}, 1, "replacePushButton", "c", {"b", "c"}, 2},
      {{"a", "b", "c"}, 3, "replacePushButton", "a", {"a", "b"}, 1},
      {{"a", "b", "c"}, 2, "replacePushButton", "", {"a", "b", "c"}, 2},
      {{"a", "b"}, 0, "replacePushButton", "x", {"a", "b"}, 0},
  };
  for (const Case& c : cases) {
    std::string what = std::string(c.button) + " at " + std::to_string(c.selected);
    fill(c.before);
    XmListDeselectAllItems(tags->tagsList());
    if (c.selected) XmListSelectPos(tags->tagsList(), c.selected, False);
    type(c.field);
    press(c.button);
    EXPECT_EQ(c.after, tags->items()) << what;
    EXPECT_EQ(c.selectedAfter, tags->selectedPosition()) << what;
  }
}

TEST_F(FileListTagsTest, RefreshPutsTheIdbsTagsFirstAndTheFirstInTheField) {
  TempDir dir;
  ASSERT_TRUE(fileList->open(dir.write("a.idb",
                                       "f 0644 root sys a a p.sw.z\n"
                                       "f 0644 root sys b b p.sw.base\n"
                                       "f 0644 root sys c c p.sw.z\n")).ok());
  spec->defaultGraph();
  type("leftover");
  tags->refresh();
  EXPECT_EQ((Items{"p.sw.z", "p.sw.base", "my_product.sw.base", "my_product.sw.optional",
                   "my_product.man.manpages", "my_product.man.relnotes",
                   "my_product.books.userguide"}),
            tags->items());
  EXPECT_EQ(1, tags->selectedPosition());
  EXPECT_EQ("p.sw.z", tags->fieldText());

  // setCurrent scrolls the tag to the middle; an unknown tag to the top.
  int visible = 0;
  XtVaGetValues(tags->tagsList(), XmNvisibleItemCount, &visible, nullptr);
  for (int i = 0; i < 30; ++i) tags->add("t" + std::to_string(i));
  tags->setCurrent("t20");
  EXPECT_EQ("t20", tags->getCurrent());
  EXPECT_EQ(28 - visible / 2, tags->topPosition());
  tags->setCurrent("nowhere");
  EXPECT_EQ(1, tags->topPosition());
  tags->setCurrent("p.sw.base");
  EXPECT_EQ(1, tags->topPosition());
}

TEST_F(FileListTagsTest, AssignNeedsRecordsAndATagAndIsOneUndoStep) {
  TempDir dir;
  ASSERT_TRUE(fileList->open(dir.write("a.idb",
                                       "f 0644 root sys a a p.sw.a\n"
                                       "f 0644 root sys b b p.sw.a\n"
                                       "f 0644 root sys c c p.sw.c\n")).ok());
  fileList->setView(FileListModel::kTagView);
  tags->refresh();
  press("arrowButton");
  EXPECT_EQ(Items{FileListTags::kNoEntrySelected}, reporter.texts("error"));

  fileList->setSelectedPositions({1, 3});
  XmListDeselectAllItems(tags->tagsList());
  reporter.clear();
  press("arrowButton");
  EXPECT_EQ(Items{FileListTags::kNoTagSelected}, reporter.texts("error"));
  EXPECT_EQ((Items{"p.sw.a", "p.sw.a", "p.sw.c"}), recordTags());

  tags->add("p.sw.new");
  reporter.clear();
  press("arrowButton");
  EXPECT_TRUE(reporter.texts("error").empty());
  EXPECT_EQ((Items{"p.sw.new", "p.sw.a", "p.sw.new"}), recordTags());
  fileList->undo();
  EXPECT_EQ((Items{"p.sw.a", "p.sw.a", "p.sw.c"}), recordTags());
}

TEST_F(FileListTagsTest, BrowseFillsTheFieldAndDoubleClickSelectsRecords) {
  TempDir dir;
  ASSERT_TRUE(fileList->open(dir.write("a.idb",
                                       "f 0644 root sys a a p.sw.a\n"
                                       "f 0644 root sys b b p.sw.b\n"
                                       "f 0644 root sys c c p.sw.a\n")).ok());
  tags->refresh();
  XmListSelectPos(tags->tagsList(), 2, True);
  EXPECT_EQ("p.sw.b", tags->fieldText());
  EXPECT_EQ(XmTextFieldGetLastPosition(tags->tagField()),
            XmTextFieldGetInsertionPosition(tags->tagField()));

  XmString item = XmStringCreateLocalized(const_cast<char*>("p.sw.a"));
  XmListCallbackStruct cbs{};
  cbs.reason = XmCR_DEFAULT_ACTION;
  cbs.item = item;
  cbs.item_position = 1;
  XtCallCallbacks(tags->tagsList(), XmNdefaultActionCallback, &cbs);
  XmStringFree(item);
  EXPECT_EQ((std::vector<int>{1, 3}), fileList->selectedPositions());
}

}  // namespace
