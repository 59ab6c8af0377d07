#include "app/ui/SpecDetailUI.h"

#include <Xm/ArrowB.h>
#include <Xm/Form.h>
#include <Xm/Frame.h>
#include <Xm/Label.h>
#include <Xm/List.h>
#include <Xm/PanedW.h>
#include <Xm/PushB.h>
#include <Xm/Text.h>
#include <Xm/TextF.h>
#include <Xm/ToggleB.h>

#include <initializer_list>
#include <utility>

#include "app/ui/LayoutFonts.h"
#include "app/ui/LayoutWidgets.h"
#include "ov/OvGrid.h"

// The static callback of each callback method.
template <void (SpecDetailUI::*method)(Widget, XtPointer)>
constexpr XtCallbackProc route = &routeToMethod<SpecDetailUI, method>;

const char* const SpecDetailUI::_defaultSpecDetailUIResources[] = {
    "*applyLabel.labelString:  Assign",
    "*noneLabel.labelString:  No node selected.  Click on a node to select.\\n  Create nodes "
    "using the Add button.",
    "*productNameLabel.labelString:  Product Name",
    "*productIdLabel.labelString:  Description",
    "*subsysNameLabel.labelString:  Subsystem Name",
    "*subsysIdLabel.labelString:  Description",
    "*requiredToggleButton.labelString:  Required (Make a prerequisite to install Kardos)",
    "*defaultToggleButton.labelString:  Default (Installed by default)",
    "*minirootToggleButton.labelString:  Miniroot (Must be installed from miniroot)",
    "*patchToggleButton.labelString:  Patch (Follows original subsystem)",
    "*mappingLabel.labelString:  Mapping",
    "*rulesLabel.labelString:  Rules",
    "*prereqPushButton.labelString:  Prerequisite",
    "*incompatPushButton.labelString:  Incompatible",
    "*replacesPushButton.labelString:  Replaces",
    "*imageNameLabel.labelString:  Image Name",
    "*imageIdLabel.labelString:  Description",
    "*versionLabel.labelString:  Version",
    "*orderLabel.labelString:  Installation Order",
    "*flagsLabel.labelString:  Installation Options",
    "*ruleButtonsLabel.labelString:  Insert Rule Template",
    "*showRequiredToggleButton:  FALSE",
    nullptr,
};

namespace {

Widget stackedForm(const char* name, Widget parent) {
  return createManaged(name, xmFormWidgetClass, parent,
                       {{XmNtopAttachment, XmATTACH_FORM},
                        {XmNbottomAttachment, XmATTACH_FORM},
                        {XmNleftAttachment, XmATTACH_FORM},
                        {XmNrightAttachment, XmATTACH_FORM}});
}

// The grid that fills a form.
Widget formGrid(const char* name, Widget form, int rows) {
  return createManagedGrid(name, form, rows, 1,
                           {{XmNtopAttachment, XmATTACH_FORM},
                            {XmNbottomAttachment, XmATTACH_FORM},
                            {XmNleftAttachment, XmATTACH_FORM},
                            {XmNrightAttachment, XmATTACH_FORM}});
}

Widget fieldLabel(const char* name, Widget grid, int row = 0) {
  return createManaged(name, xmLabelWidgetClass, grid,
                       {{OvNrow, row}, {XmNalignment, XmALIGNMENT_BEGINNING}, {OvNgravity, 7},
                        {OvNresizeVertical, False}});
}

// Field labels share one width, so that the fields line up.
constexpr int kFieldLabelWidth = 130;

// A grid of a label beside a text field, in row `row` of `parent`: beside
// rather than above, so that a subsystem's mapping and rules keep room for
// several lines at the window's default size.
Widget labelledField(const char* gridName, Widget parent, int row, const char* labelName,
                     Widget* label, const char* fieldName, Widget* field) {
  Widget grid = createManagedGrid(gridName, parent, 1, 2, {{OvNrow, row}, {OvNresizeVertical, False}});
  *label = createManaged(labelName, xmLabelWidgetClass, grid,
                         {{OvNcolumn, 0}, {XmNalignment, XmALIGNMENT_BEGINNING}, {OvNgravity, 4},
                          {XmNwidth, kFieldLabelWidth}, {XmNrecomputeSize, False},
                          {OvNresizeHorizontal, False}, {OvNresizeVertical, False}});
  *field = createManaged(fieldName, xmTextFieldWidgetClass, grid,
                         {{OvNcolumn, 1}, {XmNwidth, 200}, {OvNresizeVertical, False}});
  return grid;
}

// One labelled field of a form: its grid, label and text field.
struct FieldRow {
  const char* grid;
  Widget* gridWidget;
  const char* label;
  Widget* labelWidget;
  const char* field;
  Widget* fieldWidget;
};

// The rows from row 0 of parent down, in the order given.
void labelledFields(Widget parent, std::initializer_list<FieldRow> rows) {
  int row = 0;
  for (const FieldRow& r : rows)
    *r.gridWidget = labelledField(r.grid, parent, row++, r.label, r.labelWidget, r.field,
                                  r.fieldWidget);
}

// Sized in pixels: Motif counts columns in the font's widest glyph.
Widget multiLineText(const char* name, Widget grid, int row, int rows) {
  return createManaged(name, xmTextWidgetClass, grid,
                       {{OvNrow, row}, {XmNeditMode, XmMULTI_LINE_EDIT}, {XmNrows, rows},
                        {XmNwidth, 300}});
}

Widget toggle(const char* name, Widget grid, int row) {
  return createManaged(name, xmToggleButtonWidgetClass, grid,
                       {{OvNrow, row}, {OvNgravity, 4}, {OvNresizeHorizontal, False},
                        {OvNresizeVertical, False}, {XmNmarginHeight, 0}});
}

Widget templateButton(const char* name, Widget grid, int row) {
  return createManaged(name, xmPushButtonWidgetClass, grid,
                       {{OvNrow, row}, {OvNgravity, 4}, {OvNresizeHorizontal, False},
                        {OvNresizeVertical, False}, {XmNmarginHeight, 1}});
}

struct ShowRequired {
  Boolean show;
};

}  // namespace

