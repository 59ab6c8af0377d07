#include "yr/YrComponent.h"

#include <X11/StringDefs.h>
#include <X11/Xresource.h>

#include <unordered_set>

namespace {

std::unordered_set<const YrComponent*>& liveComponents() {
  static std::unordered_set<const YrComponent*> live;
  return live;
}

}  // namespace

YrComponent::YrComponent(const char* name) : _name(name ? name : "") {
  liveComponents().insert(this);
}

YrComponent::~YrComponent() {
  liveComponents().erase(this);
  if (_baseWidget) {
    XtRemoveCallback(_baseWidget, XtNdestroyCallback, &YrComponent::widgetDestroyedCallback, this);
    XtDestroyWidget(_baseWidget);
    _baseWidget = nullptr;
  }
}

const char* YrComponent::className() const { return "YrComponent"; }

void YrComponent::show() {
  if (_baseWidget) XtManageChild(_baseWidget);
}

void YrComponent::hide() {
  if (_baseWidget) XtUnmanageChild(_baseWidget);
}

bool YrComponent::isComponent(const YrComponent* c) { return c && liveComponents().count(c) != 0; }

void YrComponent::setDefaultResources(Widget parent, const char* const* resources) {
  if (!parent || !resources) return;
  Display* display = XtDisplay(parent);
  XrmDatabase defaults = nullptr;
  for (const char* const* line = resources; *line; ++line) {
    // "*label.labelString:  x" becomes "*<name>*label.labelString:  x", so that
    // two panels' "*label" lines do not meet.
    std::string scoped = "*" + _name + *line;
    XrmPutLineResource(&defaults, scoped.c_str());
  }
  XrmDatabase db = XtDatabase(display);
  // False: where the user's database already has the same entry, it stays.
  XrmCombineDatabase(defaults, &db, False);
  XrmSetDatabase(display, db);
}

void YrComponent::installDestroyHandler() {
  if (_baseWidget)
    XtAddCallback(_baseWidget, XtNdestroyCallback, &YrComponent::widgetDestroyedCallback, this);
}

void YrComponent::widgetDestroyed() { _baseWidget = nullptr; }

void YrComponent::widgetDestroyedCallback(Widget, XtPointer clientData, XtPointer) {
  static_cast<YrComponent*>(clientData)->widgetDestroyed();
}
