#include "app/ui/FileListAttrsUI.h"

#include <Xm/ArrowB.h>
#include <Xm/Label.h>
#include <Xm/PushB.h>
#include <Xm/RowColumn.h>
#include <Xm/ScrolledW.h>
#include <Xm/Text.h>
#include <Xm/ToggleB.h>

#include "app/ui/LayoutFonts.h"
#include "app/ui/LayoutWidgets.h"
#include "ov/OvGrid.h"

// The static callback of each callback method.
template <void (FileListAttrsUI::*method)(Widget, XtPointer)>
constexpr XtCallbackProc route = &routeToMethod<FileListAttrsUI, method>;

const char* const FileListAttrsUI::_defaultFileListAttrsUIResources[] = {
    "*attrsConfigToggleButton.labelString:  config  (file)",
    "*attrsConfigOptionMenu.labelString:   ",
    "*configUpdatePushButton.labelString:  update",
    "*configNoUpdatePushButton.labelString:  noupdate",
    "*configSuggestPushButton.labelString:  suggest",
    "*attrsShadowToggleButton.labelString:  shadow  (Install during next boot)",
    "*attrsPreOpToggleButton.labelString:  preop  (Execute prior to installation)",
    "*attrsPostOpToggleButton.labelString:  postop  (Execute after installation)",
    "*attrsExitOpToggleButton.labelString:  exitop  (Execute after install completed)",
    "*attrsRemoveOpToggleButton.labelString:  removeop  (Execute after removal)",
    "*attrsNoShareToggleButton.labelString:  noshare  (Duplicate for diskless clients)",
    "*attrsNoStripToggleButton.labelString:  nostrip  (Retain symbolic information)",
    "*attrsNoRqsToggleButton.labelString:  norqs  (Do not requickstart)",
    "*attrsStripDSOToggleButton.labelString:  stripdso  (Strip dynamic shared objects)",
    "*attrsMachToggleButton.labelString:  mach (Machine dependent)",
    "*attrsCpuLabel.labelString:  CPUBOARD  (CPU Board)",
    "*attrsGfxBoardLabel.labelString:  GFXBOARD  (Graphics Board)",
    "*attrsSubgrLabel.labelString:  SUBGR  (Subgraphics Board)",
    "*attrsModelLabel.labelString:  MODEL",
    "*attrsClearPushButton.labelString:  Clear All Values",
    "*attrsAssignLabel.labelString:  Assign",
    "*r3kPushButton.labelString:  R3k Boards Only",
    "*r4kPushButton.labelString:  R4k Boards Only",
    "*r8kPushButton.labelString:  R8k Boards Only",
    "*r10kPushButton.labelString:  R10k Boards Only",
    "*softAttrsLabel.labelString:  Software Attributes",
    "*hardAttrsLabel.labelString:  Hardware Attributes",
    // The backslash keeps the leading blanks; each \n is a line break.
    "*hardWarnLabel.labelString:  \\  By default, files are installed on all\\n  platforms.  "
    "Restrict installation to\\n  particular platform(s) by checking\\n  the appropriate "
    "box(es).",
    nullptr,
};

namespace {

Widget leftLabel(const char* name, Widget parent) {
  return createManaged(name, xmLabelWidgetClass, parent, {{XmNalignment, XmALIGNMENT_BEGINNING}});
}

// One attribute's row: a grid holding its toggle (and, for the operation
// attributes, the command text under it, as wide as the panel).
Widget attributeRow(const char* gridName, const char* toggleName, Widget parent, Widget* toggle,
                    int rows = 1) {
  Widget grid = createManagedGrid(gridName, parent, rows, 1);
  *toggle = createManaged(toggleName, xmToggleButtonWidgetClass, grid,
                          {{OvNrow, 0}, {OvNgravity, 4}, {OvNresizeHorizontal, False}});
  return grid;
}

// End and Home move within the line, with Ctrl to the end and start of the
// whole command.
const char kCommandTextKeys[] =
    "<Key>osfEndLine: end-of-line()\n"
    "Ctrl<Key>osfEndLine: end-of-file()\n"
    "<Key>osfBeginLine: beginning-of-line()\n"
    "Ctrl<Key>osfBeginLine: beginning-of-file()";

// A command of one or more lines: Return starts a new line (Assign writes
// the line breaks as ";").
Widget commandText(const char* name, Widget grid) {
  Widget text = createManaged(name, xmTextWidgetClass, grid,
                              {{OvNrow, 1},
                               {XmNeditMode, XmMULTI_LINE_EDIT},
                               {XmNrows, 2},
                               // Not in columns: Motif counts them in the
                               // font's widest glyph, far wider than text.
                               {XmNwidth, 300},
                               {OvNresizeHorizontal, True},
                               {XmNwordWrap, False},
                               {OvNresizeVertical, False}});
  XtOverrideTranslations(text, XtParseTranslationTable(kCommandTextKeys));
  return text;
}

// The toggles of a hardware group go here at run time, in columns: the
// boards' short names four to a row, the models' descriptions one.
Widget toggleGroup(const char* name, Widget parent, int columns) {
  return createManaged(name, xmRowColumnWidgetClass, parent,
                       {{XmNorientation, XmVERTICAL}, {XmNpacking, XmPACK_COLUMN},
                        {XmNnumColumns, columns}});
}

}  // namespace