SpecDetailUI::SpecDetailUI(const char* name, Widget parent) : YrComponent(name) {
  installLayoutFonts(parent);
  setDefaultResources(parent, _defaultSpecDetailUIResources);
  _baseWidget = XtVaCreateWidget(name, ovGridWidgetClass, parent, OvNnumRows, 2, nullptr);
  installDestroyHandler();

  _applySpringBox = createManagedSpringBox("applySpringBox", _baseWidget,
                                           {{OvNrow, 0}, {OvNresizeVertical, False}});
  _applyArrowButton = createManagedArrow("applyArrowButton", _applySpringBox, XmARROW_LEFT);
  _applyLabel = createManaged("applyLabel", xmLabelWidgetClass, _applySpringBox);
  _frame = createManaged("frame", xmFrameWidgetClass, _baseWidget, {{OvNrow, 1}});
  _form = createManaged("form", xmFormWidgetClass, _frame);

  buildProductForm();
  buildSubsystemForm();
  buildImageForm();

  _noneForm = stackedForm("noneForm", _form);
  _noneGrid = formGrid("noneGrid", _noneForm, 1);
  _noneLabel = createManaged("noneLabel", xmLabelWidgetClass, _noneGrid,
                             {{XmNalignment, XmALIGNMENT_BEGINNING}, {OvNgravity, 1},
                              {OvNresizeVertical, False}});

  addRoutes(this, {
      {_applyArrowButton, XmNactivateCallback, route<&SpecDetailUI::applyArrowButton>},
      {_prereqPushButton, XmNactivateCallback, route<&SpecDetailUI::prereqPushButton>},
      {_incompatPushButton, XmNactivateCallback, route<&SpecDetailUI::incompatPushButton>},
      {_replacesPushButton, XmNactivateCallback, route<&SpecDetailUI::replacesPushButton>},
      {_orderList, XmNbrowseSelectionCallback, route<&SpecDetailUI::browseSelection>},
  });
}

void SpecDetailUI::buildProductForm() {
  _productForm = stackedForm("productForm", _form);
  _productGrid = formGrid("productGrid", _productForm, 3);
  labelledFields(_productGrid, {{"nameGrid", &_nameGrid, "productNameLabel", &_productNameLabel,
                                 "productNameTextField", &_productNameTextField},
                                {"idGrid", &_idGrid, "productIdLabel", &_productIdLabel,
                                 "productIdTextField", &_productIdTextField}});
}

