// YrGenericDialog: a dialog with OK and Cancel buttons and contents of the
// subclass's making.  Subclasses override createDialog() (call this one
// first, then add one child, the work area, to the returned box) and ok();
// an ok() that refuses the input returns without answering, and the dialog
// stays up; Cancel and a window manager's Close take it down.
#ifndef TAMBLIN_YR_YRGENERICDIALOG_H
#define TAMBLIN_YR_YRGENERICDIALOG_H

#include "yr/YrDialogManager.h"

class YrGenericDialog : public YrDialogManager {
 public:
  explicit YrGenericDialog(const char* name, const char* title = nullptr);
  const char* className() const override { return "YrGenericDialog"; }

 protected:
  Widget createDialog(Widget parent) override;

  std::string _title;
};

#endif
