#include "app/ui/FileListTagsUI.h"

#include <Xm/ArrowB.h>
#include <Xm/Label.h>
#include <Xm/List.h>
#include <Xm/PushB.h>
#include <Xm/TextF.h>

#include "app/ui/LayoutFonts.h"
#include "app/ui/LayoutWidgets.h"
#include "ov/OvGrid.h"

// The static callback of each callback method.
template <void (FileListTagsUI::*method)(Widget, XtPointer)>
constexpr XtCallbackProc route = &routeToMethod<FileListTagsUI, method>;

const char* const FileListTagsUI::_defaultFileListTagsUIResources[] = {
    "*label.labelString:  Tags",
    "*addPushButton.labelString:  Add",
    "*replacePushButton.labelString:  Replace",
    "*deletePushButton.labelString:  Delete",
    "*arrowLabel.labelString:  Assign",
    nullptr,
};

FileListTagsUI::FileListTagsUI(const char* name, Widget parent) : YrComponent(name) {
  installLayoutFonts(parent);
  setDefaultResources(parent, _defaultFileListTagsUIResources);
  _baseWidget = XtVaCreateWidget(name, ovGridWidgetClass, parent, OvNnumRows, 5, nullptr);
  installDestroyHandler();

  _label = createManaged("label", xmLabelWidgetClass, _baseWidget,
                         {{OvNrow, 0}, {XmNalignment, XmALIGNMENT_BEGINNING}, {OvNgravity, 7},
                          {OvNresizeVertical, False}});
  _scrolledWindow = createManagedScrolledWindow("scrolledWindow", _baseWidget, {{OvNrow, 1}});
  // One tag at a time: the browse policy reports every change of the
  // selected tag, also while the mouse is dragged.
  _tagsList = createManaged("tagsList", xmListWidgetClass, _scrolledWindow,
                            {{XmNselectionPolicy, XmBROWSE_SELECT},
                             {XmNvisibleItemCount, 8},
                             {XmNlistSizePolicy, XmCONSTANT}});
  _selectionTextField = createManaged("selectionTextField", xmTextFieldWidgetClass, _baseWidget,
                                      {{OvNrow, 2}, {OvNresizeVertical, False}});

  _buttonSpringBox = createManagedSpringBox("buttonSpringBox", _baseWidget,
                                            {{OvNrow, 3}, {OvNresizeVertical, False}});
  _addPushButton = createManaged("addPushButton", xmPushButtonWidgetClass, _buttonSpringBox);
  _replacePushButton =
      createManaged("replacePushButton", xmPushButtonWidgetClass, _buttonSpringBox);
  _deletePushButton = createManaged("deletePushButton", xmPushButtonWidgetClass, _buttonSpringBox);

  _arrowSpringBox = createManagedSpringBox("arrowSpringBox", _baseWidget,
                                           {{OvNrow, 4}, {OvNresizeVertical, False}});
  _arrowButton = createManagedArrow("arrowButton", _arrowSpringBox, XmARROW_RIGHT);
  _arrowLabel = createManaged("arrowLabel", xmLabelWidgetClass, _arrowSpringBox);

  addRoutes(this, {
      {_tagsList, XmNsingleSelectionCallback, route<&FileListTagsUI::singleSelection>},
      {_tagsList, XmNbrowseSelectionCallback, route<&FileListTagsUI::browseSelection>},
      {_tagsList, XmNdefaultActionCallback, route<&FileListTagsUI::defaultAction>},
      {_selectionTextField, XmNactivateCallback, route<&FileListTagsUI::selectionTextField>},
      {_addPushButton, XmNactivateCallback, route<&FileListTagsUI::addPushButton>},
      {_replacePushButton, XmNactivateCallback, route<&FileListTagsUI::replacePushButton>},
      {_deletePushButton, XmNactivateCallback, route<&FileListTagsUI::deletePushButton>},
      {_arrowButton, XmNactivateCallback, route<&FileListTagsUI::arrowButton>},
  });
}

const char* FileListTagsUI::className() const { return "FileListTagsUI"; }

void FileListTagsUI::addPushButton(Widget, XtPointer) {}
void FileListTagsUI::arrowButton(Widget, XtPointer) {}
void FileListTagsUI::browseSelection(Widget, XtPointer) {}
void FileListTagsUI::defaultAction(Widget, XtPointer) {}
void FileListTagsUI::deletePushButton(Widget, XtPointer) {}
void FileListTagsUI::replacePushButton(Widget, XtPointer) {}
void FileListTagsUI::selectionTextField(Widget, XtPointer) {}
void FileListTagsUI::singleSelection(Widget, XtPointer) {}
