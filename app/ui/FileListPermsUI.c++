#include "app/ui/FileListPermsUI.h"

#include <Xm/ArrowB.h>
#include <Xm/Frame.h>
#include <Xm/Label.h>
#include <Xm/PushB.h>
#include <Xm/Separator.h>
#include <Xm/TextF.h>

#include "app/ui/LayoutFonts.h"
#include "app/ui/LayoutWidgets.h"
#include "ov/OvGrid.h"

// The static callback of each callback method.
template <void (FileListPermsUI::*method)(Widget, XtPointer)>
constexpr XtCallbackProc route = &routeToMethod<FileListPermsUI, method>;

const char* const FileListPermsUI::_defaultFileListPermsUIResources[] = {
    "*sourceRootLabel.labelString:  Source Tree Root",
    "*destRootLabel.labelString:  Destination Tree Root",
    "*applyLabel.labelString:  Apply",
    "*modeLabel.labelString:  Mode",
    "*modeLabel1.labelString:  1234567890",
    "*ownerLabel.labelString:  Owner",
    "*ownerLabel1.labelString:  1234567890",
    "*groupLabel.labelString:  Group",
    "*groupLabel1.labelString:  1234567890",
    "*destDirLabel.labelString:  Destination Directory",
    "*destFileLabel.labelString:  Destination Filename",
    "*assignLabel.labelString:  Assign",
    "*resetPushButton.labelString:  Reset All Values",
    nullptr,
};

namespace {

Widget cellLabel(const char* name, Widget grid, int row, int column) {
  return createManaged(name, xmLabelWidgetClass, grid,
                       {{OvNrow, row}, {OvNcolumn, column}, {XmNalignment, XmALIGNMENT_BEGINNING},
                        {OvNgravity, 4}, {OvNresizeHorizontal, False}, {OvNresizeVertical, False}});
}

Widget cellField(const char* name, Widget grid, int row, int column, int columns) {
  return createManaged(name, xmTextFieldWidgetClass, grid,
                       {{OvNrow, row}, {OvNcolumn, column}, {XmNcolumns, columns},
                        {OvNresizeVertical, False}});
}

// A row of a label, its text field and, for mode, owner and group, the
// label showing the entries' present value.
struct FieldRow {
  const char* label;
  Widget* labelWidget;
  const char* field;
  Widget* fieldWidget;
  int columns;
  const char* value = nullptr;
  Widget* valueWidget = nullptr;
};

void fieldRows(Widget grid, std::initializer_list<FieldRow> rows) {
  int row = 0;
  for (const FieldRow& r : rows) {
    *r.labelWidget = cellLabel(r.label, grid, row, 0);
    *r.fieldWidget = cellField(r.field, grid, row, 1, r.columns);
    if (r.value) *r.valueWidget = cellLabel(r.value, grid, row, 2);
    ++row;
  }
}

}  // namespace

