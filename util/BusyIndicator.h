// BusyIndicator: the application's busy state (watch cursor and, with a
// message, the working dialog), switched on around operations that may take
// noticeable time.  The core only ever holds one through a BusyScope; the
// interface implements it once over the application (YrBusyIndicator), and
// tests record it.
#ifndef TAMBLIN_UTIL_BUSYINDICATOR_H
#define TAMBLIN_UTIL_BUSYINDICATOR_H

#include <string>

class BusyIndicator {
 public:
  virtual ~BusyIndicator() = default;

  /// Enters the busy state; calls nest and each needs its notBusy().  A
  /// non-empty message is shown in the working dialog until the outermost
  /// notBusy(); an empty one keeps whatever is shown.
  virtual void busy(const std::string& message) = 0;
  virtual void notBusy() = 0;
  /// Called every so often during long work while busy, so that the window
  /// can redraw what was covered and uncovered meanwhile.
  virtual void stillBusy() {}
};

#endif
