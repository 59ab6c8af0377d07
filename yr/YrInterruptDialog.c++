#include "yr/YrInterruptDialog.h"

#include <Xm/MessageB.h>

#include "yr/YrApp.h"

YrInterruptDialog::YrInterruptDialog(const char* name) : YrDialogManager(name, Working) {}

Widget YrInterruptDialog::createDialog(Widget parent) {
  Widget d = XmCreateWorkingDialog(parent, const_cast<char*>(_name.c_str()), nullptr, 0);
  XtUnmanageChild(XmMessageBoxGetChild(d, XmDIALOG_OK_BUTTON));
  XmString stop = XmStringCreateLocalized(const_cast<char*>("Interrupt"));
  XtVaSetValues(d, XmNcancelLabelString, stop, nullptr);
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
