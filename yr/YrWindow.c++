#include "yr/YrWindow.h"

#include <Xm/RowColumn.h>

YrWindow::YrWindow(const char* name) : YrSimpleWindow(name) {}

YrWindow::~YrWindow() {
  destroyShell();
  _panes.clear();
}

Widget YrWindow::createMenuBar(Widget mainWindow) {
  _menuBar = XmCreateMenuBar(mainWindow, const_cast<char*>("menuBar"), nullptr, 0);
  XtManageChild(_menuBar);
  return _menuBar;
}

YrMenu* YrWindow::addMenuPane(const char* label, int position) {
  auto* pane = new YrMenu(_menuBar, label, position);
  _panes.emplace_back(pane);
  return pane;
}
