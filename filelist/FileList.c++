#include "filelist/FileList.h"

#include <Xm/Label.h>
#include <Xm/TextF.h>

#include <vector>

#include "ov/OvList.h"
#include "app/View.h"
#include "filelist/FileListModel.h"
#include "yr/YrApp.h"
#include "yr/YrFileSelectionDialog.h"

FileList::FileList(const char* name, Widget parent, View& view)
    : FileListUI(name, parent),
      _view(view),
      _model(std::make_unique<FileListModel>(view.reporter())),
      _listView(_fileList, *this, *this) {
  _model->setDisplay(this);
  _model->setFileNamePrompt(this);
  _model->setBusyIndicator(this);
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
  _model->setView(_view.currentView());
  _model->refresh();
}

// ---------------------------------------------------------------------------
// The model's display, prompt and busy state
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

// Opening, saving and checking a large idb take a while without a return
// to the event loop: what is waiting to be drawn (the place a dialog just
// left, a pressed button) is drawn before the work starts, again every so
// often during it (stillBusy), and the list as soon as it ends.
void FileList::busy() {
  if (YrApp* app = YrApp::theApp()) app->busy();
  if (XtIsRealized(baseWidget())) XmUpdateDisplay(baseWidget());
}

void FileList::notBusy() {
  if (YrApp* app = YrApp::theApp()) app->notBusy();
  if (XtIsRealized(baseWidget())) XmUpdateDisplay(baseWidget());
}

// Called every so often during that work: what was covered and uncovered
// meanwhile is drawn again.  Only exposures are taken; input waits.
void FileList::stillBusy() {
  if (XtIsRealized(baseWidget())) XmUpdateDisplay(baseWidget());
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
