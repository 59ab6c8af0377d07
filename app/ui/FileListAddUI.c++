#include "app/ui/FileListAddUI.h"

#include <Xm/ArrowB.h>
#include <Xm/Label.h>
#include <Xm/List.h>
#include <Xm/PushB.h>
#include <Xm/TextF.h>

#include "app/ui/LayoutFonts.h"
#include "app/ui/LayoutWidgets.h"
#include "ov/OvGrid.h"

// The static callback of each callback method.
template <void (FileListAddUI::*method)(Widget, XtPointer)>
constexpr XtCallbackProc route = &routeToMethod<FileListAddUI, method>;

const char* const FileListAddUI::_defaultFileListAddUIResources[] = {
    "*directoryLabel.labelString:  File Browser",
    "*selectionLabel.labelString:  Filter",
    "*allPushButton.labelString:  All",
    "*nonePushButton.labelString:  None",
    "*arrowLabel.labelString:  Add",
    nullptr,
};

FileListAddUI::FileListAddUI(const char* name, Widget parent) : YrComponent(name) {
  installLayoutFonts(parent);
  setDefaultResources(parent, _defaultFileListAddUIResources);
  _baseWidget = XtVaCreateWidget(name, ovGridWidgetClass, parent, OvNnumRows, 5, nullptr);
  installDestroyHandler();

  _directoryLabel = createManaged("directoryLabel", xmLabelWidgetClass, _baseWidget,
                                  {{OvNrow, 0}, {XmNalignment, XmALIGNMENT_BEGINNING},
                                   {OvNgravity, 7}, {OvNresizeVertical, False}});
  _directoryTextField = createManaged("directoryTextField", xmTextFieldWidgetClass, _baseWidget,
                                      {{OvNrow, 1}, {OvNresizeVertical, False}});
  _scrolledWindow = createManagedScrolledWindow("scrolledWindow", _baseWidget, {{OvNrow, 2}});
  _filesList = createManaged("filesList", xmListWidgetClass, _scrolledWindow,
                             {{XmNselectionPolicy, XmEXTENDED_SELECT},
                              {XmNvisibleItemCount, 11},
                              {XmNlistSizePolicy, XmCONSTANT}});

  _selectionGrid = createManagedGrid("selectionGrid", _baseWidget, 1, 4,
                                     {{OvNrow, 3}, {OvNresizeVertical, False}});
  _selectionLabel =
      createManaged("selectionLabel", xmLabelWidgetClass, _selectionGrid,
                    {{OvNcolumn, 0}, {OvNgravity, 4}, {OvNresizeHorizontal, False}});
  _selectionTextField = createManaged("selectionTextField", xmTextFieldWidgetClass,
                                      _selectionGrid, {{OvNcolumn, 1}});
  _allPushButton = createManaged("allPushButton", xmPushButtonWidgetClass, _selectionGrid,
                                 {{OvNcolumn, 2}, {OvNresizeHorizontal, False}});
  _nonePushButton = createManaged("nonePushButton", xmPushButtonWidgetClass, _selectionGrid,
                                  {{OvNcolumn, 3}, {OvNresizeHorizontal, False}});

  // The arrow points at the file list, to the right of the panel.
  _arrowSpringBox = createManagedSpringBox("arrowSpringBox", _baseWidget,
                                           {{OvNrow, 4}, {OvNresizeVertical, False}});
  _arrowButton = createManagedArrow("arrowButton", _arrowSpringBox, XmARROW_RIGHT);
  _arrowLabel = createManaged("arrowLabel", xmLabelWidgetClass, _arrowSpringBox);

  addRoutes(this, {
      {_directoryTextField, XmNactivateCallback, route<&FileListAddUI::directoryTextField>},
      {_filesList, XmNdefaultActionCallback, route<&FileListAddUI::defaultAction>},
      {_selectionTextField, XmNvalueChangedCallback, route<&FileListAddUI::selectionTextField>},
      {_allPushButton, XmNactivateCallback, route<&FileListAddUI::allPushButton>},
      {_nonePushButton, XmNactivateCallback, route<&FileListAddUI::nonePushButton>},
      {_arrowButton, XmNactivateCallback, route<&FileListAddUI::arrowButton>},
  });
}

const char* FileListAddUI::className() const { return "FileListAddUI"; }

void FileListAddUI::allPushButton(Widget, XtPointer) {}
void FileListAddUI::arrowButton(Widget, XtPointer) {}
void FileListAddUI::defaultAction(Widget, XtPointer) {}
void FileListAddUI::directoryTextField(Widget, XtPointer) {}
void FileListAddUI::nonePushButton(Widget, XtPointer) {}
void FileListAddUI::selectionTextField(Widget, XtPointer) {}
