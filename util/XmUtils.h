// Motif helpers shared by the panels.
#ifndef TAMBLIN_UTIL_XMUTILS_H
#define TAMBLIN_UTIL_XMUTILS_H

#include <Xm/Xm.h>

#include <cstddef>
#include <string>

/// Removes every blank (space) from a text field's text, then puts the
/// insertion point at the end and scrolls to it.  Called from the text
/// fields' value-changed and activate callbacks so that names typed into them
/// never hold blanks.
void deblankTextField(Widget textField);

/// One compound string holding the n strings on separate lines (a
/// compound string of "" when n <= 0).  The caller frees it.
XmString xs_str_array_to_xmstr(char** strings, int n);

/// A new array of n compound strings, one per string, with "\n" inside a
/// string breaking its line.  The caller frees the strings and the array
/// (XtFree).
XmString* xs_str_array_to_xmstr_array(char** strings, int n);

/// Values longer than this many bytes are shown cut: one line of text
/// drawn whole would need an X request longer than the protocol allows.
constexpr size_t kLongestShownValue = 16384;
/// How much of a cut value is shown, after the mark.
constexpr size_t kShownPartOfCutValue = 1024;

/// What a field shows of value: the value itself, or, when it is longer
/// than kLongestShownValue, a mark naming its length followed by its first
/// bytes (never half a UTF-8 character).
std::string shownValue(const std::string& value);

/// Puts value into a text field or text, the insertion point at the start.
/// A value shown cut makes the field read-only until another value is put
/// in, so that what it shows can never be taken for the value;
/// fieldValue() returns the value whole.
void showFieldValue(Widget field, const std::string& value);
/// The value of a text field or text: the whole value when it shows one
/// cut, else its text.
std::string fieldValue(Widget field);

/// A label's text, cut like a field's value.
void setLabelValue(Widget label, const std::string& value);

#endif
