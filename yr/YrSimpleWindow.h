// YrSimpleWindow: a top-level window of the program (a shell holding a
// Motif main window).  Subclasses build the contents in setUpInterface(),
// which initialize() calls once the window's widgets exist; the window
// manager's close button calls closeRequested().
#ifndef TAMBLIN_YR_YRSIMPLEWINDOW_H
#define TAMBLIN_YR_YRSIMPLEWINDOW_H

#include "yr/YrComponent.h"

class YrSimpleWindow : public YrComponent {
 public:
  explicit YrSimpleWindow(const char* name);
  ~YrSimpleWindow() override;
  const char* className() const override { return "YrSimpleWindow"; }

  /// Creates the shell and main window below the application's shell, then
  /// the menu bar (if any) and the contents.  Call once, after construction.
  virtual void initialize();
  void setTitle(const char* title);
  /// Maps the window (pops the shell up) / unmaps it.
  void show() override;
  void hide() override;
  Widget shell() const { return _shell; }

 protected:
  /// Builds the contents under parent and returns the widget that fills the
  /// window.
  virtual Widget setUpInterface(Widget parent) = 0;
  /// Called by initialize() before setUpInterface(); returns the menu bar,
  /// or null for a window without one.
  virtual Widget createMenuBar(Widget mainWindow);
  /// The window manager asked to close the window; default: hide it.
  virtual void closeRequested();
  /// Destroys the shell with every widget in it (components inside forget
  /// their widgets through their destroy handlers).  Subclasses holding
  /// components call it first in their destructor: Motif's menus do not
  /// survive being taken apart piece by piece before their window.
  void destroyShell();

  Widget _shell = nullptr;

 private:
  static void closeCallback(Widget, XtPointer, XtPointer);
};

#endif
