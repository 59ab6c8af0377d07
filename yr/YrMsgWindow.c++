#include "yr/YrMsgWindow.h"

#include "yr/YrMsgApp.h"

YrMsgWindow::YrMsgWindow(const char* name) : YrWindow(name) {}

const char* YrMsgWindow::msgServiceName() const {
  auto* app = dynamic_cast<YrMsgApp*>(YrApp::theApp());
  return app ? app->msgServiceName() : "";
}
