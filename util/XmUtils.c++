#include "util/XmUtils.h"

#include <Xm/Text.h>
#include <Xm/TextF.h>

#include <string>
#include <unordered_map>

#include "util/Utils.h"

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

namespace {

// The whole values of the fields that show theirs cut, by field.
struct CutValue {
  std::string shown;
  std::string whole;
};
std::unordered_map<Widget, CutValue>& cutValues() {
  static std::unordered_map<Widget, CutValue> values;
  return values;
}

void forgetCutValue(Widget w, XtPointer, XtPointer) { cutValues().erase(w); }

std::string textOf(Widget field) {
  char* text = XmIsTextField(field) ? XmTextFieldGetString(field) : XmTextGetString(field);
  std::string out = text ? text : "";
  XtFree(text);
  return out;
}

void setTextOf(Widget field, const std::string& text) {
  if (XmIsTextField(field)) {
    XmTextFieldSetString(field, const_cast<char*>(text.c_str()));
    XmTextFieldSetInsertionPosition(field, 0);
    XmTextFieldShowPosition(field, 0);
  } else {
    XmTextSetString(field, const_cast<char*>(text.c_str()));
    XmTextSetInsertionPosition(field, 0);
    XmTextShowPosition(field, 0);
  }
}

}  // namespace

std::string shownValue(const std::string& value) {
  if (value.size() <= kLongestShownValue) return value;
  size_t end = utf8Prefix(value, kShownPartOfCutValue);
  return "[CUT: " + std::to_string(value.size()) + " bytes, too long to show; kept whole] " +
         value.substr(0, end) + " ...";
}

void showFieldValue(Widget field, const std::string& value) {
  std::string shown = shownValue(value);
  auto& values = cutValues();
  auto known = values.find(field);
  if (shown.size() == value.size()) {
    if (known != values.end()) {
      values.erase(known);
      XtVaSetValues(field, XmNeditable, True, nullptr);
    }
    setTextOf(field, value);
    return;
  }
  if (known == values.end()) XtAddCallback(field, XmNdestroyCallback, &forgetCutValue, nullptr);
  values[field] = {shown, value};
  XtVaSetValues(field, XmNeditable, False, nullptr);
  setTextOf(field, shown);
}

std::string fieldValue(Widget field) {
  std::string text = textOf(field);
  auto known = cutValues().find(field);
  if (known != cutValues().end() && known->second.shown == text) return known->second.whole;
  return text;
}

void setLabelValue(Widget label, const std::string& value) {
  XmString s = XmStringCreateLocalized(const_cast<char*>(shownValue(value).c_str()));
  XtVaSetValues(label, XmNlabelString, s, nullptr);
  XmStringFree(s);
}
