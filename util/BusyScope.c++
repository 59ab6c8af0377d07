#include "util/BusyScope.h"

#include "util/BusyIndicator.h"

BusyScope::BusyScope(BusyIndicator* indicator, const std::string& message)
    : _indicator(indicator) {
  if (_indicator) _indicator->busy(message);
}

BusyScope::~BusyScope() { release(); }

void BusyScope::stillBusy() {
  if (_indicator) _indicator->stillBusy();
}

void BusyScope::release() {
  if (!_indicator) return;
  BusyIndicator* indicator = _indicator;
  _indicator = nullptr;
  indicator->notBusy();
}
