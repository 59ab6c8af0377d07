// Motif helpers shared by the panels.
#ifndef TAMBLIN_UTIL_XMUTILS_H
#define TAMBLIN_UTIL_XMUTILS_H

#include <Xm/Xm.h>

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

#endif
