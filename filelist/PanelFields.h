// PanelFields: reading and writing the text fields, texts and labels of the
// file-list panels as std::string, and the busy bracket around their
// operations.
#ifndef TAMBLIN_FILELIST_PANELFIELDS_H
#define TAMBLIN_FILELIST_PANELFIELDS_H

#include <Xm/Xm.h>

#include <string>

/// The text of a text field or text widget.
std::string fieldText(Widget w);
/// Sets the text, puts the insertion point at the end and scrolls it into
/// view.
void setFieldText(Widget w, const std::string& text);
/// A label's text.
void setLabelText(Widget w, const std::string& text);

/// The application's busy state for the life of the object (nothing when
/// there is no application object).
class PanelBusy {
 public:
  PanelBusy();
  ~PanelBusy();
  PanelBusy(const PanelBusy&) = delete;
  PanelBusy& operator=(const PanelBusy&) = delete;
  /// Leaves the busy state early (once).
  void release();

 private:
  bool _on = false;
};

#endif
