// BusyScope: the one way to be busy.  Busy from construction until
// destruction or release(), so that no early return can leave the busy
// state on.  A null indicator (no application, a model without a window)
// makes the scope do nothing.
#ifndef TAMBLIN_UTIL_BUSYSCOPE_H
#define TAMBLIN_UTIL_BUSYSCOPE_H

#include <string>

class BusyIndicator;

class BusyScope {
 public:
  /// indicator may be null and must outlive the scope.  message as for
  /// BusyIndicator::busy.
  explicit BusyScope(BusyIndicator* indicator, const std::string& message = std::string());
  ~BusyScope();
  BusyScope(const BusyScope&) = delete;
  BusyScope& operator=(const BusyScope&) = delete;

  /// Lets the window redraw during long work (nothing once released).
  void stillBusy();
  /// Leaves the busy state before the scope ends (a second call does
  /// nothing), e.g. before a dialog that must take input.
  void release();

 private:
  BusyIndicator* _indicator;
};

#endif
