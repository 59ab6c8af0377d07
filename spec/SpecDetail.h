// SpecDetail: the node detail panel of the "Create Product Hierarchy" tab.
// It shows the fields of the selected node in the form of its level and,
// on Assign, writes the edits back.  Renaming a node renames the tags of
// the subsystems beneath it: in their mappings (when a mapping still is the
// old tag) and in the idb records.
//
// The hierarchy, the file list and the tags panel are connected after
// construction; the file list and the tags panel may stay null.
#ifndef TAMBLIN_SPEC_SPECDETAIL_H
#define TAMBLIN_SPEC_SPECDETAIL_H

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "app/ui/SpecDetailUI.h"

class FileListModel;
class FileListTags;
class Reporter;
class SpecGraph;
class SpecNode;
enum class SpecField;

class SpecDetail : public SpecDetailUI {
 public:
  static const char* const kUnquotedBlank;
  static const char* const kUnmatchedQuote;
  static const char* const kNoNodeSelected;

  /// reporter must outlive the panel.
  SpecDetail(const char* name, Widget parent, Reporter& reporter);
  const char* className() const override { return "SpecDetail"; }

  /// The hierarchy whose nodes it edits, the idb a renamed node retags and
  /// the tags panel that offers the new tags; all must outlive the panel.
  void connect(SpecGraph& specGraph, FileListModel& fileList, FileListTags& tags) {
    _specGraph = &specGraph;
    _fileListModel = &fileList;
    _tagsPanel = &tags;
  }

  SpecNode* current() const { return _current; }
  /// Shows node (null: none) in the form of its level.
  void setCurrent(SpecNode* node);
  void refresh();
  /// Fills the order list with the images of the current node's product.
  void refreshOrderList();
  /// Whether text may be assigned as a description; posts the reason when
  /// it may not.
  int okDescription(const std::string& text);
  /// Renames the part at level (1 product, 2 image, 3 subsystem) of the
  /// subsystem's tag to newName in its mapping and in the idb.
  void fixMapping(SpecNode* subsys, int level, const std::string& newName);

  /// The form shown now (one of the four).
  Widget shownForm() const;
  /// The order list's items, for the tests and the tools.
  std::vector<std::string> orderItems() const;

 protected:
  void applyArrowButton(Widget, XtPointer callData) override;
  void browseSelection(Widget, XtPointer callData) override;
  void incompatPushButton(Widget, XtPointer callData) override;
  void prereqPushButton(Widget, XtPointer callData) override;
  void replacesPushButton(Widget, XtPointer callData) override;

 private:
  void showForm(Widget form);
  void fillSubsystem();
  bool writableFields(std::initializer_list<std::pair<SpecField, Widget>> fields,
                      std::vector<std::string>* values);
  // Each returns false when a value was refused (nothing changed).
  bool assignSubsystem();
  bool assignImage();
  bool assignProduct();
  void renamed(const std::string& name);
  void insertRule(const char* format);

  Reporter& _reporter;
  SpecGraph* _specGraph = nullptr;
  FileListModel* _fileListModel = nullptr;
  FileListTags* _tagsPanel = nullptr;
  SpecNode* _current = nullptr;
};

#endif
