#include "yr/YrTabPanel.h"

#include <Xm/PushB.h>
#include <Xm/RowColumn.h>

#include <algorithm>

YrTabPanel::YrTabPanel(const char* name, Widget parent, int horizontal, int height)
    : YrComponent(name) {
  Arg args[6];
  int n = 0;
  XtSetArg(args[n], XmNorientation, horizontal ? XmHORIZONTAL : XmVERTICAL);
  ++n;
  XtSetArg(args[n], XmNpacking, XmPACK_TIGHT);
  ++n;
  XtSetArg(args[n], XmNspacing, 0);
  ++n;
  XtSetArg(args[n], XmNmarginHeight, 0);
  ++n;
  XtSetArg(args[n], XmNmarginWidth, 0);
  ++n;
  if (height > 0) {
    XtSetArg(args[n], XmNheight, height);
    ++n;
  }
  _baseWidget = XmCreateRowColumn(parent, const_cast<char*>(name), args, n);
  installDestroyHandler();
}

int YrTabPanel::addTab(const char* name) {
  int index = numTabs();
  std::string tabName = name && *name ? name : std::to_string(index);
  Arg args[4];
  int n = 0;
  XtSetArg(args[n], XmNshadowThickness, 0);
  ++n;
  XtSetArg(args[n], XmNmarginWidth, 0);
  ++n;
  XtSetArg(args[n], XmNmarginHeight, 0);
  ++n;
  XtSetArg(args[n], XmNhighlightThickness, 0);
  ++n;
  std::string widgetName = "tab" + std::to_string(index);
  Widget w = XmCreatePushButton(_baseWidget, const_cast<char*>(widgetName.c_str()), args, n);
  XtAddCallback(w, XmNactivateCallback, &YrTabPanel::activateCallback, this);
  XtManageChild(w);
  _tabs.push_back(w);
  _names.push_back(tabName);
  return index;
}

Widget YrTabPanel::tab(int index) const {
  return index >= 0 && index < numTabs() ? _tabs[index] : nullptr;
}

int YrTabPanel::indexOf(const char* name) const {
  for (int i = 0; i < numTabs(); ++i)
    if (_names[i] == name) return i;
  return -1;
}

void YrTabPanel::setTabPixmap(int index, Pixmap pixmap) {
  if (Widget w = tab(index))
    XtVaSetValues(w, XmNlabelType, XmPIXMAP, XmNlabelPixmap, pixmap, nullptr);
}

void YrTabPanel::setTabLabel(int index, const char* text) {
  Widget w = tab(index);
  if (!w) return;
  XmString s = XmStringCreateLocalized(const_cast<char*>(text));
  // A text has no picture of a tab around it: a frame of its own (the
  // window border, whatever shadow the owner gives the selected tab) and
  // some room keep the tabs apart.
  XtVaSetValues(w, XmNlabelType, XmSTRING, XmNlabelString, s, XmNmarginWidth, kTextMarginWidth,
                XmNmarginHeight, kTextMarginHeight, XmNborderWidth, 1, nullptr);
  XmStringFree(s);
  XtVaSetValues(_baseWidget, XmNspacing, kTextTabSpacing, nullptr);
}

bool YrTabPanel::selectTab(int index, bool notify) {
  if (!tab(index)) return false;
  _current = index;
  if (notify)
    for (const Listener& l : std::vector<Listener>(_listeners)) l.callback(this, l.clientData, index);
  return true;
}

bool YrTabPanel::selectTab(const char* name, bool notify) {
  return selectTab(indexOf(name ? name : ""), notify);
}

void YrTabPanel::addSelectCallback(SelectCallback callback, void* clientData) {
  _listeners.push_back({callback, clientData});
}

void YrTabPanel::activateCallback(Widget w, XtPointer clientData, XtPointer) {
  static_cast<YrTabPanel*>(clientData)->pressed(w);
}

void YrTabPanel::pressed(Widget w) {
  auto it = std::find(_tabs.begin(), _tabs.end(), w);
  if (it != _tabs.end()) selectTab(static_cast<int>(it - _tabs.begin()), true);
}
