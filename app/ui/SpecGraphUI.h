// SpecGraphUI: the widget tree of the product hierarchy panel (the spec
// file, Add and Delete, and the form that holds the graph).
//
// The panel class derives from it and overrides the callback methods, which
// do nothing here.
#ifndef TAMBLIN_APP_UI_SPECGRAPHUI_H
#define TAMBLIN_APP_UI_SPECGRAPHUI_H

#include "yr/YrComponent.h"

class SpecGraphUI : public YrComponent {
 public:
  SpecGraphUI(const char* name, Widget parent);
  const char* className() const override;

  /// Fallback resource lines, null terminated.
  static const char* const _defaultSpecGraphUIResources[];

 protected:
  // Widget callbacks.
  virtual void addPushButton(Widget, XtPointer callData);
  virtual void deletePushButton(Widget, XtPointer callData);

  Widget _label = nullptr;
  Widget _springBox = nullptr;
  Widget _addPushButton = nullptr;
  Widget _deletePushButton = nullptr;
  Widget _form = nullptr;
};

#endif