FileListAttrsUI::FileListAttrsUI(const char* name, Widget parent) : YrComponent(name) {
  installLayoutFonts(parent);
  setDefaultResources(parent, _defaultFileListAttrsUIResources);
  _baseWidget = XtVaCreateWidget(name, ovGridWidgetClass, parent, OvNnumRows, 3, nullptr);
  installDestroyHandler();

  _scrolledWindow = createManaged("scrolledWindow", xmScrolledWindowWidgetClass, _baseWidget,
                                  {{OvNrow, 0},
                                   {XmNscrollingPolicy, XmAUTOMATIC},
                                   {XmNscrollBarDisplayPolicy, XmAS_NEEDED},
                                   {XmNwidth, 390},
                                   {XmNheight, 520}});
  _rowColumn = createManaged("rowColumn", xmRowColumnWidgetClass, _scrolledWindow,
                             {{XmNorientation, XmVERTICAL}});
  // The controls take the width the panel shows, so that it scrolls up and
  // down only.
  Widget clip = nullptr;
  XtVaGetValues(_scrolledWindow, XmNclipWindow, &clip, nullptr);
  if (clip)
    XtAddEventHandler(clip, StructureNotifyMask, False, &FileListAttrsUI::clipResized, this);
  buildSoftwareAttributes();
  buildHardwareAttributes();

  _attrsSpringBox = createManagedSpringBox("attrsSpringBox", _baseWidget,
                                           {{OvNrow, 1}, {OvNresizeVertical, False}});
  _attrsClearPushButton =
      createManaged("attrsClearPushButton", xmPushButtonWidgetClass, _attrsSpringBox);
  _attrsSpringBox1 = createManagedSpringBox("attrsSpringBox1", _baseWidget,
                                            {{OvNrow, 2}, {OvNresizeVertical, False}});
  _attrsAssignArrowButton =
      createManagedArrow("attrsAssignArrowButton", _attrsSpringBox1, XmARROW_RIGHT);
  _attrsAssignLabel = createManaged("attrsAssignLabel", xmLabelWidgetClass, _attrsSpringBox1);

  using Self = FileListAttrsUI;
  addRoutes(this, {
      {_attrsConfigToggleButton, XmNvalueChangedCallback, route<&Self::attrsConfigToggleButton>},
      {_attrsPreOpText, XmNvalueChangedCallback, route<&Self::attrsPreOpText>},
      {_attrsPostOpText, XmNvalueChangedCallback, route<&Self::attrsPostOpText>},
      {_attrsExitOpText, XmNvalueChangedCallback, route<&Self::attrsExitOpText>},
      {_attrsRemoveOpText, XmNvalueChangedCallback, route<&Self::attrsRemoveOpText>},
      {_r3kPushButton, XmNactivateCallback, route<&Self::r3kPushButton>},
      {_r4kPushButton, XmNactivateCallback, route<&Self::r4kPushButton>},
      {_r8kPushButton, XmNactivateCallback, route<&Self::r8kPushButton>},
      {_r10kPushButton, XmNactivateCallback, route<&Self::r10kPushButton>},
      {_attrsClearPushButton, XmNactivateCallback, route<&Self::attrsClearPushButton>},
      {_attrsAssignArrowButton, XmNactivateCallback, route<&Self::attrsAssignArrowButton>},
  });
}

