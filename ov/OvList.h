// OvList: a list widget for very long lists (a million rows and more).
//
// It draws only the rows that show and asks a data source for their text
// and selected state while it draws them: the list keeps no copy of the
// rows and no selection of its own.  What the user does to the selection
// arrives as gestures (select one row, toggle one, select a range ...)
// through the gesture callback; the owner changes its selection and calls
// OvListRedraw.  Positions count from 1, as in XmList.
//
// For the user it behaves as a Motif list: with selectionPolicy
// XmEXTENDED_SELECT a click selects one row, Ctrl-click toggles one,
// Shift-click and dragging select a range, Ctrl-drag sets a range to the
// state of the row where it started; arrows, Page keys and Home/End move
// the location cursor and select (Shift extends, Ctrl only moves), space
// selects (Ctrl toggles), Ctrl+/ selects all, Ctrl+\ deselects all, and a
// double click or Return is the default action.  XmMULTIPLE_SELECT makes
// a click and space toggle; XmBROWSE_SELECT and XmSINGLE_SELECT select one
// row.  It takes part in keyboard traversal as a tab group, draws the
// location cursor and focus highlight as XmList does, and takes its text
// font from the render table (resource "renderTable", an Xft rendition).
//
// Inside an XmScrolledWindow (XmAPPLICATION_DEFINED scrolling) the list
// makes and drives its own scroll bars there: no X window is ever as high
// as the list.  A row is drawn from at most OvLIST_MAX_ROW_BYTES bytes;
// a longer row ends in a visible cut mark, so no X request grows with the
// length of a line.  Rows are UTF-8; bytes that are not valid UTF-8 show as
// U+FFFD.
#ifndef TAMBLIN_OV_OVLIST_H
#define TAMBLIN_OV_OVLIST_H

#include <Xm/Xm.h>

#include <cstddef>

extern WidgetClass ovListWidgetClass;

// Resources besides XmNselectionPolicy, XmNvisibleItemCount,
// XmNselectColor, XmNrenderTable and XmNdefaultActionCallback.
#define OvNgestureCallback const_cast<char*>("gestureCallback")

enum {
  OvLIST_MAX_ROW_BYTES = 4096,
};

/// What the user asked for.  Ranges are inclusive and first <= last.
enum OvListGesture {
  OvLIST_SELECT_ONE,    // only position selected
  OvLIST_TOGGLE,        // position flips
  OvLIST_SELECT_RANGE,  // only first..last selected
  OvLIST_SET_RANGE,     // first..last become `on`, the rest stays
  OvLIST_SELECT_ALL,
  OvLIST_DESELECT_ALL,
};

/// Call data of the gesture callback (reason XmCR_EXTENDED_SELECT) and of
/// the default action callback (reason XmCR_DEFAULT_ACTION, position set).
struct OvListCallbackStruct {
  int reason;
  XEvent* event;
  int gesture;  // an OvListGesture
  int position;
  int first;
  int last;
  Boolean on;
};

/// Where the rows come from.  text returns the row's bytes (not
/// necessarily NUL terminated) and their length in *length; the pointer
/// need only live until the next call.
struct OvListSource {
  const char* (*text)(XtPointer closure, int position, size_t* length);
  Boolean (*isSelected)(XtPointer closure, int position);
};

Widget OvCreateList(Widget parent, const char* name, ArgList args, Cardinal numArgs);

/// source is copied; closure is passed to its functions.
void OvListSetSource(Widget list, const OvListSource* source, XtPointer closure);
/// The rows were replaced: count of them now.  The top row and the location
/// cursor are kept where they still exist.
void OvListSetItemCount(Widget list, int count);
int OvListItemCount(Widget list);
/// Texts or selected states changed: the visible rows are drawn again.
void OvListRedraw(Widget list);

int OvListTopPosition(Widget list);
void OvListSetTopPosition(Widget list, int position);
/// position 0 means the last row.
void OvListSetBottomPosition(Widget list, int position);
int OvListVisibleRows(Widget list);
/// Height of a row in pixels, and the row under window coordinate y (0
/// when none).
int OvListRowHeight(Widget list);
int OvListPositionAt(Widget list, int y);
/// What the list draws for position, as its source gives it (null and 0
/// out of range), and whether it draws it selected.
const char* OvListRowText(Widget list, int position, size_t* length);
Boolean OvListRowSelected(Widget list, int position);
/// The location cursor (0 for an empty list).
int OvListCursorPosition(Widget list);

#endif