FileListPermsUI::FileListPermsUI(const char* name, Widget parent) : YrComponent(name) {
  installLayoutFonts(parent);
  setDefaultResources(parent, _defaultFileListPermsUIResources);
  _baseWidget = XtVaCreateWidget(name, ovGridWidgetClass, parent, OvNnumRows, 2, nullptr);
  installDestroyHandler();

  // The roots, applied by their own arrow.
  _upperGrid = createManagedGrid("upperGrid", _baseWidget, 2, 1,
                                 {{OvNrow, 0}, {OvNresizeVertical, False}});
  _frame = createManaged("frame", xmFrameWidgetClass, _upperGrid, {{OvNrow, 0}});
  _rootGrid = createManagedGrid("rootGrid", _frame, 2, 2);
  fieldRows(_rootGrid,
            {{"sourceRootLabel", &_sourceRootLabel, "sourceRootTextField", &_sourceRootTextField,
              30},
             {"destRootLabel", &_destRootLabel, "destRootTextField", &_destRootTextField, 30}});
  _applySpringBox = createManagedSpringBox("applySpringBox", _upperGrid, {{OvNrow, 1}});
  _applyArrowButton = createManagedArrow("applyArrowButton", _applySpringBox, XmARROW_DOWN);
  _applyLabel = createManaged("applyLabel", xmLabelWidgetClass, _applySpringBox);

  // The values assigned to the selected entries.
  _lowerGrid = createManagedGrid("lowerGrid", _baseWidget, 3, 1, {{OvNrow, 1}});
  _permsDestFrame = createManaged("permsDestFrame", xmFrameWidgetClass, _lowerGrid,
                                  {{OvNrow, 0}, {OvNresizeVertical, False}});
  _permsDestGrid = createManagedGrid("permsDestGrid", _permsDestFrame, 3, 1);
  _permsGrid = createManagedGrid("permsGrid", _permsDestGrid, 3, 3, {{OvNrow, 0}});
  fieldRows(_permsGrid,
            {{"modeLabel", &_modeLabel, "modeTextField", &_modeTextField, 12, "modeLabel1",
              &_modeLabel1},
             {"ownerLabel", &_ownerLabel, "ownerTextField", &_ownerTextField, 12, "ownerLabel1",
              &_ownerLabel1},
             {"groupLabel", &_groupLabel, "groupTextField", &_groupTextField, 12, "groupLabel1",
              &_groupLabel1}});
  _permsDestSeparator = createManaged("permsDestSeparator", xmSeparatorWidgetClass,
                                      _permsDestGrid, {{OvNrow, 1}, {OvNresizeVertical, False}});
  _destGrid = createManagedGrid("destGrid", _permsDestGrid, 2, 2, {{OvNrow, 2}});
  fieldRows(_destGrid,
            {{"destDirLabel", &_destDirLabel, "destDirTextField", &_destDirTextField, 30},
             {"destFileLabel", &_destFileLabel, "destFileTextField", &_destFileTextField, 30}});
  _assignSpringBox = createManagedSpringBox("assignSpringBox", _lowerGrid,
                                            {{OvNrow, 1}, {OvNresizeVertical, False}});
  _assignArrowButton = createManagedArrow("assignArrowButton", _assignSpringBox, XmARROW_RIGHT);
  _assignLabel = createManaged("assignLabel", xmLabelWidgetClass, _assignSpringBox);
  _resetSpringBox = createManagedSpringBox("resetSpringBox", _lowerGrid,
                                           {{OvNrow, 2}, {OvNresizeVertical, False}});
  _resetPushButton = createManaged("resetPushButton", xmPushButtonWidgetClass, _resetSpringBox);

  addRoutes(this, {
      {_sourceRootTextField, XmNactivateCallback, route<&FileListPermsUI::sourceRootTextField>},
      {_destRootTextField, XmNactivateCallback, route<&FileListPermsUI::destRootTextField>},
      {_applyArrowButton, XmNactivateCallback, route<&FileListPermsUI::applyArrowButton>},
      {_modeTextField, XmNactivateCallback, route<&FileListPermsUI::modeTextField>},
      {_ownerTextField, XmNactivateCallback, route<&FileListPermsUI::ownerTextField>},
      {_groupTextField, XmNactivateCallback, route<&FileListPermsUI::groupTextField>},
      {_destDirTextField, XmNactivateCallback, route<&FileListPermsUI::destDirTextField>},
      {_destFileTextField, XmNactivateCallback, route<&FileListPermsUI::destFileTextField>},
      {_assignArrowButton, XmNactivateCallback, route<&FileListPermsUI::assignArrowButton>},
      {_resetPushButton, XmNactivateCallback, route<&FileListPermsUI::resetPushButton>},
  });
}

const char* FileListPermsUI::className() const { return "FileListPermsUI"; }

void FileListPermsUI::applyArrowButton(Widget, XtPointer) {}
void FileListPermsUI::assignArrowButton(Widget, XtPointer) {}
void FileListPermsUI::destDirTextField(Widget, XtPointer) {}
void FileListPermsUI::destFileTextField(Widget, XtPointer) {}
void FileListPermsUI::destRootTextField(Widget, XtPointer) {}
void FileListPermsUI::groupTextField(Widget, XtPointer) {}
void FileListPermsUI::modeTextField(Widget, XtPointer) {}
void FileListPermsUI::ownerTextField(Widget, XtPointer) {}
void FileListPermsUI::resetPushButton(Widget, XtPointer) {}
void FileListPermsUI::sourceRootTextField(Widget, XtPointer) {}
