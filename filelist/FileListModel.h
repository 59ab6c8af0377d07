// FileListModel: the idb being edited, as the file list shows it.
//
// Holds the edited idb and its one-level undo copy, the source and
// destination roots, the lines of the list for the tab that is showing and
// the set of selected lines.  Line position p (counted from 1) is record p-1
// and idb item number p.  Every edit works on the selected positions, so the
// selection is the program's notion of "the files being edited"; the list
// only shows lines and selection as it draws them (FileListDisplay).
//
// Everything the user is told goes through the Reporter given at
// construction: dialogs (error, warning, question) and message-log lines.
// The texts are the program's own and must not change.  The panels around
// the list are reached through small optional partner interfaces; a null
// partner is simply not told.
//
// Operations that can refuse return false (or an empty optional) and leave
// the idb, its name and the roots as they were.
#ifndef TAMBLIN_FILELIST_FILELISTMODEL_H
#define TAMBLIN_FILELIST_FILELISTMODEL_H

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "filelist/RowSelection.h"
#include "idb/Idb.h"
#include "util/Outcome.h"

class AddFilesPartner;
class AttrsPartner;
class BuildPartner;
class BusyIndicator;
class FileListDisplay;
class FileNamePrompt;
class PermsPartner;
class Reporter;
class SpecGraphPartner;
class StringSet;
class TagsPartner;

class FileListModel {
 public:
  /// The tabs of the main window, in order; the list's lines depend on it.
  enum ViewNumber {
    kHierarchyView = 0,    // "Create Product Hierarchy": the list is left alone
    kTagView = 1,          // "Tag Files": tag, source path
    kPermsView = 2,        // "Edit Permissions & Destinations"
    kAttributesView = 3,   // "Add Attributes": destination and attributes
    kBuildView = 4,        // "Build Product": the whole idb line
  };

  /// What the "All" and "None" buttons put into the selection field.
  static const char* const kSelectAllExpression;   // ".*"
  static const char* const kSelectNoneExpression;  // "^$"

  /// The source root starts as the current directory, the destination root
  /// unset, the view at kHierarchyView; reporter must outlive the model.
  explicit FileListModel(Reporter& reporter);
  ~FileListModel();
  FileListModel(const FileListModel&) = delete;
  FileListModel& operator=(const FileListModel&) = delete;

  /// One step that "Undo Last Operation" takes back: the undo copy is taken
  /// as the outermost Edit begins and the lines are refreshed once as it
  /// ends.  Edits begun meanwhile (the model's own, when a panel's Assign
  /// makes several) join that step.  Every change the user can undo runs
  /// inside one, so none can forget the copy or take a second one halfway.
  class Edit {
   public:
    explicit Edit(FileListModel& model);
    ~Edit();
    Edit(const Edit&) = delete;
    Edit& operator=(const Edit&) = delete;

   private:
    FileListModel& _model;
  };

  // ---- partners (not owned; null = absent) -------------------------------
  void setAddFilesPartner(AddFilesPartner* p) { _addPanel = p; }
  void setTagsPartner(TagsPartner* p) { _tagsPanel = p; }
  void setPermsPartner(PermsPartner* p) { _permsPanel = p; }
  void setAttrsPartner(AttrsPartner* p) { _attrsPanel = p; }
  void setBuildPartner(BuildPartner* p) { _buildPanel = p; }
  void setSpecGraphPartner(SpecGraphPartner* p) { _specGraph = p; }
  void setFileNamePrompt(FileNamePrompt* p) { _fileNamePrompt = p; }
  void setBusyIndicator(BusyIndicator* p) { _busy = p; }
  void setDisplay(FileListDisplay* p) { _display = p; }

  // ---- roots and path mapping --------------------------------------------
  const std::string& sourceRoot() const { return _sourceRoot; }
  /// The destination root, or null while none is set.
  const std::string* destRoot() const { return _destRoot ? &*_destRoot : nullptr; }

  /// Moves the source root to typed (normalized).  When every record is found
  /// under the new root as it stands, the paths are kept; when every record's
  /// file lies under it, the source paths are rewritten relative to it (undo
  /// restores them); otherwise the reading that fails for fewer records is
  /// reported with those records selected, and nothing changes.
  /// Returns the new root, or nothing when refused.
  std::optional<std::string> setSourceRoot(const std::string& typed);
  /// Returns the new (or unchanged) root, or nothing when typed is not a
  /// directory.
  std::optional<std::string> setDestRoot(const std::string& typed);
  /// Take the roots from "SBASE" / "RBASE" at start-up (nothing when unset).
  void initSourceRoot();
  void initDestRoot();

