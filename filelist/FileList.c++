#include "filelist/FileList.h"

#include <Xm/Label.h>
#include <Xm/List.h>
#include <Xm/TextF.h>

#include <vector>

#include "app/View.h"
#include "filelist/FileListModel.h"
#include "yr/YrApp.h"
#include "yr/YrFileSelectionDialog.h"

FileList::FileList(const char* name, Widget parent, View& view)
    : FileListUI(name, parent),
      _view(view),
      _model(std::make_unique<FileListModel>(view.reporter())),
      _listView(_fileList) {
  _model->setDisplay(this);
  _model->setFileNamePrompt(this);
  _model->setBusyIndicator(this);
  // The user's own selection goes into the model, which holds the
  // selection every edit works on.
  XtAddCallback(_fileList, XmNextendedSelectionCallback, &FileList::listSelectionCallback, this);
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

int FileList::open(const char* fileName) { return _model->open(fileName ? fileName : "") ? 1 : 0; }

int FileList::read(const char* fileName) { return _model->read(fileName ? fileName : "") ? 1 : 0; }

int FileList::save(const char* fileName) { return _model->save(fileName) ? 1 : 0; }

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

void FileList::linesChanged() {
  const FileListModel& model = *_model;
  _listView.setItems(model.lineCount(), [&model](int p) { return model.line(p); });
  _listView.setSelection(model.selectedPositions());
}

void FileList::selectionChanged() {
  // A change that came from the list is already shown there.
  if (!_selectionFromList) _listView.setSelection(_model->selectedPositions());
}

void FileList::showLastLine() { _listView.showLast(); }

void FileList::fileNameChanged(const std::string& label) {
  XmString text = XmStringCreateLocalized(const_cast<char*>(label.c_str()));
  XtVaSetValues(_label, XmNlabelString, text, nullptr);
  XmStringFree(text);
}

bool FileList::askFileName(const std::string& title, const std::string& filter,
                           const std::string& proposed, std::string* chosen) {
  return getTheFileSelectionDialog()->postAndWait(title.c_str(), filter.c_str(),
                                                  proposed.c_str(), chosen) ==
         YrDialogManager::Ok;
}

void FileList::busy() {
  if (YrApp* app = YrApp::theApp()) app->busy();
}

void FileList::notBusy() {
  if (YrApp* app = YrApp::theApp()) app->notBusy();
}

// ---------------------------------------------------------------------------
// Widget callbacks
// ---------------------------------------------------------------------------

void FileList::allPushButton(Widget, XtPointer) {
  XmTextFieldSetString(_selectionTextField, const_cast<char*>(FileListModel::kSelectAllExpression));
}

void FileList::nonePushButton(Widget, XtPointer) {
  XmTextFieldSetString(_selectionTextField,
                       const_cast<char*>(FileListModel::kSelectNoneExpression));
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
  auto* cbs = static_cast<XmListCallbackStruct*>(callData);
  if (cbs) _model->showCurrent(cbs->item_position);
}

void FileList::listSelectionCallback(Widget, XtPointer clientData, XtPointer callData) {
  static_cast<FileList*>(clientData)->listSelection(callData);
}

void FileList::listSelection(XtPointer callData) {
  auto* cbs = static_cast<XmListCallbackStruct*>(callData);
  std::vector<int> positions;
  if (cbs && cbs->selected_item_positions)
    positions.assign(cbs->selected_item_positions,
                     cbs->selected_item_positions + cbs->selected_item_count);
  _selectionFromList = true;
  _model->setSelectedPositions(positions);
  _selectionFromList = false;
}
