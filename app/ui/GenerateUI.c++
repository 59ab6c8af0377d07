#include "app/ui/GenerateUI.h"

#include <Xm/Label.h>
#include <Xm/PushB.h>
#include <Xm/RowColumn.h>
#include <Xm/TextF.h>
#include <Xm/ToggleB.h>

#include "app/ui/LayoutFonts.h"
#include "app/ui/LayoutWidgets.h"
#include "ov/OvGrid.h"

// The static callback of each callback method.
template <void (GenerateUI::*method)(Widget, XtPointer)>
constexpr XtCallbackProc route = &routeToMethod<GenerateUI, method>;

const char* const GenerateUI::_defaultGenerateUIResources[] = {
    "*label.labelString:  Spec File:",
    "*sourceRootLabel.labelString:  Source Tree Root",
    "*destRootLabel.labelString:  Destination Tree Root",
    "*distDirLabel.labelString:  Distribution Directory",
    "*distDirTextField.value:  /usr/dist",
    "*verboseToggleButton.labelString:  Verbose (Provide detailed messages during build)",
    "*noCompressToggleButton.labelString:  No Compress (Do not compress)",
    "*noStripToggleButton.labelString:  No Strip (Retain symbolic information)",
    "*allPushButton.labelString:  Build All",
    "*dryrunPushButton.labelString:  Test Build",
    nullptr,
};

namespace {

// A labelled field: the label above, the field under it.
void labelledField(Widget grid, Widget* label, const char* labelName, Widget* field,
                   const char* fieldName) {
  *label = createManaged(labelName, xmLabelWidgetClass, grid,
                         {{OvNrow, 0}, {XmNalignment, XmALIGNMENT_BEGINNING}, {OvNgravity, 7},
                          {OvNresizeVertical, False}});
  *field = createManaged(fieldName, xmTextFieldWidgetClass, grid,
                         {{OvNrow, 1}, {OvNresizeVertical, False}, {XmNcolumns, 40}});
}

}  // namespace

GenerateUI::GenerateUI(const char* name, Widget parent) : YrComponent(name) {
  installLayoutFonts(parent);
  setDefaultResources(parent, _defaultGenerateUIResources);
  _baseWidget = XtVaCreateWidget(name, ovGridWidgetClass, parent, OvNnumRows, 6, nullptr);
  installDestroyHandler();

  // Only row 4, the options, takes extra height.
  _label = createManaged("label", xmLabelWidgetClass, _baseWidget,
                         {{OvNrow, 0}, {XmNalignment, XmALIGNMENT_BEGINNING}, {OvNgravity, 7},
                          {OvNresizeVertical, False}});
  _sourceRootGrid =
      createManagedGrid("sourceRootGrid", _baseWidget, 3, 1, {{OvNrow, 1}, {OvNresizeVertical, False}});
  labelledField(_sourceRootGrid, &_sourceRootLabel, "sourceRootLabel", &_sourceRootTextField,
                "sourceRootTextField");
  _destRootGrid =
      createManagedGrid("destRootGrid", _baseWidget, 2, 1, {{OvNrow, 2}, {OvNresizeVertical, False}});
  labelledField(_destRootGrid, &_destRootLabel, "destRootLabel", &_destRootTextField,
                "destRootTextField");
  _distDirGrid =
      createManagedGrid("distDirGrid", _baseWidget, 2, 1, {{OvNrow, 3}, {OvNresizeVertical, False}});
  labelledField(_distDirGrid, &_distDirLabel, "distDirLabel", &_distDirTextField,
                "distDirTextField");

  _rowColumn = createManaged("rowColumn", xmRowColumnWidgetClass, _baseWidget,
                             {{OvNrow, 4},
                              {XmNorientation, XmVERTICAL}});
  _verboseToggleButton = createManaged("verboseToggleButton", xmToggleButtonWidgetClass, _rowColumn);
  _noCompressToggleButton =
      createManaged("noCompressToggleButton", xmToggleButtonWidgetClass, _rowColumn);
  _noStripToggleButton = createManaged("noStripToggleButton", xmToggleButtonWidgetClass, _rowColumn);

  _buttonGrid =
      createManagedGrid("buttonGrid", _baseWidget, 1, 2, {{OvNrow, 5}, {OvNresizeVertical, False}});
  _allPushButton = createManaged("allPushButton", xmPushButtonWidgetClass, _buttonGrid,
                                 {{OvNcolumn, 0}, {OvNresizeHorizontal, False}});
  _dryrunPushButton = createManaged("dryrunPushButton", xmPushButtonWidgetClass, _buttonGrid,
                                    {{OvNcolumn, 1}, {OvNresizeHorizontal, False}});

  addRoutes(this, {
      {_allPushButton, XmNactivateCallback, route<&GenerateUI::allPushButton>},
      {_dryrunPushButton, XmNactivateCallback, route<&GenerateUI::dryrunPushButton>},
  });
}

const char* GenerateUI::className() const { return "GenerateUI"; }

void GenerateUI::allPushButton(Widget, XtPointer) {}
void GenerateUI::dryrunPushButton(Widget, XtPointer) {}
