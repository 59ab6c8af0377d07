#include "util/XmUtils.h"

#include <Xm/TextF.h>

#include <string>

void deblankTextField(Widget textField) {
  char* text = XmTextFieldGetString(textField);
  std::string kept;
  bool changed = false;
  for (const char* p = text; *p; ++p) {
    if (*p == ' ')
      changed = true;
    else
      kept += *p;
  }
  XtFree(text);
  if (changed) XmTextFieldSetString(textField, const_cast<char*>(kept.c_str()));
  XmTextPosition end = XmTextFieldGetLastPosition(textField);
  XmTextFieldSetInsertionPosition(textField, end);
  XmTextFieldShowPosition(textField, end);
}

XmString xs_str_array_to_xmstr(char** strings, int n) {
  if (n <= 0) return XmStringCreate(const_cast<char*>(""), XmFONTLIST_DEFAULT_TAG);
  XmString result = nullptr;
  for (int i = 0; i < n; ++i) {
    XmString piece = XmStringCreate(strings[i], XmFONTLIST_DEFAULT_TAG);
    if (!result) {
      result = piece;
      continue;
    }
    XmString sep = XmStringSeparatorCreate();
    XmString withSep = XmStringConcat(result, sep);
    XmString next = XmStringConcat(withSep, piece);
    XmStringFree(result);
    XmStringFree(sep);
    XmStringFree(withSep);
    XmStringFree(piece);
    result = next;
  }
  return result;
}

XmString* xs_str_array_to_xmstr_array(char** strings, int n) {
  if (n <= 0) return nullptr;
  XmString* array = reinterpret_cast<XmString*>(XtMalloc(sizeof(XmString) * static_cast<unsigned>(n)));
  for (int i = 0; i < n; ++i) array[i] = XmStringCreateLtoR(strings[i], XmFONTLIST_DEFAULT_TAG);
  return array;
}
