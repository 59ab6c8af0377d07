// FileList: the panel of the idb being edited.  The list shows the file
// list model's lines for the current tab and mirrors its selection both
// ways; the filter field, All, None, Delete Selected Items, Undo Last
// Operation and the list's double click act on the model.  The main
// window's idb menu entries arrive here (IdbDocument), and the model reaches
// the user through the reporter it is given, the shared file selection
// dialog and the application's busy state.
#ifndef TAMBLIN_FILELIST_FILELIST_H
#define TAMBLIN_FILELIST_FILELIST_H

#include <functional>
#include <memory>
#include <string>

#include "app/ui/FileListUI.h"
#include "filelist/FileListDisplay.h"
#include "filelist/FileNamePrompt.h"
#include "filelist/IdbDocument.h"
#include "filelist/ListView.h"
#include "yr/YrBusyIndicator.h"

class FileListModel;
class Reporter;

class FileList : public FileListUI,
                 public IdbDocument,
                 public FileListDisplay,
                 public FileNamePrompt,
                 public ListView::Source,
                 public ListView::Gestures {
 public:
  /// reporter must outlive the panel; currentView tells which tab (0 to 4)
  /// the lines are for.
  FileList(const char* name, Widget parent, Reporter& reporter,
           std::function<int()> currentView);
  ~FileList() override;
  const char* className() const override { return "FileList"; }

  FileListModel& model() { return *_model; }
  ListView& listView() { return _listView; }
  /// The model's busy state: the application's, with this panel's window
  /// drawn again during long work.
  BusyIndicator& busyIndicator() { return _busy; }

  // The idb menu entries.
  void clear() override;
  int abandonChanges() override;
  int open(const char* fileName) override;
  /// Appends fileName's records.
  int read(const char* fileName);
  int showOpenBrowser() override;
  int showReadBrowser() override;
  int showSaveBrowser() override;
  int save(const char* fileName) override;
  int recordCount() override;
  /// Lines for the view's current tab.
  void refresh() override;

  // What the model shows through the panel.
  void linesChanged() override;
  void selectionChanged() override;
  void showLastLine() override;
  void fileNameChanged(const std::string& label) override;
  bool askFileName(const std::string& title, const std::string& filter,
                   const std::string& proposed, std::string* chosen) override;

 protected:
  void allPushButton(Widget, XtPointer callData) override;
  void nonePushButton(Widget, XtPointer callData) override;
  void selectionTextField(Widget, XtPointer callData) override;
  void removePushButton(Widget, XtPointer callData) override;
  void undoPushButton(Widget, XtPointer callData) override;
  void defaultAction(Widget, XtPointer callData) override;

 private:
  // The list's rows and what the user does to them, straight to the model.
  int count() const override;
  std::string_view text(int position) const override;
  bool isSelected(int position) const override;
  void activate(int position) override;
  void selectOne(int position) override;
  void toggle(int position) override;
  void selectRange(int first, int last) override;
  void setRange(int first, int last, bool on) override;
  void selectAll() override;
  void deselectAll() override;

  std::function<int()> _currentView;
  YrBusyIndicator _busy;
  std::unique_ptr<FileListModel> _model;
  ListView _listView;
};

#endif