void FileListAttrsUI::buildSoftwareAttributes() {
  _softAttrsLabel = leftLabel("softAttrsLabel", _rowColumn);
  _attrsConfigGrid = attributeRow("attrsConfigGrid", "attrsConfigToggleButton", _rowColumn,
                                  &_attrsConfigToggleButton);
  _pulldownMenu = XmCreatePulldownMenu(_attrsConfigGrid, const_cast<char*>("pulldownMenu"),
                                       nullptr, 0);
  _configUpdatePushButton =
      createManaged("configUpdatePushButton", xmPushButtonWidgetClass, _pulldownMenu);
  _configNoUpdatePushButton =
      createManaged("configNoUpdatePushButton", xmPushButtonWidgetClass, _pulldownMenu);
  _configSuggestPushButton =
      createManaged("configSuggestPushButton", xmPushButtonWidgetClass, _pulldownMenu);
  // Before the option menu takes the pulldown, so that whatever the option
  // menu adds to its choices runs after the panel's callback.
  for (Widget choice :
       {_configUpdatePushButton, _configNoUpdatePushButton, _configSuggestPushButton})
    XtAddCallback(choice, XmNactivateCallback, route<&FileListAttrsUI::attrsConfigOptionMenu>,
                  this);
  Arg args[3];
  XtSetArg(args[0], XmNsubMenuId, _pulldownMenu);
  XtSetArg(args[1], OvNcolumn, 1);
  XtSetArg(args[2], OvNresizeHorizontal, False);
  _attrsConfigOptionMenu =
      XmCreateOptionMenu(_attrsConfigGrid, const_cast<char*>("attrsConfigOptionMenu"), args, 3);
  XtManageChild(_attrsConfigOptionMenu);

  // The other attributes, one row each in this order; the operations have
  // a command text under their toggle.
  using Self = FileListAttrsUI;
  const struct {
    const char* grid;
    const char* toggle;
    const char* text;  // null: a toggle alone
    Widget Self::*gridWidget;
    Widget Self::*toggleWidget;
    Widget Self::*textWidget;
  } rows[] = {
      {"attrsShadowGrid", "attrsShadowToggleButton", nullptr, &Self::_attrsShadowGrid,
       &Self::_attrsShadowToggleButton, nullptr},
      {"attrsPreOpGrid", "attrsPreOpToggleButton", "attrsPreOpText", &Self::_attrsPreOpGrid,
       &Self::_attrsPreOpToggleButton, &Self::_attrsPreOpText},
      {"attrsPostOpGrid", "attrsPostOpToggleButton", "attrsPostOpText", &Self::_attrsPostOpGrid,
       &Self::_attrsPostOpToggleButton, &Self::_attrsPostOpText},
      {"attrsExitOpGrid", "attrsExitOpToggleButton", "attrsExitOpText", &Self::_attrsExitOpGrid,
       &Self::_attrsExitOpToggleButton, &Self::_attrsExitOpText},
      {"attrsRemoveOpGrid", "attrsRemoveOpToggleButton", "attrsRemoveOpText",
       &Self::_attrsRemoveOpGrid, &Self::_attrsRemoveOpToggleButton, &Self::_attrsRemoveOpText},
      {"attrsNoShareGrid", "attrsNoShareToggleButton", nullptr, &Self::_attrsNoShareGrid,
       &Self::_attrsNoShareToggleButton, nullptr},
      {"attrsNoStripGrid", "attrsNoStripToggleButton", nullptr, &Self::_attrsNoStripGrid,
       &Self::_attrsNoStripToggleButton, nullptr},
      {"attrsNoRqsGrid", "attrsNoRqsToggleButton", nullptr, &Self::_attrsNoRqsGrid,
       &Self::_attrsNoRqsToggleButton, nullptr},
      {"attrsStripDSOGrid", "attrsStripDSOToggleButton", nullptr, &Self::_attrsStripDSOGrid,
       &Self::_attrsStripDSOToggleButton, nullptr},
  };
  for (const auto& row : rows) {
    this->*row.gridWidget = attributeRow(row.grid, row.toggle, _rowColumn,
                                         &(this->*row.toggleWidget), row.text ? 2 : 1);
    if (row.text) this->*row.textWidget = commandText(row.text, this->*row.gridWidget);
  }
}