  /// How many records are not found (lstat) under root with their present
  /// source paths.  With report, exactly those are selected and the error
  /// dialog names the count.
  int cantPrependRoot(const std::string& root, bool report);
  /// How many records' files do not lie under root, links resolved.  Every
  /// record counts when some record is missing under the present root.
  int cantStripRoot(const std::string& root, bool report);
  /// Records missing under the present source root; any are selected and
  /// reported.  The count.
  int totalUnfound();
  /// Item numbers (one-based, ascending) of the records not found under root.
  std::vector<int> unfoundItems(const std::string& root) const;
  /// Tells the Add Files, Permissions and Build panels the source root.
  void updateSourceRootFields();
  /// The names under the browsing directory dir that records already use,
  /// as the Add Files panel lists them (directories and links with "/").
  std::unique_ptr<StringSet> srcpathsInDir(const std::string& dir) const;

  // ---- files ---------------------------------------------------------------
  // Each fails with the message it gave the user (message log or dialog),
  // or with an empty message when the user chose no file.
  /// Replaces the idb with file's; a failure leaves the idb untouched.
  Outcome open(const std::string& file);
  /// Appends file's records; a failure restores the idb as it was.
  Outcome appendFile(const std::string& file);
  /// Saves to file, or to the idb's own name when file is null; with no name
  /// at all the FileNamePrompt is asked, proposing "<product>.idb".
  Outcome save(const char* file);
  /// File > Open, Append and SaveAs: ask for a file ("*idb"; append and save
  /// propose "<product>.idb") and open, append or save it.  Open first asks
  /// abandonChanges.  False when refused, cancelled or failed.
  bool showOpenBrowser();
  bool showReadBrowser();
  bool showSaveBrowser();
  /// True when there are no unsaved changes or the user agrees to drop them.
  bool abandonChanges();
  /// Starts a new, empty idb (after abandonChanges agrees).
  void clear();
  void setIdbFileName(const std::string& name);
  const std::string& idbFileName() const { return _idbFileName; }
  /// The label above the list: "Idb File:  name".
  std::string fileNameLabel() const;
  bool modified() const { return _modified; }

  // ---- display and selection -------------------------------------------------
  void setView(int view) { _view = view; }
  int view() const { return _view; }
  /// Reformats every line for the current view and keeps the selected
  /// positions that still exist (edits refresh as their Edit ends; this is
  /// for a change of view).
  void refresh();
  int lineCount() const { return _lineCount; }
  /// Line at one-based position p, as the list shows it (in the format of
  /// the last view refreshed other than the hierarchy).  The text lives
  /// until the next call.
  std::string_view line(int position) const;

  /// Selects exactly the lines (as the current view shows them) that expr
  /// matches; an expression that does not compile rings the bell and keeps
  /// the selection.  Returns false in that case.
  bool selectMatching(const std::string& expr);
  /// Selects exactly the records tagged tag.
  void selectTag(const std::string& tag);
  /// Exactly these positions selected (a pass over every record; the list's
  /// gestures use the operations below).  Positions out of range are ignored.
  void setSelectedPositions(const std::vector<int>& positions);
  void deselectAll();
  // What the list's user does to the selection, one gesture at a time; each
  // costs the rows it names (plus clearing the old selection's span), never
  // a pass over every record.  Positions out of range are ignored.
  /// Only position selected (a click).
  void selectOne(int position);
  /// position flips (a Ctrl-click).
  void toggleSelected(int position);
  /// Only first..last selected (a Shift-click or a drag).
  void selectRange(int first, int last);
  /// first..last become on, the others stay (a Ctrl-drag).
  void setRangeSelected(int first, int last, bool on);
  /// Every line selected (Ctrl+/).
  void selectAll();
  bool isSelected(int position) const;
  std::vector<int> selectedPositions() const;
  int totalSelected() const { return _selected.count(); }
  /// How many selected records are directories.
  int totalDirsSelected() const;

  /// The list's double click on position: hands that record to every panel,
  /// unless some record is missing under the source root (then those are
  /// selected and reported instead).
  void showCurrent(int position);

