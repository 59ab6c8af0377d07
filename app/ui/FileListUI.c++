#include "app/ui/FileListUI.h"

#include <Xm/Label.h>
#include <Xm/PushB.h>
#include <Xm/TextF.h>

#include "app/ui/LayoutFonts.h"
#include "app/ui/LayoutWidgets.h"
#include "ov/OvGrid.h"
#include "ov/OvList.h"

// The static callback of each callback method.
template <void (FileListUI::*method)(Widget, XtPointer)>
constexpr XtCallbackProc route = &routeToMethod<FileListUI, method>;

const char* const FileListUI::_defaultFileListUIResources[] = {
    "*label.labelString:  Idb File:",
    "*selectionLabel.labelString:  Filter",
    "*allPushButton.labelString:  All",
    "*nonePushButton.labelString:  None",
    "*removePushButton.labelString:  Delete Selected Items",
    "*undoPushButton.labelString:  Undo Last Operation",
    nullptr,
};

FileListUI::FileListUI(const char* name, Widget parent) : YrComponent(name) {
  installLayoutFonts(parent);
  setDefaultResources(parent, _defaultFileListUIResources);
  _baseWidget = XtVaCreateWidget(name, ovGridWidgetClass, parent, OvNnumRows, 4, nullptr);
  installDestroyHandler();

  _label = createManaged("label", xmLabelWidgetClass, _baseWidget,
                         {{OvNrow, 0}, {OvNcolumn, 0}, {XmNalignment, XmALIGNMENT_BEGINNING},
                          {OvNgravity, 7}, {OvNresizeVertical, False}});
  _scrolledWindow = createManagedScrolledWindow(
      "scrolledWindow", _baseWidget,
      {{OvNrow, 1}, {OvNcolumn, 0}, {XmNwidth, 389}, {XmNheight, 368}});
  // The idb can hold a million records: the list draws only the rows that
  // show and brings its own scroll bars into the scrolled window.
  _fileListWidget = createManaged("fileList", ovListWidgetClass, _scrolledWindow,
                            {{XmNselectionPolicy, XmEXTENDED_SELECT},
                             {XmNwidth, 371},
                             {XmNheight, 350}});

  // The filter row keeps its height; the list takes what is left.
  _selectionGrid = createManagedGrid("selectionGrid", _baseWidget, 1, 4,
                                     {{OvNrow, 2}, {OvNcolumn, 0}, {OvNresizeVertical, False}});
  _selectionLabel =
      createManaged("selectionLabel", xmLabelWidgetClass, _selectionGrid,
                    {{OvNcolumn, 0}, {OvNgravity, 4}, {OvNresizeVertical, False},
                     {OvNresizeHorizontal, False}});
  _selectionTextField = createManaged("selectionTextField", xmTextFieldWidgetClass,
                                      _selectionGrid,
                                      {{OvNcolumn, 1}, {XmNwidth, 389}, {XmNheight, 33}});
  _allPushButton = createManaged("allPushButton", xmPushButtonWidgetClass, _selectionGrid,
                                 {{OvNcolumn, 2}, {OvNresizeHorizontal, False}});
  _nonePushButton = createManaged("nonePushButton", xmPushButtonWidgetClass, _selectionGrid,
                                  {{OvNcolumn, 3}, {OvNresizeHorizontal, False}});

  _springBox = createManagedSpringBox("springBox", _baseWidget,
                                      {{OvNrow, 3}, {OvNcolumn, 0}, {OvNresizeVertical, False}});
  _removePushButton = createManaged("removePushButton", xmPushButtonWidgetClass, _springBox);
  _undoPushButton = createManaged("undoPushButton", xmPushButtonWidgetClass, _springBox);

  addRoutes(this, {
      {_fileListWidget, XmNdefaultActionCallback, route<&FileListUI::defaultAction>},
      // The filter runs on Return: on a large idb each run takes a moment,
      // and typing an expression must not pay it per key.
      {_selectionTextField, XmNactivateCallback, route<&FileListUI::selectionTextField>},
      {_allPushButton, XmNactivateCallback, route<&FileListUI::allPushButton>},
      {_nonePushButton, XmNactivateCallback, route<&FileListUI::nonePushButton>},
      {_removePushButton, XmNactivateCallback, route<&FileListUI::removePushButton>},
      {_undoPushButton, XmNactivateCallback, route<&FileListUI::undoPushButton>},
  });
}

const char* FileListUI::className() const { return "FileListUI"; }

void FileListUI::allPushButton(Widget, XtPointer) {}
void FileListUI::defaultAction(Widget, XtPointer) {}
void FileListUI::nonePushButton(Widget, XtPointer) {}
void FileListUI::removePushButton(Widget, XtPointer) {}
void FileListUI::selectionTextField(Widget, XtPointer) {}
void FileListUI::undoPushButton(Widget, XtPointer) {}
