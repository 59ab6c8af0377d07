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

Widget arrow(const char* name, Widget parent, unsigned char direction) {
  return createManaged(name, xmArrowButtonWidgetClass, parent,
                       {{XmNarrowDirection, direction}, {XmNwidth, 40}, {XmNheight, 30}});
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
  _sourceRootLabel = cellLabel("sourceRootLabel", _rootGrid, 0, 0);
  _sourceRootTextField = cellField("sourceRootTextField", _rootGrid, 0, 1, 30);
  _destRootLabel = cellLabel("destRootLabel", _rootGrid, 1, 0);
  _destRootTextField = cellField("destRootTextField", _rootGrid, 1, 1, 30);
  _applySpringBox = createManagedSpringBox("applySpringBox", _upperGrid, {{OvNrow, 1}});
  _applyArrowButton = arrow("applyArrowButton", _applySpringBox, XmARROW_DOWN);
  _applyLabel = createManaged("applyLabel", xmLabelWidgetClass, _applySpringBox);

  // The values assigned to the selected entries.
  _lowerGrid = createManagedGrid("lowerGrid", _baseWidget, 3, 1, {{OvNrow, 1}});
  _permsDestFrame = createManaged("permsDestFrame", xmFrameWidgetClass, _lowerGrid,
                                  {{OvNrow, 0}, {OvNresizeVertical, False}});
  _permsDestGrid = createManagedGrid("permsDestGrid", _permsDestFrame, 3, 1);
  _permsGrid = createManagedGrid("permsGrid", _permsDestGrid, 3, 3, {{OvNrow, 0}});
  _modeLabel = cellLabel("modeLabel", _permsGrid, 0, 0);
  _modeTextField = cellField("modeTextField", _permsGrid, 0, 1, 12);
  _modeLabel1 = cellLabel("modeLabel1", _permsGrid, 0, 2);
  _ownerLabel = cellLabel("ownerLabel", _permsGrid, 1, 0);
  _ownerTextField = cellField("ownerTextField", _permsGrid, 1, 1, 12);
  _ownerLabel1 = cellLabel("ownerLabel1", _permsGrid, 1, 2);
  _groupLabel = cellLabel("groupLabel", _permsGrid, 2, 0);
  _groupTextField = cellField("groupTextField", _permsGrid, 2, 1, 12);
  _groupLabel1 = cellLabel("groupLabel1", _permsGrid, 2, 2);
  _permsDestSeparator = createManaged("permsDestSeparator", xmSeparatorWidgetClass,
                                      _permsDestGrid, {{OvNrow, 1}, {OvNresizeVertical, False}});
  _destGrid = createManagedGrid("destGrid", _permsDestGrid, 2, 2, {{OvNrow, 2}});
  _destDirLabel = cellLabel("destDirLabel", _destGrid, 0, 0);
  _destDirTextField = cellField("destDirTextField", _destGrid, 0, 1, 30);
  _destFileLabel = cellLabel("destFileLabel", _destGrid, 1, 0);
  _destFileTextField = cellField("destFileTextField", _destGrid, 1, 1, 30);
  _assignSpringBox = createManagedSpringBox("assignSpringBox", _lowerGrid,
                                            {{OvNrow, 1}, {OvNresizeVertical, False}});
  _assignArrowButton = arrow("assignArrowButton", _assignSpringBox, XmARROW_RIGHT);
  _assignLabel = createManaged("assignLabel", xmLabelWidgetClass, _assignSpringBox);
  _resetSpringBox = createManagedSpringBox("resetSpringBox", _lowerGrid,
                                           {{OvNrow, 2}, {OvNresizeVertical, False}});
  _resetPushButton = createManaged("resetPushButton", xmPushButtonWidgetClass, _resetSpringBox);

  const struct {
    Widget widget;
    XtCallbackProc callback;
  } routes[] = {
      {_sourceRootTextField, &FileListPermsUI::sourceRootTextFieldCallback},
      {_destRootTextField, &FileListPermsUI::destRootTextFieldCallback},
      {_applyArrowButton, &FileListPermsUI::applyArrowButtonCallback},
      {_modeTextField, &FileListPermsUI::modeTextFieldCallback},
      {_ownerTextField, &FileListPermsUI::ownerTextFieldCallback},
      {_groupTextField, &FileListPermsUI::groupTextFieldCallback},
      {_destDirTextField, &FileListPermsUI::destDirTextFieldCallback},
      {_destFileTextField, &FileListPermsUI::destFileTextFieldCallback},
      {_assignArrowButton, &FileListPermsUI::assignArrowButtonCallback},
      {_resetPushButton, &FileListPermsUI::resetPushButtonCallback},
  };
  for (const auto& r : routes) XtAddCallback(r.widget, XmNactivateCallback, r.callback, this);
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

void FileListPermsUI::applyArrowButtonCallback(Widget w, XtPointer clientData, XtPointer callData) {
  static_cast<FileListPermsUI*>(clientData)->applyArrowButton(w, callData);
}

void FileListPermsUI::assignArrowButtonCallback(Widget w, XtPointer clientData, XtPointer callData) {
  static_cast<FileListPermsUI*>(clientData)->assignArrowButton(w, callData);
}

void FileListPermsUI::destDirTextFieldCallback(Widget w, XtPointer clientData, XtPointer callData) {
  static_cast<FileListPermsUI*>(clientData)->destDirTextField(w, callData);
}

void FileListPermsUI::destFileTextFieldCallback(Widget w, XtPointer clientData, XtPointer callData) {
  static_cast<FileListPermsUI*>(clientData)->destFileTextField(w, callData);
}

void FileListPermsUI::destRootTextFieldCallback(Widget w, XtPointer clientData, XtPointer callData) {
  static_cast<FileListPermsUI*>(clientData)->destRootTextField(w, callData);
}

void FileListPermsUI::groupTextFieldCallback(Widget w, XtPointer clientData, XtPointer callData) {
  static_cast<FileListPermsUI*>(clientData)->groupTextField(w, callData);
}

void FileListPermsUI::modeTextFieldCallback(Widget w, XtPointer clientData, XtPointer callData) {
  static_cast<FileListPermsUI*>(clientData)->modeTextField(w, callData);
}

void FileListPermsUI::ownerTextFieldCallback(Widget w, XtPointer clientData, XtPointer callData) {
  static_cast<FileListPermsUI*>(clientData)->ownerTextField(w, callData);
}

void FileListPermsUI::resetPushButtonCallback(Widget w, XtPointer clientData, XtPointer callData) {
  static_cast<FileListPermsUI*>(clientData)->resetPushButton(w, callData);
}

void FileListPermsUI::sourceRootTextFieldCallback(Widget w, XtPointer clientData, XtPointer callData) {
  static_cast<FileListPermsUI*>(clientData)->sourceRootTextField(w, callData);
}
