#include "filelist/FileListPerms.h"

#include <Xm/TextF.h>

#include "filelist/FileListModel.h"
#include "filelist/PanelFields.h"
#include "filelist/PermsValues.h"
#include "util/BusyScope.h"
#include "util/Reporter.h"
#include "util/XmUtils.h"
#include "yr/YrBusyIndicator.h"
#include "yr/YrDialogManager.h"

namespace {

const char* const kNoSelection =
    "You haven't selected any idb entries to assign too.\nSelect items in the list on the right, "
    "then press Assign.\nDepress <Ctrl> when you click to select disjoint items.\nIf there are "
    "none, press <Tag Files> to add some first.";

}  // namespace

FileListPerms::FileListPerms(const char* name, Widget parent) : FileListPermsUI(name, parent) {
  permsClear();
}

void FileListPerms::connect(FileListModel& fileList, Reporter& reporter) {
  _model = &fileList;
  _reporter = &reporter;
  showRoots();
}

void FileListPerms::error(const std::string& text) {
  if (_reporter)
    _reporter->error(text);
  else
    getTheErrorDialog()->post(text.c_str());
}

void FileListPerms::showRoots() {
  if (!_model) return;
  setSourceRoot(_model->sourceRoot());
  const std::string* dest = _model->destRoot();
  setDestRoot(dest ? *dest : std::string());
}

void FileListPerms::setSourceRoot(const std::string& root) {
  setFieldText(_sourceRootTextField, root);
}

void FileListPerms::setDestRoot(const std::string& root) { setFieldText(_destRootTextField, root); }

bool FileListPerms::isNonNullTextField(Widget w) { return !fieldText(w).empty(); }

void FileListPerms::permsClear() {
  for (Widget label : {_modeLabel1, _ownerLabel1, _groupLabel1}) setLabelText(label, "");
  for (Widget field :
       {_modeTextField, _ownerTextField, _groupTextField, _destDirTextField, _destFileTextField})
    XmTextFieldSetString(field, const_cast<char*>(""));
}

void FileListPerms::modeTextField(Widget, XtPointer) {
  deblankTextField(_modeTextField);
  unsigned long mode = PermsValues::parseMode(fieldText(_modeTextField));
  setFieldText(_modeTextField, PermsValues::formatMode(mode));
  setLabelText(_modeLabel1, PermsValues::pmode(mode));
  deblankTextField(_modeTextField);
}

void FileListPerms::ownerTextField(Widget, XtPointer) {
  deblankTextField(_ownerTextField);
  PermsValues::Identity owner = PermsValues::lookUpOwner(fieldText(_ownerTextField));
  setLabelText(_ownerLabel1, std::to_string(owner.id));
  deblankTextField(_ownerTextField);
  setFieldText(_ownerTextField, owner.name);
}

void FileListPerms::groupTextField(Widget, XtPointer) {
  deblankTextField(_groupTextField);
  PermsValues::Identity group = PermsValues::lookUpGroup(fieldText(_groupTextField));
  setLabelText(_groupLabel1, std::to_string(group.id));
  setFieldText(_groupTextField, group.name);
}

void FileListPerms::destDirTextField(Widget w, XtPointer) { deblankTextField(w); }
void FileListPerms::destFileTextField(Widget w, XtPointer) { deblankTextField(w); }
void FileListPerms::destRootTextField(Widget w, XtPointer) { deblankTextField(w); }
void FileListPerms::sourceRootTextField(Widget w, XtPointer) { deblankTextField(w); }

void FileListPerms::assignArrowButton(Widget, XtPointer) {
  if (!_model || _model->totalSelected() == 0) {
    error(kNoSelection);
    return;
  }
  BusyScope busy(YrBusyIndicator::application());
  FileListModel::Edit edit(*_model);
  // The fields are applied as they stand, without the normalisation of
  // Return, in this fixed order; a refused directory stops everything
  // after it (the undo step has begun all the same).
  if (isNonNullTextField(_destDirTextField)) {
    std::string dir = fieldText(_destDirTextField);
    std::string refusal = PermsValues::checkDestDir(dir);
    if (!refusal.empty()) {
      busy.release();
      error(refusal);
      return;
    }
    _model->replaceDestDir(dir);
  }
  if (isNonNullTextField(_destFileTextField))
    _model->replaceDestFile(fieldText(_destFileTextField));
  if (isNonNullTextField(_modeTextField))
    _model->replaceMode(PermsValues::parseMode(fieldText(_modeTextField)));
  if (isNonNullTextField(_ownerTextField)) _model->replaceOwner(fieldText(_ownerTextField));
  if (isNonNullTextField(_groupTextField)) _model->replaceGroup(fieldText(_groupTextField));
}

void FileListPerms::applyArrowButton(Widget, XtPointer) {
  deblankTextField(_sourceRootTextField);
  if (_model && !_model->setSourceRoot(fieldText(_sourceRootTextField))) {
    setFieldText(_sourceRootTextField, _model->sourceRoot());
    return;
  }
  deblankTextField(_destRootTextField);
  if (_model && !_model->setDestRoot(fieldText(_destRootTextField))) {
    const std::string* dest = _model->destRoot();
    setFieldText(_destRootTextField, dest ? *dest : std::string());
  }
}

void FileListPerms::resetPushButton(Widget, XtPointer) {
  showRoots();
  permsClear();
}

void FileListPerms::setCurrent(const std::string&, const std::string& dstpath, unsigned long mode,
                               const std::string& owner, const std::string& group) {
  PermsValues::Destination dest = PermsValues::splitDestination(dstpath);
  permsClear();
  setFieldText(_destDirTextField, dest.dir);
  setFieldText(_destFileTextField, dest.file);
  char octal[32];
  std::snprintf(octal, sizeof octal, "%lo", mode);
  setFieldText(_modeTextField, octal);
  setFieldText(_ownerTextField, owner);
  setFieldText(_groupTextField, group);
  // As if the user had pressed Return in each: deblanked and normalised.
  for (Widget field : {_destDirTextField, _modeTextField, _ownerTextField, _groupTextField})
    XtCallCallbacks(field, XmNactivateCallback, nullptr);
  showRoots();
}
