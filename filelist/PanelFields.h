// PanelFields: reading and writing the text fields, texts and labels of the
// file-list panels as std::string.
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

#endif
