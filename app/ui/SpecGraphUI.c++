#include "app/ui/SpecGraphUI.h"

#include <Xm/Form.h>
#include <Xm/Label.h>
#include <Xm/PushB.h>

#include "app/ui/LayoutFonts.h"
#include "app/ui/LayoutWidgets.h"
#include "ov/OvGrid.h"

// The static callback of each callback method.
template <void (SpecGraphUI::*method)(Widget, XtPointer)>
constexpr XtCallbackProc route = &routeToMethod<SpecGraphUI, method>;

const char* const SpecGraphUI::_defaultSpecGraphUIResources[] = {
    "*label.labelString:  Spec File:",
    "*addPushButton.labelString:  Add",
    "*deletePushButton.labelString:  Delete",
    nullptr,
};

SpecGraphUI::SpecGraphUI(const char* name, Widget parent) : YrComponent(name) {
  installLayoutFonts(parent);
  setDefaultResources(parent, _defaultSpecGraphUIResources);
  _baseWidget = XtVaCreateWidget(name, ovGridWidgetClass, parent, OvNnumRows, 3, nullptr);
  installDestroyHandler();

  _label = createManaged("label", xmLabelWidgetClass, _baseWidget,
                         {{OvNrow, 0}, {XmNalignment, XmALIGNMENT_BEGINNING}, {OvNgravity, 7},
                          {OvNresizeVertical, False}});
  _springBox = createManagedSpringBox("springBox", _baseWidget,
                                      {{OvNrow, 1}, {OvNresizeVertical, False}});
  _addPushButton = createManaged("addPushButton", xmPushButtonWidgetClass, _springBox);
  _deletePushButton = createManaged("deletePushButton", xmPushButtonWidgetClass, _springBox);
  // The graph goes here; it takes whatever room the panel has.
  _form = createManaged("form", xmFormWidgetClass, _baseWidget,
                        {{OvNrow, 2}, {XmNwidth, 380}, {XmNheight, 500}});

  addRoutes(this, {
      {_addPushButton, XmNactivateCallback, route<&SpecGraphUI::addPushButton>},
      {_deletePushButton, XmNactivateCallback, route<&SpecGraphUI::deletePushButton>},
  });
}

const char* SpecGraphUI::className() const { return "SpecGraphUI"; }

void SpecGraphUI::addPushButton(Widget, XtPointer) {}
void SpecGraphUI::deletePushButton(Widget, XtPointer) {}
