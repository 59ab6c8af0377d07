// YrMenuItem: one push-button entry of a menu pane.  Deactivating greys it
// out (insensitive); the callback gets the client data given at creation.
#ifndef TAMBLIN_YR_YRMENUITEM_H
#define TAMBLIN_YR_YRMENUITEM_H

#include "yr/YrComponent.h"

class YrMenuItem : public YrComponent {
 public:
  /// position is the index among the pane's entries, -1 for the end.
  YrMenuItem(Widget pane, const char* label, XtCallbackProc callback, XtPointer clientData,
             int position = -1);
  const char* className() const override { return "YrMenuItem"; }
  const char* label() const { return _label.c_str(); }

  void activate();
  void deactivate();
  bool isActive() const;

 protected:
  /// For subclasses that make a different kind of button.
  explicit YrMenuItem(const char* label);
  static std::string widgetNameFor(const char* label);
  static int positionArgs(Arg* args, int n, int position);

  std::string _label;
};

#endif
