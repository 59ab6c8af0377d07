// PatchDialog: File > "Create Patch...".  Lists every entry of the idb,
// proposes a free name for the patch product ("<product>_patch<n>", the
// first n for which no "<product>_patch<n>.spec" exists in the current
// directory) and hands the chosen files to the file list, which builds the
// patch product in the spec and keeps only those files, re-tagged.
//
// A new dialog is made for each use of the menu entry.  The file list and
// the reporter must outlive the dialog.
#ifndef TAMBLIN_APP_PATCHDIALOG_H
#define TAMBLIN_APP_PATCHDIALOG_H

#include <memory>
#include <string>

#include "filelist/ListView.h"
#include "filelist/RowSelection.h"
#include "yr/YrGenericDialog.h"

class FileListModel;
class Reporter;

// The list shows every idb record (a million, it may be), so it is an
// OvList that asks the file list for the lines it draws; the dialog keeps
// the chosen rows itself.
class PatchDialog : public YrGenericDialog, public ListView::Source, public ListView::Gestures {
 public:
  PatchDialog(const char* name, FileListModel& fileList, const std::string& productName,
              Reporter& reporter);
  const char* className() const override { return "PatchDialog"; }

  /// The proposed patch product name for product, looking in the current
  /// directory.
  static std::string proposeName(const std::string& product);

  /// Fallback resource lines (the dialog's texts), null terminated.
  static const char* const _defaultPatchDialogResources[];

  Widget list() const { return _scrolledList; }
  /// The chosen rows (one-based item numbers, ascending).
  std::vector<int> chosen() const { return _chosen.positions(); }
  Widget nameField() const { return _textfield; }

 protected:
  Widget createDialog(Widget parent) override;
  void ok(Widget w, XtPointer callData) override;

 private:
  int count() const override;
  std::string_view text(int position) const override;
  bool isSelected(int position) const override;
  void activate(int) override {}
  void selectOne(int position) override { _chosen.selectOnly(position); }
  void toggle(int position) override { _chosen.toggle(position); }
  void selectRange(int first, int last) override { _chosen.selectOnlyRange(first, last); }
  void setRange(int first, int last, bool on) override { _chosen.setRange(first, last, on); }
  void selectAll() override { _chosen.selectAll(); }
  void deselectAll() override { _chosen.clear(); }

  FileListModel& _fileListModel;
  std::string _productName;
  Reporter& _reporter;
  Widget _form = nullptr;
  Widget _scrolledWindow = nullptr;
  Widget _scrolledList = nullptr;
  Widget _label1 = nullptr;
  Widget _rowcolumn4 = nullptr;
  Widget _label2 = nullptr;
  Widget _label3 = nullptr;
  Widget _label4 = nullptr;
  Widget _label5 = nullptr;
  Widget _rowcolumn1 = nullptr;
  Widget _rowcolumn = nullptr;
  Widget _rowcolumn2 = nullptr;
  Widget _label = nullptr;
  Widget _textfield = nullptr;
  std::unique_ptr<ListView> _listView;
  RowSelection _chosen;
  mutable std::string _lineBuffer;
};

#endif
