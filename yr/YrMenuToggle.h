// YrMenuToggle: an on/off entry of a menu pane.  The program can show a
// state it reached by other means with setVisualState(), which does not call
// the toggle's callback.
#ifndef TAMBLIN_YR_YRMENUTOGGLE_H
#define TAMBLIN_YR_YRMENUTOGGLE_H

#include "yr/YrMenuItem.h"

class YrMenuToggle : public YrMenuItem {
 public:
  /// The callback is the toggle's value-changed callback; its call data is
  /// an XmToggleButtonCallbackStruct whose set field is the new state.
  YrMenuToggle(Widget pane, const char* label, XtCallbackProc callback, XtPointer clientData,
               int position = -1);
  const char* className() const override { return "YrMenuToggle"; }

  void setVisualState(bool on);
  bool state() const;
};

#endif
