// YrInterruptDialog: a "working" box with a button that asks a long
// operation to stop.  The operation polls wasInterrupted() now and then;
// the poll handles pending events, so the button (and redrawing) works
// while the operation runs inside a callback.
#ifndef TAMBLIN_YR_YRINTERRUPTDIALOG_H
#define TAMBLIN_YR_YRINTERRUPTDIALOG_H

#include "yr/YrDialogManager.h"

class YrInterruptDialog : public YrDialogManager {
 public:
  explicit YrInterruptDialog(const char* name);
  const char* className() const override { return "YrInterruptDialog"; }

  /// Posts the box with message and clears the interrupt.
  Widget post(const char* message = nullptr, void* clientData = nullptr, Callback ok = nullptr,
              Callback cancel = nullptr, Callback help = nullptr) override;
  /// Handles pending events, then tells whether the user asked to stop.
  bool wasInterrupted();

 protected:
  Widget createDialog(Widget parent) override;
  void cancel(Widget w, XtPointer callData) override;

 private:
  bool _interrupted = false;
};

YrInterruptDialog* getTheInterruptDialog();

#endif