  // ---- whole-list operations -------------------------------------------------
  /// Adds the files at the absolute paths (under the source root), tagged
  /// with the Tags panel's current tag.  The source root itself adds
  /// nothing; a path outside the root or whose name holds a blank, tab or
  /// newline (which an idb line cannot hold) is skipped with one line in the
  /// message log naming it and why, and the log is shown.
  void add(const std::vector<std::string>& paths);
  /// Removes the selected records ("Delete Selected Items").
  void removeSelected();
  /// Swaps the idb and its undo copy ("Undo Last Operation"); again redoes.
  void undo();
  /// Every record tagged oldTag is tagged newTag.  Not an undo step: it
  /// follows a subsystem's rename in the hierarchy, which undo leaves alone.
  void fixTag(const std::string& oldTag, const std::string& newTag);
  /// "Tags in File List": every record's tag, in record order, once.
  std::unique_ptr<StringSet> getTags() const;
  /// One "tag srcpath" line per record, for the Create Patch dialog.
  std::vector<std::string> getList() const;
  /// The getList line of one-based item, made in buffer (a long list asks
  /// for the lines it shows, not for all of them).
  std::string_view listLine(int item, std::string& buffer) const;
  /// Keeps only the items numbered in keep (one-based, ascending), re-tags
  /// them into the patch product patchName and drops every other product.
  void createPatch(const std::string& patchName, const std::vector<int>& keep);

  // ---- edits of the selected records (each its own Edit unless inside one) ---
  // Typed owners, groups and paths are deblanked first (blanks, tabs and
  // newlines dropped), so that no field holds a separator; an owner or group
  // left empty changes nothing.
  void replaceMode(unsigned long mode);
  void replaceOwner(const std::string& owner);
  void replaceGroup(const std::string& group);
  void replaceSourceDir(const std::string& dir);
  void replaceSourceFile(const std::string& name);
  void replaceDestDir(const std::string& dir);
  void replaceDestFile(const std::string& name);
  void replaceTag(const std::string& tag);
  void addAttribute(const std::string& attr);
  void addDirsAttribute(const std::string& attr);
  /// Drops the user's attributes; those derived from the file ("symval(",
  /// "dev(") stay.
  void deleteAttributes();

  /// The idb being edited (read-only; edits go through the model).
  const Idb& idb() const { return *_idb; }

 private:
  /// The undo copy becomes a copy of the idb.
  void backup();
  std::string join(const std::string& root, const std::string& relative) const;
  void rewriteSourcePaths(const std::string& newRoot);
  void formatLine(int index, std::string& out) const;
  /// Whether every line of file reads as a record (false too when it cannot
  /// be read), holding no more than a slice of it at a time.
  bool fileReadsCleanly(const std::string& file) const;
  /// Runs work, keeping the window drawn meanwhile when there is a busy
  /// indicator; with hideLines the lines read as empty until it ends.
  void whileRedrawing(const std::function<void()>& work, bool hideLines);
  void reportNotFound(int count, int total, const std::string& root, bool noneFound);
  void selectOnly(const std::vector<char>& flags);
  void resizeSelection();
  void notifySelection();
  void refreshPartners();
  void removeItems(const std::vector<char>& doomed);
  std::vector<const std::string*> storablePaths(const std::vector<std::string>& paths);
  template <class Change>
  bool editSelected(Change change);
  bool askFileName(const char* title, bool proposeProduct, std::string* chosen);
  /// Warns that file is not a regular file; the failure to return.
  Outcome refuseNotRegular(const std::string& file);

  Reporter& _reporter;
  AddFilesPartner* _addPanel = nullptr;
  TagsPartner* _tagsPanel = nullptr;
  PermsPartner* _permsPanel = nullptr;
  AttrsPartner* _attrsPanel = nullptr;
  BuildPartner* _buildPanel = nullptr;
  SpecGraphPartner* _specGraph = nullptr;
  FileNamePrompt* _fileNamePrompt = nullptr;
  BusyIndicator* _busy = nullptr;
  FileListDisplay* _display = nullptr;

  std::unique_ptr<Idb> _idb;
  std::unique_ptr<Idb> _backup;
  std::string _sourceRoot;
  std::optional<std::string> _destRoot;
  std::string _idbFileName;
  bool _modified = false;
  // How many Edits are open; the outermost takes the copy and refreshes.
  int _editDepth = 0;
  int _view = kHierarchyView;

  // The view whose lines the list shows (none before the first refresh) and
  // how many it had then; a line is made from its record when asked for.
  int _shownView = kHierarchyView;
  int _lineCount = 0;
  mutable std::string _lineBuffer;
  // Set while a helper thread works on the idb itself.
  bool _linesHidden = false;
  // One flag per record position (index p-1).
  RowSelection _selected;
};

#endif
