#include "filelist/FileList.h"

#include <Xm/Label.h>
#include <Xm/TextF.h>

#include <utility>
#include <vector>

#include "ov/OvList.h"
#include "filelist/FileListModel.h"
#include "yr/YrApp.h"
#include "yr/YrFileSelectionDialog.h"

FileList::FileList(const char* name, Widget parent, Reporter& reporter,
                   std::function<int()> currentView)
    : FileListUI(name, parent),
      _currentView(std::move(currentView)),
      _busy(baseWidget()),
      _model(std::make_unique<FileListModel>(reporter)),
      _listView(_fileListWidget, *this, *this) {
  _model->setDisplay(this);
  _model->setFileNamePrompt(this);
  _model->setBusyIndicator(&_busy);
  fileNameChanged(_model->fileNameLabel());
}

FileList::~FileList() {
  _model->setDisplay(nullptr);
  _model->setFileNamePrompt(nullptr);
  _model->setBusyIndicator(nullptr);
}

// ---------------------------------------------------------------------------
// The idb menu entries
// ---------------------------------------------------------------------------

void FileList::clear() { _model->clear(); }

int FileList::abandonChanges() { return _model->abandonChanges() ? 1 : 0; }

int FileList::open(const char* fileName) {
  return _model->open(fileName ? fileName : "").ok() ? 1 : 0;
}

int FileList::read(const char* fileName) {
  return _model->appendFile(fileName ? fileName : "").ok() ? 1 : 0;
}

int FileList::save(const char* fileName) { return _model->save(fileName).ok() ? 1 : 0; }

int FileList::recordCount() { return _model->idb().count(); }

int FileList::showOpenBrowser() { return _model->showOpenBrowser() ? 1 : 0; }

int FileList::showReadBrowser() { return _model->showReadBrowser() ? 1 : 0; }

int FileList::showSaveBrowser() { return _model->showSaveBrowser() ? 1 : 0; }

void FileList::refresh() {
  _model->setView(_currentView());
  _model->refresh();
}

// ---------------------------------------------------------------------------
// The model's display and prompt
// ---------------------------------------------------------------------------

void FileList::linesChanged() { _listView.contentsChanged(); }

void FileList::selectionChanged() { _listView.selectionChanged(); }

void FileList::showLastLine() { _listView.showLast(); }

void FileList::fileNameChanged(const std::string& label) {
  XmString text = XmStringCreateLocalized(const_cast<char*>(label.c_str()));
  XtVaSetValues(_label, XmNlabelString, text, nullptr);
  XmStringFree(text);
}

bool FileList::askFileName(const std::string& title, const std::string& filter,
                           const std::string& proposed, std::string* chosen) {
  YrFileSelectionDialog* dialog = getTheFileSelectionDialog();
  const bool ok = dialog->postAndWait(title.c_str(), filter.c_str(), proposed.c_str(), chosen) ==
                  YrDialogManager::Ok;
  // Motif leaves a file selection dialog up after OK or Cancel, and while
  // it stays up (application modal) the rest of the program takes no input.
  dialog->unpost();
  return ok;
}

// ---------------------------------------------------------------------------
// Widget callbacks
// ---------------------------------------------------------------------------

// The filter runs when the field is activated, not when its text changes;
// the buttons put their expression there and run it, as Return would.
void FileList::allPushButton(Widget w, XtPointer callData) {
  XmTextFieldSetString(_selectionTextField, const_cast<char*>(FileListModel::kSelectAllExpression));
  selectionTextField(w, callData);
}

void FileList::nonePushButton(Widget w, XtPointer callData) {
  XmTextFieldSetString(_selectionTextField,
                       const_cast<char*>(FileListModel::kSelectNoneExpression));
  selectionTextField(w, callData);
}

void FileList::selectionTextField(Widget, XtPointer) {
  char* text = XmTextFieldGetString(_selectionTextField);
  std::string expression = text ? text : "";
  XtFree(text);
  _model->selectMatching(expression);
}

void FileList::removePushButton(Widget, XtPointer) { _model->removeSelected(); }

void FileList::undoPushButton(Widget, XtPointer) { _model->undo(); }

void FileList::defaultAction(Widget, XtPointer callData) {
  if (callData) _listView.handle(*static_cast<OvListCallbackStruct*>(callData));
}

// ---------------------------------------------------------------------------
// The list's rows and gestures
// ---------------------------------------------------------------------------

int FileList::count() const { return _model->lineCount(); }

std::string_view FileList::text(int position) const { return _model->line(position); }

bool FileList::isSelected(int position) const { return _model->isSelected(position); }

void FileList::activate(int position) { _model->showCurrent(position); }

void FileList::selectOne(int position) { _model->selectOne(position); }

void FileList::toggle(int position) { _model->toggleSelected(position); }

void FileList::selectRange(int first, int last) { _model->selectRange(first, last); }

void FileList::setRange(int first, int last, bool on) { _model->setRangeSelected(first, last, on); }

void FileList::selectAll() { _model->selectAll(); }

void FileList::deselectAll() { _model->deselectAll(); }
