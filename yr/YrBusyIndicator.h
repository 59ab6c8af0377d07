// YrBusyIndicator: the busy state of the core's BusyIndicator, shown by the
// application (YrApp::busy: watch cursor in every window, the working
// dialog when there is a message).  Nothing while there is no application
// object, as in the model tests.
#ifndef TAMBLIN_YR_YRBUSYINDICATOR_H
#define TAMBLIN_YR_YRBUSYINDICATOR_H

#include <X11/Intrinsic.h>

#include "util/BusyIndicator.h"

class YrBusyIndicator : public BusyIndicator {
 public:
  /// With redrawn, pending exposures are drawn as the busy state starts and
  /// ends and at every stillBusy(), once redrawn is realized: work that never
  /// returns to the event loop would leave covered places undrawn.
  explicit YrBusyIndicator(Widget redrawn = nullptr) : _redrawn(redrawn) {}

  /// The application's busy state for panels, without redrawing.
  static YrBusyIndicator* application();

  void busy(const std::string& message) override;
  void notBusy() override;
  void stillBusy() override;

 private:
  Widget _redrawn;
};

#endif
