#include "app/ui/FileListTagsUI.h"

#include <Xm/ArrowB.h>
#include <Xm/Label.h>
#include <Xm/List.h>
#include <Xm/PushB.h>
#include <Xm/TextF.h>

#include "app/ui/LayoutFonts.h"
#include "app/ui/LayoutWidgets.h"
#include "ov/OvGrid.h"

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
  XtAddCallback(_tagsList, XmNsingleSelectionCallback, &FileListTagsUI::singleSelectionCallback,
                this);
  XtAddCallback(_tagsList, XmNbrowseSelectionCallback, &FileListTagsUI::browseSelectionCallback,
                this);
  XtAddCallback(_tagsList, XmNdefaultActionCallback, &FileListTagsUI::defaultActionCallback,
                this);
  _selectionTextField = createManaged("selectionTextField", xmTextFieldWidgetClass, _baseWidget,
                                      {{OvNrow, 2}, {OvNresizeVertical, False}});
  XtAddCallback(_selectionTextField, XmNactivateCallback,
                &FileListTagsUI::selectionTextFieldCallback, this);

  _buttonSpringBox = createManagedSpringBox("buttonSpringBox", _baseWidget,
                                            {{OvNrow, 3}, {OvNresizeVertical, False}});
  _addPushButton = createManaged("addPushButton", xmPushButtonWidgetClass, _buttonSpringBox);
  XtAddCallback(_addPushButton, XmNactivateCallback, &FileListTagsUI::addPushButtonCallback,
                this);
  _replacePushButton =
      createManaged("replacePushButton", xmPushButtonWidgetClass, _buttonSpringBox);
  XtAddCallback(_replacePushButton, XmNactivateCallback,
                &FileListTagsUI::replacePushButtonCallback, this);
  _deletePushButton = createManaged("deletePushButton", xmPushButtonWidgetClass, _buttonSpringBox);
  XtAddCallback(_deletePushButton, XmNactivateCallback, &FileListTagsUI::deletePushButtonCallback,
                this);

  _arrowSpringBox = createManagedSpringBox("arrowSpringBox", _baseWidget,
                                           {{OvNrow, 4}, {OvNresizeVertical, False}});
  _arrowButton = createManaged("arrowButton", xmArrowButtonWidgetClass, _arrowSpringBox,
                               {{XmNarrowDirection, XmARROW_RIGHT}, {XmNwidth, 40},
                                {XmNheight, 30}});
  XtAddCallback(_arrowButton, XmNactivateCallback, &FileListTagsUI::arrowButtonCallback, this);
  _arrowLabel = createManaged("arrowLabel", xmLabelWidgetClass, _arrowSpringBox);
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

void FileListTagsUI::addPushButtonCallback(Widget w, XtPointer clientData, XtPointer callData) {
  static_cast<FileListTagsUI*>(clientData)->addPushButton(w, callData);
}

void FileListTagsUI::arrowButtonCallback(Widget w, XtPointer clientData, XtPointer callData) {
  static_cast<FileListTagsUI*>(clientData)->arrowButton(w, callData);
}

void FileListTagsUI::browseSelectionCallback(Widget w, XtPointer clientData, XtPointer callData) {
  static_cast<FileListTagsUI*>(clientData)->browseSelection(w, callData);
}

void FileListTagsUI::defaultActionCallback(Widget w, XtPointer clientData, XtPointer callData) {
  static_cast<FileListTagsUI*>(clientData)->defaultAction(w, callData);
}

void FileListTagsUI::deletePushButtonCallback(Widget w, XtPointer clientData, XtPointer callData) {
  static_cast<FileListTagsUI*>(clientData)->deletePushButton(w, callData);
}

void FileListTagsUI::replacePushButtonCallback(Widget w, XtPointer clientData, XtPointer callData) {
  static_cast<FileListTagsUI*>(clientData)->replacePushButton(w, callData);
}

void FileListTagsUI::selectionTextFieldCallback(Widget w, XtPointer clientData, XtPointer callData) {
  static_cast<FileListTagsUI*>(clientData)->selectionTextField(w, callData);
}

void FileListTagsUI::singleSelectionCallback(Widget w, XtPointer clientData, XtPointer callData) {
  static_cast<FileListTagsUI*>(clientData)->singleSelection(w, callData);
}
