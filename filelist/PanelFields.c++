#include "filelist/PanelFields.h"

#include <Xm/Text.h>
#include <Xm/TextF.h>


std::string fieldText(Widget w) {
  char* text = XmIsTextField(w) ? XmTextFieldGetString(w) : XmTextGetString(w);
  std::string out = text ? text : "";
  XtFree(text);
  return out;
}

void setFieldText(Widget w, const std::string& text) {
  char* value = const_cast<char*>(text.c_str());
  if (XmIsTextField(w)) {
    XmTextFieldSetString(w, value);
    XmTextPosition end = XmTextFieldGetLastPosition(w);
    XmTextFieldSetInsertionPosition(w, end);
    XmTextFieldShowPosition(w, end);
  } else {
    XmTextSetString(w, value);
    XmTextPosition end = XmTextGetLastPosition(w);
    XmTextSetInsertionPosition(w, end);
    XmTextShowPosition(w, end);
  }
}

void setLabelText(Widget w, const std::string& text) {
  XmString s = XmStringCreateLocalized(const_cast<char*>(text.c_str()));
  XtVaSetValues(w, XmNlabelString, s, nullptr);
  XmStringFree(s);
}
