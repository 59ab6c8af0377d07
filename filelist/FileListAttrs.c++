#include "filelist/FileListAttrs.h"

#include <Xm/RowColumn.h>
#include <Xm/Text.h>
#include <Xm/ToggleB.h>

#include "filelist/FileListModel.h"
#include "filelist/PanelFields.h"
#include "mach/MachTables.h"
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

MachSelection* loadMachSelection() {
  std::vector<Subgr_Map> subgr;
  std::vector<Mach_Map> mach;
  std::vector<Arch_Map> arch;
  // A table that fails part way keeps the rows read before the failure.
  getMachTables(subgr, mach, arch);
  return new MachSelection(std::move(subgr), std::move(arch));
}

bool isOn(Widget toggle) { return XmToggleButtonGetState(toggle); }

void setState(Widget toggle, bool on) { XmToggleButtonSetState(toggle, on, False); }

}  // namespace

FileListAttrs::FileListAttrs(const char* name, Widget parent)
    : FileListAttrsUI(name, parent), _mach(loadMachSelection()) {
  addToggles();
}

FileListAttrs::~FileListAttrs() = default;

void FileListAttrs::connect(FileListModel& fileList, Reporter& reporter) {
  _model = &fileList;
  _reporter = &reporter;
}

void FileListAttrs::addToggles() {
  const Widget parents[4] = {_attrsCpuBoardRowColumn, _attrsGfxBoardRowColumn,
                             _attrsSubgrRowColumn, _attrsModelRowColumn};
  const XtCallbackProc callbacks[4] = {
      &FileListAttrs::cpuBoardToggleButtonCallback, &FileListAttrs::gfxBoardToggleButtonCallback,
      &FileListAttrs::subgrToggleButtonCallback, &FileListAttrs::modelToggleButtonCallback};
  for (int g = MachSelection::kCpuBoard; g <= MachSelection::kModel; g++) {
    const int i = g - MachSelection::kCpuBoard;
    for (const MachSelection::Toggle& t : _mach->group(g)) {
      Widget w = XtVaCreateManagedWidget(t.name.c_str(), xmToggleButtonWidgetClass, parents[i],
                                         nullptr);
      XmString label = XmStringCreateLocalized(const_cast<char*>(t.name.c_str()));
      XtVaSetValues(w, XmNlabelString, label, nullptr);
      XmStringFree(label);
      XtAddCallback(w, XmNvalueChangedCallback, callbacks[i], this);
      _toggles[i].push_back(w);
    }
  }
}

void FileListAttrs::syncToggles() {
  for (int g = MachSelection::kCpuBoard; g <= MachSelection::kModel; g++) {
    const std::vector<MachSelection::Toggle>& group = _mach->group(g);
    std::vector<Widget>& widgets = _toggles[g - MachSelection::kCpuBoard];
    for (size_t k = 0; k < group.size(); k++) {
      if (isOn(widgets[k]) != group[k].on) setState(widgets[k], group[k].on);
      if (XtIsSensitive(widgets[k]) != group[k].sensitive)
        XtSetSensitive(widgets[k], group[k].sensitive);
    }
  }
}

Widget FileListAttrs::opToggle(int op) const {
  const Widget toggles[] = {_attrsPreOpToggleButton, _attrsPostOpToggleButton,
                            _attrsExitOpToggleButton, _attrsRemoveOpToggleButton};
  return toggles[op];
}

Widget FileListAttrs::opText(int op) const {
  const Widget texts[] = {_attrsPreOpText, _attrsPostOpText, _attrsExitOpText, _attrsRemoveOpText};
  return texts[op];
}

Widget FileListAttrs::flagToggle(int flag) const {
  const Widget toggles[] = {_attrsShadowToggleButton, _attrsNoShareToggleButton,
                            _attrsNoStripToggleButton, _attrsNoRqsToggleButton,
                            _attrsStripDSOToggleButton};
  return toggles[flag];
}

AttrsState FileListAttrs::state() const {
  AttrsState s;
  for (int op = 0; op < AttrsState::kOps; op++) {
    s.opOn[op] = isOn(opToggle(op));
    s.opText[op] = fieldValue(opText(op));
  }
  s.configOn = isOn(_attrsConfigToggleButton);
  Widget shown = nullptr;
  XtVaGetValues(_attrsConfigOptionMenu, XmNmenuHistory, &shown, nullptr);
  s.config = shown == _configNoUpdatePushButton  ? AttrsState::NoUpdate
             : shown == _configSuggestPushButton ? AttrsState::Suggest
                                                 : AttrsState::Update;
  for (int f = 0; f < AttrsState::kFlags; f++) s.flags[f] = isOn(flagToggle(f));
  s.machOn = isOn(_attrsMachToggleButton);
  s.mach = _mach->machPairs();
  return s;
}

// ---- Assign and Clear ------------------------------------------------------------------

void FileListAttrs::attrsAssignArrowButton(Widget, XtPointer) {
  if (!_model || _model->totalSelected() == 0) {
    if (_reporter)
      _reporter->error(kNoSelection);
    else
      getTheErrorDialog()->post(kNoSelection);
    return;
  }
  BusyScope busy(YrBusyIndicator::application());
  FileListModel::Edit edit(*_model);
  _model->deleteAttributes();
  for (const std::string& attr : AttrsText::compose(state())) _model->addAttribute(attr);
}