void FileListAttrsUI::buildHardwareAttributes() {
  _hardAttrsLabel = leftLabel("hardAttrsLabel", _rowColumn);
  _hardWarnLabel = leftLabel("hardWarnLabel", _rowColumn);
  _attrsMachGrid = createManagedGrid("attrsMachGrid", _rowColumn, 2, 1);
  _attrsMachToggleButton =
      createManaged("attrsMachToggleButton", xmToggleButtonWidgetClass, _attrsMachGrid,
                    {{OvNrow, 0}, {OvNgravity, 4}, {OvNresizeHorizontal, False}});
  _attrsMachRowColumn = createManaged("attrsMachRowColumn", xmRowColumnWidgetClass,
                                      _attrsMachGrid, {{OvNrow, 1}, {XmNorientation, XmVERTICAL}});
  _attrsModelLabel = leftLabel("attrsModelLabel", _attrsMachRowColumn);
  _attrsModelRowColumn = toggleGroup("attrsModelRowColumn", _attrsMachRowColumn, 1);
  _attrsCpuLabel = leftLabel("attrsCpuLabel", _attrsMachRowColumn);
  _attrsCpuSpringBox = createManagedSpringBox("attrsCpuSpringBox", _attrsMachRowColumn);
  _r3kPushButton = createManaged("r3kPushButton", xmPushButtonWidgetClass, _attrsCpuSpringBox);
  _r4kPushButton = createManaged("r4kPushButton", xmPushButtonWidgetClass, _attrsCpuSpringBox);
  _attrsCpuSpringBox1 = createManagedSpringBox("attrsCpuSpringBox1", _attrsMachRowColumn);
  _r8kPushButton = createManaged("r8kPushButton", xmPushButtonWidgetClass, _attrsCpuSpringBox1);
  _r10kPushButton = createManaged("r10kPushButton", xmPushButtonWidgetClass, _attrsCpuSpringBox1);
  _attrsCpuBoardRowColumn = toggleGroup("attrsCpuBoardRowColumn", _attrsMachRowColumn, 4);
  _attrsGfxBoardLabel = leftLabel("attrsGfxBoardLabel", _attrsMachRowColumn);
  _attrsGfxBoardRowColumn = toggleGroup("attrsGfxBoardRowColumn", _attrsMachRowColumn, 4);
  _attrsSubgrLabel = leftLabel("attrsSubgrLabel", _attrsMachRowColumn);
  _attrsSubgrRowColumn = toggleGroup("attrsSubgrRowColumn", _attrsMachRowColumn, 4);
}

const char* FileListAttrsUI::className() const { return "FileListAttrsUI"; }

void FileListAttrsUI::clipResized(Widget clip, XtPointer clientData, XEvent* event, Boolean*) {
  if (event->type != ConfigureNotify) return;
  auto* self = static_cast<FileListAttrsUI*>(clientData);
  Dimension width = 0;
  XtVaGetValues(self->_rowColumn, XmNwidth, &width, nullptr);
  Dimension clipWidth = static_cast<Dimension>(event->xconfigure.width);
  (void)clip;
  if (clipWidth > 0 && clipWidth != width) XtVaSetValues(self->_rowColumn, XmNwidth, clipWidth, nullptr);
}

void FileListAttrsUI::attrsAssignArrowButton(Widget, XtPointer) {}
void FileListAttrsUI::attrsConfigOptionMenu(Widget, XtPointer) {}
void FileListAttrsUI::attrsConfigToggleButton(Widget, XtPointer) {}
void FileListAttrsUI::attrsExitOpText(Widget, XtPointer) {}
void FileListAttrsUI::attrsRemoveOpText(Widget, XtPointer) {}
void FileListAttrsUI::attrsPostOpText(Widget, XtPointer) {}
void FileListAttrsUI::attrsPreOpText(Widget, XtPointer) {}
void FileListAttrsUI::attrsClearPushButton(Widget, XtPointer) {}
void FileListAttrsUI::r3kPushButton(Widget, XtPointer) {}
void FileListAttrsUI::r4kPushButton(Widget, XtPointer) {}
void FileListAttrsUI::r8kPushButton(Widget, XtPointer) {}
void FileListAttrsUI::r10kPushButton(Widget, XtPointer) {}
