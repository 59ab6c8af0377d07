#include "app/ui/ViewUI.h"

#include <Xm/Form.h>
#include <Xm/Frame.h>
#include <Xm/PanedW.h>
#include <Xm/ScrolledW.h>
#include <Xm/Text.h>

#include "app/ui/LayoutFonts.h"
#include "ov/OvGrid.h"

namespace {

void attachAllSides(Widget w) {
  XtVaSetValues(w, XmNtopAttachment, XmATTACH_FORM, XmNbottomAttachment, XmATTACH_FORM,
                XmNleftAttachment, XmATTACH_FORM, XmNrightAttachment, XmATTACH_FORM, nullptr);
}

}  // namespace

ViewUI::ViewUI(const char* name, Widget parent) : YrComponent(name) {
  installLayoutFonts(parent);
  // Taller than the panels' first design (710): a subsystem's mapping and
  // rules then both show several lines; the window still fits 1280x1024.
  _baseWidget = XtVaCreateWidget(name, ovGridWidgetClass, parent, OvNnumRows, 2, XmNwidth, kDefaultWidth,
                                 XmNheight, kDefaultHeight, nullptr);
  installDestroyHandler();

  _viewPanedWindow = XtVaCreateManagedWidget("viewPanedWindow", xmPanedWindowWidgetClass,
                                             _baseWidget, OvNrow, 1, OvNcolumn, 0, nullptr);

  _messageForm = XtVaCreateManagedWidget("messageForm", xmFormWidgetClass, _viewPanedWindow,
                                         XmNwidth, 830, XmNheight, 91, nullptr);
  _scrolledWindow = XtVaCreateManagedWidget(
      "scrolledWindow", xmScrolledWindowWidgetClass, _messageForm, XmNscrollingPolicy,
      XmAPPLICATION_DEFINED, XmNvisualPolicy, XmVARIABLE, XmNscrollBarDisplayPolicy, XmSTATIC,
      nullptr);
  attachAllSides(_scrolledWindow);
  _messageText = XtVaCreateManagedWidget(
      "messageText", xmTextWidgetClass, _scrolledWindow, XmNeditMode, XmMULTI_LINE_EDIT,
      XmNeditable, False, XmNwordWrap, True, XmNrows, 5, XmNscrollHorizontal, False,
      XmNcursorPositionVisible, False, nullptr);

  _viewForm = XtVaCreateManagedWidget("viewForm", xmFormWidgetClass, _viewPanedWindow, XmNwidth,
                                      830, XmNheight, kBodyHeight, nullptr);
  _rightForm = XtVaCreateManagedWidget("rightForm", xmFormWidgetClass, _viewForm, nullptr);
  _rightFrame = XtVaCreateManagedWidget("rightFrame", xmFrameWidgetClass, _viewForm, nullptr);
  _leftForm = XtVaCreateManagedWidget(
      "leftForm", xmFormWidgetClass, _viewForm, XmNtopAttachment, XmATTACH_FORM,
      XmNbottomAttachment, XmATTACH_FORM, XmNleftAttachment, XmATTACH_FORM, nullptr);
  for (Widget right : {_rightForm, _rightFrame})
    XtVaSetValues(right, XmNtopAttachment, XmATTACH_FORM, XmNbottomAttachment, XmATTACH_FORM,
                  XmNrightAttachment, XmATTACH_FORM, XmNleftAttachment, XmATTACH_WIDGET,
                  XmNleftWidget, _leftForm, nullptr);

  _specBody = XtVaCreateManagedWidget("specBody", xmFrameWidgetClass, _leftForm, XmNwidth, 390,
                                      XmNheight, kBodyHeight, nullptr);
  _permsBody = XtVaCreateManagedWidget("permsBody", xmFormWidgetClass, _leftForm, nullptr);
  _filesBody = XtVaCreateManagedWidget("filesBody", xmPanedWindowWidgetClass, _leftForm, nullptr);
  _addBody = XtVaCreateManagedWidget("addBody", xmFormWidgetClass, _filesBody, XmNheight, 384,
                                     nullptr);
  // The two bodies ask for more height than the window gives them; without a
  // floor the paned window takes it all from the lower one and the tag list
  // shrinks to a single row.
  _tagsBody = XtVaCreateManagedWidget("tagsBody", xmFormWidgetClass, _filesBody, XmNheight, 384,
                                      XmNpaneMinimum, 250, nullptr);
  _generateBody = XtVaCreateManagedWidget("generateBody", xmFormWidgetClass, _leftForm, nullptr);
  _attrsBody = XtVaCreateManagedWidget("attrsBody", xmFormWidgetClass, _leftForm, nullptr);
  for (Widget body : {_specBody, _permsBody, _filesBody, _generateBody, _attrsBody})
    attachAllSides(body);
}

const char* ViewUI::className() const { return "ViewUI"; }
