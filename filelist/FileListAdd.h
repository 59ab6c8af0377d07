// FileListAdd: the source-tree browser of the "Tag Files" tab.
//
// Lists one directory of the source tree (the browsing directory), shows in
// the bold rendition tagged "ALREADY_ADDED_CHARSET" the entries the idb
// already holds, selects entries by hand or by a filter expression and hands
// the selection, whole directories included, to the file list's add.  The
// idb is changed only through the file list (FileListModel).
//
// The browsing directory always lies at or below the source root once it is
// set.  Marks are derived state: recomputed by every directory read and every
// refresh, set by Add, cleared by unmark.
#ifndef TAMBLIN_FILELIST_FILELISTADD_H
#define TAMBLIN_FILELIST_FILELISTADD_H

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "app/ui/FileListAddUI.h"
#include "filelist/AddFilesPartner.h"
#include "filelist/DirectorySearch.h"

class FileListModel;
class Reporter;
class StringSet;

class FileListAdd : public FileListAddUI, public AddFilesPartner {
 public:
  /// The rendition tag of marked entries.
  static const char* const kAddedTag;

  FileListAdd(const char* name, Widget parent);
  ~FileListAdd() override;
  const char* className() const override { return "FileListAdd"; }

  /// The shared file list and where messages go (neither owned).
  void connect(FileListModel& fileList, Reporter& reporter);

  /// Moves the browser to the directory text names (relative texts from the
  /// current directory, "~" the current directory itself); null re-reads
  /// the browsing directory.  Paths that are not readable directories are
  /// ignored; those outside the source root refused with a message.
  void setBrowsingDirectory(const char* text);
  /// The browsing directory ("" until first set).
  std::string browsingDirectory() const { return _browsingDirectory.value_or(""); }

  // AddFilesPartner
  void newSourceRootDirectory(const std::string& root) override;
  void unmark(const std::string& srcpath) override;
  void refresh() override;
  void setCurrent(const std::string& fullPath) override;

  /// Marks the entry shown as name.
  void mark(const std::string& name);
  /// 1-based position of the entry name (or name "/"), or 0 with a message.
  int getEntryPos(const std::string& name);
  /// The text of the entry at 1-based position pos as the list holds it,
  /// and whether it carries the mark.
  std::string getEntryText(int pos, bool* marked) const;
  bool isSubdir(const std::string& root, const std::string& dir);

  /// The Add arrow: the selected entries, directories with everything below.
  void addSelectedFiles();
  /// The directory chooser.
  void showOpenBrowser();

 protected:
  void allPushButton(Widget, XtPointer) override;
  void arrowButton(Widget, XtPointer) override;
  void defaultAction(Widget, XtPointer) override;
  void directoryTextField(Widget, XtPointer) override;
  void nonePushButton(Widget, XtPointer) override;
  void selectionTextField(Widget, XtPointer) override;

 private:
  void addBoldRendition();
  void addBrowserMenu();
  void showEntries(const StringSet& names, const StringSet& added);
  void replaceEntry(int pos, const std::string& text, bool marked);
  void selectPositions(const std::vector<int>& positions);
  std::vector<int> selectedPositions() const;
  bool addDir(const std::string& dir, StringSet& set, int& count);
  bool searchInterrupted(int count);
  void log(const std::string& line);
  void error(const std::string& text);
  static void chooserOk(Widget, XtPointer, XtPointer);
  static void chooserCancel(Widget, XtPointer, XtPointer);
  static void chooseDirectory(Widget, XtPointer, XtPointer);
  static void postBrowserMenu(Widget, XtPointer, XEvent*, Boolean*);

  std::optional<std::string> _browsingDirectory;
  FileListModel* _model = nullptr;
  Reporter* _reporter = nullptr;
  Widget _chooser = nullptr;
  // What the list shows, entry by entry, so that finding an entry by name
  // does not scan the list.
  std::vector<std::string> _names;
  std::vector<char> _marked;
  std::unordered_map<std::string, int> _positions;
};

#endif
