#include "yr/YrMenuItem.h"

#include <Xm/PushB.h>
#include <Xm/Xm.h>

#include <cctype>

std::string YrMenuItem::widgetNameFor(const char* label) {
  // "Show Messages" -> "ShowMessages", "Create Patch..." -> "CreatePatch":
  // names that a resource line can address.
  std::string name;
  for (const char* p = label; p && *p; ++p)
    if (std::isalnum(static_cast<unsigned char>(*p))) name += *p;
  return name.empty() ? "item" : name;
}

int YrMenuItem::positionArgs(Arg* args, int n, int position) {
  XtSetArg(args[n], XmNpositionIndex, position < 0 ? XmLAST_POSITION : position);
  return n + 1;
}

YrMenuItem::YrMenuItem(const char* label) : YrComponent(widgetNameFor(label).c_str()), _label(label) {}

YrMenuItem::YrMenuItem(Widget pane, const char* label, XtCallbackProc callback,
                       XtPointer clientData, int position)
    : YrMenuItem(label) {
  XmString text = XmStringCreateLocalized(const_cast<char*>(label));
  Arg args[2];
  int n = 0;
  XtSetArg(args[n], XmNlabelString, text);
  ++n;
  n = positionArgs(args, n, position);
  _baseWidget = XmCreatePushButton(pane, const_cast<char*>(_name.c_str()), args, n);
  XmStringFree(text);
  installDestroyHandler();
  if (callback) XtAddCallback(_baseWidget, XmNactivateCallback, callback, clientData);
  XtManageChild(_baseWidget);
}

void YrMenuItem::activate() {
  if (_baseWidget) XtSetSensitive(_baseWidget, True);
}

void YrMenuItem::deactivate() {
  if (_baseWidget) XtSetSensitive(_baseWidget, False);
}

bool YrMenuItem::isActive() const { return _baseWidget && XtIsSensitive(_baseWidget); }
