#include "yr/YrSimpleWindow.h"

#include <X11/Shell.h>
#include <Xm/MainW.h>
#include <Xm/Protocols.h>
#include <Xm/Xm.h>

#include "yr/YrApp.h"

YrSimpleWindow::YrSimpleWindow(const char* name) : YrComponent(name) {}

YrSimpleWindow::~YrSimpleWindow() { destroyShell(); }

void YrSimpleWindow::destroyShell() {
  if (!_shell) return;
  if (YrApp* app = YrApp::theApp()) app->unregisterShell(_shell);
  // The shell holds the base widget: one destruction takes both, and the
  // destroy handler forgets the base widget.
  XtDestroyWidget(_shell);
  _shell = nullptr;
  _baseWidget = nullptr;
}

void YrSimpleWindow::initialize() {
  YrApp* app = YrApp::theApp();
  _shell = XtVaCreatePopupShell(_name.c_str(), topLevelShellWidgetClass, app->baseWidget(),
                                XmNdeleteResponse, XmDO_NOTHING, nullptr);
  Atom deleteWindow = XmInternAtom(XtDisplay(_shell), const_cast<char*>("WM_DELETE_WINDOW"), False);
  XmAddWMProtocolCallback(_shell, deleteWindow, &YrSimpleWindow::closeCallback, this);
  _baseWidget = XmCreateMainWindow(_shell, const_cast<char*>("mainWindow"), nullptr, 0);
  installDestroyHandler();
  Widget menuBar = createMenuBar(_baseWidget);
  Widget work = setUpInterface(_baseWidget);
  XmMainWindowSetAreas(_baseWidget, menuBar, nullptr, nullptr, nullptr, work);
  XtManageChild(_baseWidget);
  app->registerShell(_shell);
}

Widget YrSimpleWindow::createMenuBar(Widget) { return nullptr; }

void YrSimpleWindow::setTitle(const char* title) {
  if (_shell) XtVaSetValues(_shell, XmNtitle, title, XmNiconName, title, nullptr);
}

void YrSimpleWindow::show() {
  if (_shell) XtPopup(_shell, XtGrabNone);
}

void YrSimpleWindow::hide() {
  if (_shell) XtPopdown(_shell);
}

void YrSimpleWindow::closeRequested() { hide(); }

void YrSimpleWindow::closeCallback(Widget, XtPointer clientData, XtPointer) {
  static_cast<YrSimpleWindow*>(clientData)->closeRequested();
}
