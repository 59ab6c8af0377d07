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
