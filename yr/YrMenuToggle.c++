#include "yr/YrMenuToggle.h"

#include <Xm/ToggleB.h>

YrMenuToggle::YrMenuToggle(Widget pane, const char* label, XtCallbackProc callback,
                           XtPointer clientData, int position)
    : YrMenuItem(label) {
  XmString text = XmStringCreateLocalized(const_cast<char*>(label));
  Arg args[3];
  int n = 0;
  XtSetArg(args[n], XmNlabelString, text);
  ++n;
  XtSetArg(args[n], XmNvisibleWhenOff, True);
  ++n;
  n = positionArgs(args, n, position);
  _baseWidget = XmCreateToggleButton(pane, const_cast<char*>(_name.c_str()), args, n);
  XmStringFree(text);
  installDestroyHandler();
  if (callback) XtAddCallback(_baseWidget, XmNvalueChangedCallback, callback, clientData);
  XtManageChild(_baseWidget);
}

void YrMenuToggle::setVisualState(bool on) {
  if (_baseWidget) XmToggleButtonSetState(_baseWidget, on ? True : False, False);
}

bool YrMenuToggle::state() const { return _baseWidget && XmToggleButtonGetState(_baseWidget); }
