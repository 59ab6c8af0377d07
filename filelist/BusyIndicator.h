// BusyIndicator: the application's busy state (watch cursor), switched on
// around operations that may take noticeable time.  Optional.
#ifndef TAMBLIN_FILELIST_BUSYINDICATOR_H
#define TAMBLIN_FILELIST_BUSYINDICATOR_H

class BusyIndicator {
 public:
  virtual ~BusyIndicator() = default;

  virtual void busy() = 0;
  virtual void notBusy() = 0;
  /// Called every so often during long work while busy, so that the window
  /// can redraw what was covered and uncovered meanwhile.
  virtual void stillBusy() {}
};

#endif
