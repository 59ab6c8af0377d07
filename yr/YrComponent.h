// YrComponent: the base of every piece of the interface that owns a widget
// tree (panels, layouts, dialogs, windows).
//
// A component has a name (the name of its base widget) and one base widget;
// the widgets below it are destroyed with it.  Destroying the component
// destroys the base widget; if the widget tree goes first (its parent was
// destroyed), installDestroyHandler() makes the component forget it.
#ifndef TAMBLIN_YR_YRCOMPONENT_H
#define TAMBLIN_YR_YRCOMPONENT_H

#include <X11/Intrinsic.h>

#include <string>

class YrComponent {
 public:
  explicit YrComponent(const char* name);
  virtual ~YrComponent();
  YrComponent(const YrComponent&) = delete;
  YrComponent& operator=(const YrComponent&) = delete;

  const char* name() const { return _name.c_str(); }
  Widget baseWidget() const { return _baseWidget; }
  /// The class's name, for resources and diagnostics.
  virtual const char* className() const;

  /// Manages (shows) or unmanages (hides) the base widget.
  virtual void show();
  virtual void hide();

  /// True while c points to a live component.
  static bool isComponent(const YrComponent* c);

 protected:
  /// Merges fallback resource lines ("*widget.resource:  value", null
  /// terminated) into the display's database, scoped to this component's
  /// name below parent, without overriding what the user's resources say for
  /// the same names.
  void setDefaultResources(Widget parent, const char* const* resources);
  /// Forget the base widget when Xt destroys it.
  void installDestroyHandler();
  /// Called when the base widget is destroyed by Xt; the default forgets it.
  virtual void widgetDestroyed();

  std::string _name;
  Widget _baseWidget = nullptr;

 private:
  static void widgetDestroyedCallback(Widget, XtPointer, XtPointer);
};

#endif
