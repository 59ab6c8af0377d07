#include "yr/YrBusyIndicator.h"

#include <Xm/Xm.h>

#include "yr/YrApp.h"

YrBusyIndicator* YrBusyIndicator::application() {
  static YrBusyIndicator indicator;
  return &indicator;
}

void YrBusyIndicator::busy(const std::string& message) {
  if (YrApp* app = YrApp::theApp()) app->busy(message.empty() ? nullptr : message.c_str());
  stillBusy();
}

void YrBusyIndicator::notBusy() {
  if (YrApp* app = YrApp::theApp()) app->notBusy();
  stillBusy();
}

void YrBusyIndicator::stillBusy() {
  if (_redrawn && XtIsRealized(_redrawn)) XmUpdateDisplay(_redrawn);
}
