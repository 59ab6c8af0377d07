// FileListTags: the Tags panel of the "Tag Files" tab.  Its list holds the
// tags known to the program, each once: those the idb uses (first, in record
// order) and those the product hierarchy defines.  Editing the list never
// touches the idb; Assign gives the selected tag to the selected records.
//
// The tags themselves live in the idb and the hierarchy; the panel keeps no
// other state.  The file list and the hierarchy are connected after
// construction and may stay null (the list then holds what was added).
#ifndef TAMBLIN_FILELIST_FILELISTTAGS_H
#define TAMBLIN_FILELIST_FILELISTTAGS_H

#include <string>
#include <vector>

#include "app/ui/FileListTagsUI.h"
#include "filelist/TagsPartner.h"

class FileListModel;
class Reporter;
class SpecGraphModel;

class FileListTags : public FileListTagsUI, public TagsPartner {
 public:
  /// The message when Assign finds no idb entry selected.
  static const char* const kNoEntrySelected;
  /// The message when Assign finds no tag selected.
  static const char* const kNoTagSelected;

  /// reporter must outlive the panel.
  FileListTags(const char* name, Widget parent, Reporter& reporter);
  const char* className() const override { return "FileListTags"; }

  /// Assigns through fileList and offers specGraph's tags; both must
  /// outlive the panel.
  void connect(FileListModel& fileList, const SpecGraphModel& specGraph) {
    _fileListModel = &fileList;
    _specGraph = &specGraph;
  }

  /// Appends tag, selected and scrolled into view, unless it is empty or
  /// already listed.
  void add(const std::string& tag);
  /// Empties the list and the tag field.
  void deleteAll();
  /// Rebuilds the list: the idb's tags, then the hierarchy's; the first
  /// tag ends up selected and in the tag field.
  void refresh() override;
  /// The selected tag, "?" when there is none.
  std::string getCurrent() override;
  /// Selects tag (if listed) and scrolls it to the middle of the list.
  void setCurrent(const std::string& tag) override;

  /// What the list and the field show, for the tests and the tools.
  std::vector<std::string> items() const;
  /// The selected position (1-based), 0 when none.
  int selectedPosition() const;
  int topPosition() const;
  std::string fieldText() const;
  Widget tagsList() const { return _tagsList; }
  Widget tagField() const { return _selectionTextField; }

 protected:
  void addPushButton(Widget, XtPointer callData) override;
  void arrowButton(Widget, XtPointer callData) override;
  void browseSelection(Widget, XtPointer callData) override;
  void defaultAction(Widget, XtPointer callData) override;
  void deletePushButton(Widget, XtPointer callData) override;
  void replacePushButton(Widget, XtPointer callData) override;
  void selectionTextField(Widget, XtPointer callData) override;
  void singleSelection(Widget, XtPointer callData) override;

 private:
  std::string itemText(int position) const;
  int itemCount() const;
  int positionOf(const std::string& tag) const;
  void selectQuietly(int position);
  void putInField(const std::string& text);

  Reporter& _reporter;
  FileListModel* _fileListModel = nullptr;
  const SpecGraphModel* _specGraph = nullptr;
};

#endif
