#include "util/UiTestApp.h"

#include <X11/Shell.h>
#include <X11/StringDefs.h>

#include <cstdlib>

namespace {

XtAppContext gContext = nullptr;
Display* gDisplay = nullptr;

void open() {
  if (gDisplay) return;
  XtToolkitInitialize();
  gContext = XtCreateApplicationContext();
  int argc = 1;
  static char name[] = "tamblin_ui_tests";
  char* argv[] = {name, nullptr};
  gDisplay = XtOpenDisplay(gContext, nullptr, name, "Tamblin", nullptr, 0, &argc, argv);
  if (!gDisplay) std::abort();
}

}  // namespace

XtAppContext UiTestApp::context() {
  open();
  return gContext;
}

Display* UiTestApp::display() {
  open();
  return gDisplay;
}

Widget UiTestApp::newShell(const char* name) {
  open();
  return XtVaAppCreateShell(name, "Tamblin", topLevelShellWidgetClass, gDisplay, nullptr);
}

void UiTestApp::flush() {
  open();
  XSync(gDisplay, False);
  while (XtAppPending(gContext)) XtAppProcessEvent(gContext, XtIMAll);
}

void UiTestApp::sendWindowClose(Widget shell) {
  Display* display = XtDisplay(shell);
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = XtWindow(shell);
  event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
  event.xclient.data.l[1] = CurrentTime;
  XSendEvent(display, XtWindow(shell), False, NoEventMask, &event);
  XFlush(display);
}