void FileListAttrs::attrsClear() {
  for (int op = 0; op < AttrsState::kOps; op++) showFieldValue(opText(op), "");
  for (Widget t : {_attrsConfigToggleButton, _attrsExitOpToggleButton, _attrsShadowToggleButton,
                   _attrsNoShareToggleButton, _attrsNoStripToggleButton, _attrsNoRqsToggleButton,
                   _attrsStripDSOToggleButton, _attrsPostOpToggleButton, _attrsPreOpToggleButton,
                   _attrsRemoveOpToggleButton, _attrsMachToggleButton})
    setState(t, false);
  XtVaSetValues(_attrsConfigOptionMenu, XmNmenuHistory, _configUpdatePushButton, nullptr);
  _mach->clear();
  syncToggles();
}

void FileListAttrs::attrsClearPushButton(Widget, XtPointer) { attrsClear(); }

// ---- the software attributes -----------------------------------------------------------

void FileListAttrs::opTextChanged(AttrsState::Op op) {
  setState(opToggle(op), !fieldValue(opText(op)).empty());
}

void FileListAttrs::attrsPreOpText(Widget, XtPointer) { opTextChanged(AttrsState::PreOp); }
void FileListAttrs::attrsPostOpText(Widget, XtPointer) { opTextChanged(AttrsState::PostOp); }
void FileListAttrs::attrsExitOpText(Widget, XtPointer) { opTextChanged(AttrsState::ExitOp); }
void FileListAttrs::attrsRemoveOpText(Widget, XtPointer) { opTextChanged(AttrsState::RemoveOp); }

void FileListAttrs::attrsConfigOptionMenu(Widget, XtPointer) {
  setState(_attrsConfigToggleButton, true);
}

void FileListAttrs::setCurrent(const std::vector<std::string>& attrs) {
  attrsClear();
  AttrsState s = AttrsText::read(attrs);
  for (int op = 0; op < AttrsState::RemoveOp; op++)
    if (!s.opText[op].empty()) showFieldValue(opText(op), s.opText[op]);
  if (s.configOn) {
    Widget entry = s.config == AttrsState::Suggest    ? _configSuggestPushButton
                   : s.config == AttrsState::NoUpdate ? _configNoUpdatePushButton
                                                      : _configUpdatePushButton;
    XtVaSetValues(_attrsConfigOptionMenu, XmNmenuHistory, entry, nullptr);
    XtCallCallbacks(entry, XmNactivateCallback, nullptr);
  }
  for (int f = 0; f < AttrsState::kFlags; f++)
    if (s.flags[f]) setState(flagToggle(f), true);
  int cpuBoards = 0;
  for (const auto& pair : s.mach) {
    for (int g : {MachSelection::kCpuBoard, MachSelection::kGfxBoard, MachSelection::kSubgr}) {
      if (pair.first != MachSelection::kKeys[g]) continue;
      _mach->set(g, pair.second, true);
      if (g == MachSelection::kCpuBoard) ++cpuBoards;
    }
  }
  if (cpuBoards > 0) {
    setMachOn();
    _mach->cpuBoardInterlock();
  }
  syncToggles();
}

// ---- the hardware attributes -----------------------------------------------------------

void FileListAttrs::setMachOn() { setState(_attrsMachToggleButton, true); }

void FileListAttrs::UntoggleInsensitive() {
  _mach->untoggleInsensitive();
  syncToggles();
}

void FileListAttrs::hardwareToggled(int group, Widget toggle) {
  const std::string name = XtName(toggle);
  _mach->set(group, name, isOn(toggle));
  setMachOn();
  if (group == MachSelection::kCpuBoard)
    _mach->cpuBoardInterlock();
  else if (group == MachSelection::kModel)
    _mach->modelChanged(name);
  syncToggles();
}

void FileListAttrs::cpuBoardToggleButtonCallback(Widget w, XtPointer clientData, XtPointer) {
  static_cast<FileListAttrs*>(clientData)->hardwareToggled(MachSelection::kCpuBoard, w);
}

void FileListAttrs::gfxBoardToggleButtonCallback(Widget w, XtPointer clientData, XtPointer) {
  static_cast<FileListAttrs*>(clientData)->hardwareToggled(MachSelection::kGfxBoard, w);
}

void FileListAttrs::subgrToggleButtonCallback(Widget w, XtPointer clientData, XtPointer) {
  static_cast<FileListAttrs*>(clientData)->hardwareToggled(MachSelection::kSubgr, w);
}

void FileListAttrs::modelToggleButtonCallback(Widget w, XtPointer clientData, XtPointer) {
  static_cast<FileListAttrs*>(clientData)->hardwareToggled(MachSelection::kModel, w);
}

void FileListAttrs::selectCpuBoards(const char* processor) {
  BusyScope busy(YrBusyIndicator::application());
  setMachOn();
  _mach->selectCpuBoards(processor);
  syncToggles();
}

void FileListAttrs::r3kPushButton(Widget, XtPointer) { selectCpuBoards("R3000"); }
void FileListAttrs::r4kPushButton(Widget, XtPointer) { selectCpuBoards("R4000"); }
void FileListAttrs::r8kPushButton(Widget, XtPointer) { selectCpuBoards("R8000"); }
void FileListAttrs::r10kPushButton(Widget, XtPointer) { selectCpuBoards("R10000"); }

std::vector<Widget> FileListAttrs::internalNameWidgets() const {
  return {_attrsCpuLabel,     _attrsCpuBoardRowColumn, _attrsGfxBoardLabel, _attrsGfxBoardRowColumn,
          _attrsSubgrLabel,   _attrsSubgrRowColumn,    _r3kPushButton,      _r4kPushButton,
          _r8kPushButton,     _r10kPushButton};
}

void FileListAttrs::showInternalNames() {
  for (Widget w : internalNameWidgets())
    if (!XtIsManaged(w)) XtManageChild(w);
}

void FileListAttrs::hideInternalNames() {
  for (Widget w : internalNameWidgets())
    if (XtIsManaged(w)) XtUnmanageChild(w);
}
