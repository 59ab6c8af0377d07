// UiTestApp: the one Xt application context of the interface tests.
//
// Motif caches fonts and graphics contexts per display for the life of the
// process, so opening and closing displays from test to test fails.  All
// interface tests share this context and display; each test creates its own
// shell with newShell() and destroys it when done.
#ifndef TAMBLIN_UTIL_UITESTAPP_H
#define TAMBLIN_UTIL_UITESTAPP_H

#include <X11/Intrinsic.h>

class UiTestApp {
 public:
  static XtAppContext context();
  static Display* display();
  /// A new top-level shell (unrealized) named name.
  static Widget newShell(const char* name = "test");
  /// Processes pending events until none is left (including those the
  /// server sends back for requests made so far).
  static void flush();
  /// What a window manager's Close sends: a real client message to shell,
  /// handled by the event loop like any other event.
  static void sendWindowClose(Widget shell);
};

#endif
