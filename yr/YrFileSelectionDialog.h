// YrFileSelectionDialog: the shared file chooser.  Each use sets the title,
// the filter pattern and a proposed selection; postAndWait() returns the
// answer and, on Ok, the chosen path.
#ifndef TAMBLIN_YR_YRFILESELECTIONDIALOG_H
#define TAMBLIN_YR_YRFILESELECTIONDIALOG_H

#include "yr/YrDialogManager.h"

class YrFileSelectionDialog : public YrDialogManager {
 public:
  explicit YrFileSelectionDialog(const char* name);
  const char* className() const override { return "YrFileSelectionDialog"; }

  /// pattern like "*idb"; proposed (may be null or "") is a file name put
  /// in the selection field, in the dialog's directory when relative.
  Answer postAndWait(const char* title, const char* pattern, const char* proposed,
                     std::string* chosen);
  /// What the selection field holds now.
  std::string selection();
  /// Puts text into the selection field (as typing would).
  void setSelection(const std::string& text);
  /// The directory the dialog lists.
  void setDirectory(const std::string& directory);

 protected:
  Widget createDialog(Widget parent) override;
};

YrFileSelectionDialog* getTheFileSelectionDialog();

#endif
