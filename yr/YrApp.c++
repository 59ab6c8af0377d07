#include "yr/YrApp.h"

#include <X11/Shell.h>
#include <X11/StringDefs.h>
#include <X11/Xresource.h>
#include <X11/cursorfont.h>
#include <Xm/MessageB.h>
#include <Xm/Xm.h>

#include <X11/Xlocale.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>

#include "yr/YrDialogManager.h"

namespace {
YrApp* gTheApp = nullptr;

// Xt calls this while opening the display, with the language the
// resources or LANG name.  Text fields then take the user's characters
// (UTF-8 paths among them) and the help client sees the locale; numbers in
// files and fields stay in the C form whatever the locale writes.
String setLanguage(Display*, String language, XtPointer) {
  if (!std::setlocale(LC_ALL, language ? language : "")) {
    std::fprintf(stderr, "Locale '%s' is not supported; using C.\n", language ? language : "");
    std::setlocale(LC_ALL, "C");
  }
  if (!XSupportsLocale()) {
    std::fprintf(stderr, "X does not support locale '%s'; using C.\n",
                 std::setlocale(LC_CTYPE, nullptr));
    std::setlocale(LC_ALL, "C");
  }
  std::setlocale(LC_NUMERIC, "C");
  XSetLocaleModifiers("");
  return std::setlocale(LC_CTYPE, nullptr);
}

}  // namespace

void YrApp::setLanguageProc() { XtSetLanguageProc(nullptr, &setLanguage, nullptr); }

YrApp* YrApp::theApp() { return gTheApp; }

YrApp::YrApp(const char* appClassName, int* argc, char** argv, XrmOptionDescRec* options,
             Cardinal numOptions, const char* const* fallback)
    : _class(appClassName) {
  setLanguageProc();
  XtToolkitInitialize();
  _context = XtCreateApplicationContext();
  if (fallback) XtAppSetFallbackResources(_context, const_cast<String*>(fallback));
  _display = XtOpenDisplay(_context, nullptr, nullptr, appClassName, options, numOptions, argc,
                           argv);
  if (!_display) {
    const char* name = std::getenv("DISPLAY");
    std::fprintf(stderr, "%s: can't open display %s\n", argc && *argc ? argv[0] : appClassName,
                 name ? name : "(DISPLAY not set)");
    std::exit(1);
  }
  _ownsDisplay = true;
  createShell(nullptr);
  gTheApp = this;
}

YrApp::YrApp(const char* appClassName, XtAppContext context, Display* display,
             const char* const* fallback)
    : _class(appClassName), _context(context), _display(display) {
  createShell(fallback);
  gTheApp = this;
}

YrApp::~YrApp() {
  if (gTheApp == this) gTheApp = nullptr;
  if (_busyCursor) XFreeCursor(_display, _busyCursor);
  if (_shell) XtDestroyWidget(_shell);
  if (_ownsDisplay) {
    XtCloseDisplay(_display);
    XtDestroyApplicationContext(_context);
  }
}

void YrApp::createShell(const char* const* fallback) {
  if (fallback) {
    // Below whatever the user's resources already say.
    XrmDatabase defaults = nullptr;
    for (const char* const* line = fallback; *line; ++line) XrmPutLineResource(&defaults, *line);
    XrmDatabase db = XtDatabase(_display);
    XrmCombineDatabase(defaults, &db, False);
    XrmSetDatabase(_display, db);
  }
  _shell = XtVaAppCreateShell(nullptr, _class.c_str(), applicationShellWidgetClass, _display,
                              XmNmappedWhenManaged, False, XmNwidth, 1, XmNheight, 1, nullptr);
  // Realized so that dialogs posted before any window appears (the start-up
  // banner) have a parent window.
  XtRealizeWidget(_shell);
}

void YrApp::parseCommandLine(XrmOptionDescRec* options, Cardinal numOptions, int* argc,
                             char** argv) {
  if (!options || numOptions == 0 || !argc) return;
  XrmDatabase parsed = nullptr;
  XrmParseCommand(&parsed, options, static_cast<int>(numOptions), XtName(_shell), argc, argv);
  if (!parsed) return;
  XrmDatabase db = XtDatabase(_display);
  XrmCombineDatabase(parsed, &db, True);
  XrmSetDatabase(_display, db);
}

