#include "yr/YrInterruptDialog.h"

#include <Xm/MessageB.h>

#include "yr/YrApp.h"

YrInterruptDialog::YrInterruptDialog(const char* name) : YrDialogManager(name, Working) {}

Widget YrInterruptDialog::createDialog(Widget parent) {
  Widget d = XmCreateWorkingDialog(parent, const_cast<char*>(_name.c_str()), nullptr, 0);
  XtUnmanageChild(XmMessageBoxGetChild(d, XmDIALOG_OK_BUTTON));
  XmString stop = XmStringCreateLocalized(const_cast<char*>("Interrupt"));
  // Modal while it is up: the operation it watches runs inside a callback
  // and handles events only to see the button; a click elsewhere would run
  // another operation (a second search, an Open) in the middle of it.
  XtVaSetValues(d, XmNcancelLabelString, stop, XmNdialogStyle, XmDIALOG_FULL_APPLICATION_MODAL,
                nullptr);
  XmStringFree(stop);
  return d;
}

Widget YrInterruptDialog::post(const char* message, void* clientData, Callback ok,
                               Callback cancel, Callback help) {
  _interrupted = false;
  Widget d = YrDialogManager::post(message, clientData, ok, cancel, help);
  XmUpdateDisplay(d);
  return d;
}

void YrInterruptDialog::cancel(Widget w, XtPointer callData) {
  _interrupted = true;
  YrDialogManager::cancel(w, callData);
}

bool YrInterruptDialog::wasInterrupted() {
  XtAppContext context = YrApp::theApp()->appContext();
  XSync(YrApp::theApp()->display(), False);
  while (!_interrupted && XtAppPending(context)) XtAppProcessEvent(context, XtIMAll);
  return _interrupted;
}

YrInterruptDialog* getTheInterruptDialog() {
  static YrInterruptDialog* d = new YrInterruptDialog("interruptDialog");
  return d;
}