void SpecDetailUI::buildSubsystemForm() {
  _subsysForm = stackedForm("subsysForm", _form);
  _subsysGrid = formGrid("subsysGrid", _subsysForm, 5);
  labelledFields(_subsysGrid, {{"nameGrid2", &_nameGrid2, "subsysNameLabel", &_subsysNameLabel,
                                "subsysNameTextField", &_subsysNameTextField},
                               {"idGrid2", &_idGrid2, "subsysIdLabel", &_subsysIdLabel,
                                "subsysIdTextField", &_subsysIdTextField}});
  _flagsGrid =
      createManagedGrid("flagsGrid", _subsysGrid, 1, 1, {{OvNrow, 2}, {OvNresizeVertical, False}});
  _flagsLabel = fieldLabel("flagsLabel", _flagsGrid);

  // Whether the Required toggle is offered is the site's choice.
  static XtResource showRequired[] = {
      {const_cast<char*>("showRequiredToggleButton"), const_cast<char*>("ShowRequiredToggleButton"),
       XmRBoolean, sizeof(Boolean), XtOffsetOf(ShowRequired, show), XmRImmediate,
       reinterpret_cast<XtPointer>(False)},
  };
  ShowRequired values{False};
  XtGetApplicationResources(_baseWidget, &values, showRequired, XtNumber(showRequired), nullptr, 0);
  _showRequiredToggleButton = values.show;

  _flagsGrid1 =
      createManagedGrid("flagsGrid1", _subsysGrid, 4, 1, {{OvNrow, 3}, {OvNresizeVertical, False}});
  const std::pair<const char*, Widget*> flags[] = {
      {"defaultToggleButton", &_defaultToggleButton},
      {"requiredToggleButton", &_requiredToggleButton},
      {"minirootToggleButton", &_minirootToggleButton},
      {"patchToggleButton", &_patchToggleButton},
  };
  int row = 0;
  for (const auto& [name, widget] : flags) *widget = toggle(name, _flagsGrid1, row++);

  _panedWindow = createManaged("panedWindow", xmPanedWindowWidgetClass, _subsysGrid, {{OvNrow, 4}});
  // Neither pane may be dragged shut: a patch subsystem's "follows" rule
  // and its mapping must both stay in sight.
  _mappingGrid = createManagedGrid("mappingGrid", _panedWindow, 2, 1, {{XmNpaneMinimum, 50}});
  _mappingLabel = fieldLabel("mappingLabel", _mappingGrid);
  _mappingText = multiLineText("mappingText", _mappingGrid, 1, 3);
  // The rule templates stand in a column under their label, below the
  // rules.
  _rulesGrid = createManagedGrid("rulesGrid", _panedWindow, 6, 1, {{XmNpaneMinimum, 150}});
  _rulesLabel = fieldLabel("rulesLabel", _rulesGrid);
  _rulesText = multiLineText("rulesText", _rulesGrid, 1, 4);
  _ruleButtonsLabel = fieldLabel("ruleButtonsLabel", _rulesGrid, 2);
  const std::pair<const char*, Widget*> templates[] = {
      {"prereqPushButton", &_prereqPushButton},
      {"incompatPushButton", &_incompatPushButton},
      {"replacesPushButton", &_replacesPushButton},
  };
  row = 3;
  for (const auto& [name, widget] : templates) *widget = templateButton(name, _rulesGrid, row++);
}

void SpecDetailUI::buildImageForm() {
  _imageForm = stackedForm("imageForm", _form);
  _imageGrid = formGrid("imageGrid", _imageForm, 4);
  labelledFields(_imageGrid, {{"nameGrid1", &_nameGrid1, "imageNameLabel", &_imageNameLabel,
                               "imageNameTextField", &_imageNameTextField},
                              {"idGrid1", &_idGrid1, "imageIdLabel", &_imageIdLabel,
                               "imageIdTextField", &_imageIdTextField},
                              {"versionGrid", &_versionGrid, "versionLabel", &_versionLabel,
                               "versionTextField", &_versionTextField}});
  _orderGrid = createManagedGrid("orderGrid", _imageGrid, 3, 1, {{OvNrow, 3}});
  _orderLabel = fieldLabel("orderLabel", _orderGrid);
  _orderTextField = createManaged("orderTextField", xmTextFieldWidgetClass, _orderGrid,
                                  {{OvNrow, 1}, {OvNresizeVertical, False}});
  _scrolledWindow = createManagedScrolledWindow("scrolledWindow", _orderGrid, {{OvNrow, 2}});
  _orderList = createManaged("orderList", xmListWidgetClass, _scrolledWindow,
                             {{XmNselectionPolicy, XmBROWSE_SELECT},
                              {XmNvisibleItemCount, 8},
                              {XmNlistSizePolicy, XmCONSTANT}});
}

const char* SpecDetailUI::className() const { return "SpecDetailUI"; }

void SpecDetailUI::applyArrowButton(Widget, XtPointer) {}
void SpecDetailUI::browseSelection(Widget, XtPointer) {}
void SpecDetailUI::incompatPushButton(Widget, XtPointer) {}
void SpecDetailUI::prereqPushButton(Widget, XtPointer) {}
void SpecDetailUI::replacesPushButton(Widget, XtPointer) {}