void YrApp::getResources(XtResource* resources, Cardinal numResources, void* base) {
  XtGetApplicationResources(_shell, base, resources, numResources, nullptr, 0);
}

void YrApp::registerShell(Widget shell) {
  if (std::find(_shells.begin(), _shells.end(), shell) == _shells.end()) _shells.push_back(shell);
}

void YrApp::unregisterShell(Widget shell) {
  _shells.erase(std::remove(_shells.begin(), _shells.end(), shell), _shells.end());
}

void YrApp::setBusyCursor(bool on) {
  if (on && !_busyCursor) _busyCursor = XCreateFontCursor(_display, XC_watch);
  for (Widget shell : _shells) {
    if (!XtIsRealized(shell)) continue;
    if (on)
      XDefineCursor(_display, XtWindow(shell), _busyCursor);
    else
      XUndefineCursor(_display, XtWindow(shell));
  }
  XFlush(_display);
}

void YrApp::busy(const char* message, Widget parent) {
  ++_busyDepth;
  if (message && *message) _busyMessage = message;
  if (_busyDepth == 1) setBusyCursor(true);
  if (_busyMessage.empty()) return;
  if (!_busyDialog) {
    _busyDialog = XmCreateWorkingDialog(parent ? parent : _shell,
                                        const_cast<char*>("busyDialog"), nullptr, 0);
    XtUnmanageChild(XmMessageBoxGetChild(_busyDialog, XmDIALOG_OK_BUTTON));
    XtUnmanageChild(XmMessageBoxGetChild(_busyDialog, XmDIALOG_CANCEL_BUTTON));
    XtUnmanageChild(XmMessageBoxGetChild(_busyDialog, XmDIALOG_HELP_BUTTON));
    XtVaSetValues(XtParent(_busyDialog), XmNtitle, "Busy", nullptr);
    // Nothing to answer, but a window manager's Close still hides it.
    yrOnWindowClose(XtParent(_busyDialog), &YrApp::busyDialogClosed, this);
  }
  XmString text = XmStringCreateLocalized(const_cast<char*>(_busyMessage.c_str()));
  XtVaSetValues(_busyDialog, XmNmessageString, text, nullptr);
  XmStringFree(text);
  XtManageChild(_busyDialog);
  // Nobody returns to the event loop while busy: draw the dialog now.
  XmUpdateDisplay(_busyDialog);
}

void YrApp::notBusy() {
  if (_busyDepth == 0) return;
  if (--_busyDepth > 0) return;
  setBusyCursor(false);
  _busyMessage.clear();
  if (_busyDialog) {
    XtDestroyWidget(XtParent(_busyDialog));  // the dialog shell, and the box with it
    _busyDialog = nullptr;
  }
}

void YrApp::busyDialogClosed(Widget, XtPointer clientData, XtPointer) {
  auto* app = static_cast<YrApp*>(clientData);
  if (app->_busyDialog) XtUnmanageChild(app->_busyDialog);
}

int YrApp::run() {
  while (!_quit) processEvent();
  return _status;
}

void YrApp::processEvent() {
  XtAppProcessEvent(_context, XtIMAll);
  // A copy: a hook may add or remove hooks (and one removed meanwhile is
  // not called).
  std::vector<std::pair<OuterLoopHook, void*>> hooks = _outerLoopHooks;
  for (const auto& hook : hooks)
    if (std::find(_outerLoopHooks.begin(), _outerLoopHooks.end(), hook) != _outerLoopHooks.end())
      hook.first(hook.second);
}

void YrApp::addOuterLoopHook(OuterLoopHook hook, void* clientData) {
  _outerLoopHooks.emplace_back(hook, clientData);
}

void YrApp::removeOuterLoopHook(OuterLoopHook hook, void* clientData) {
  auto& hooks = _outerLoopHooks;
  hooks.erase(std::remove(hooks.begin(), hooks.end(), std::make_pair(hook, clientData)), hooks.end());
}

void YrApp::quit(int status) {
  _quit = true;
  _status = status;
}
