#include "yr/YrFileSelectionDialog.h"

#include <Xm/FileSB.h>
#include <Xm/Text.h>
#include <Xm/TextF.h>

YrFileSelectionDialog::YrFileSelectionDialog(const char* name) : YrDialogManager(name, Custom) {}

Widget YrFileSelectionDialog::createDialog(Widget parent) {
  // Wide enough for a directory, the filter and a proposed "dir/name.spec"
  // to show whole; the box only grows from there.
  Arg args[2];
  XtSetArg(args[0], XmNwidth, 600);
  XtSetArg(args[1], XmNresizePolicy, XmRESIZE_GROW);
  Widget box = XmCreateFileSelectionDialog(parent, const_cast<char*>(_name.c_str()), args, 2);
  // Typing goes to the name, where Return means OK.  The box binds Home
  // and End of its name field to the file list; there they move in the name.
  Widget text = XmFileSelectionBoxGetChild(box, XmDIALOG_TEXT);
  XtVaSetValues(box, XmNinitialFocus, text, nullptr);
  XtOverrideTranslations(text, XtParseTranslationTable("<Key>osfEndLine: end-of-line()\n"
                                                       "<Key>osfBeginLine: beginning-of-line()"));
  return box;
}

static std::string takeText(char* text) {
  std::string out = text ? text : "";
  XtFree(text);
  return out;
}

std::string YrFileSelectionDialog::selection() {
  Widget text = XmFileSelectionBoxGetChild(dialog(), XmDIALOG_TEXT);
  return takeText(XmIsTextField(text) ? XmTextFieldGetString(text) : XmTextGetString(text));
}

void YrFileSelectionDialog::setSelection(const std::string& value) {
  Widget text = XmFileSelectionBoxGetChild(dialog(), XmDIALOG_TEXT);
  if (XmIsTextField(text))
    XmTextFieldSetString(text, const_cast<char*>(value.c_str()));
  else
    XmTextSetString(text, const_cast<char*>(value.c_str()));
}

void YrFileSelectionDialog::setDirectory(const std::string& directory) {
  XmString d = XmStringCreateLocalized(const_cast<char*>(directory.c_str()));
  XtVaSetValues(dialog(), XmNdirectory, d, nullptr);
  XmStringFree(d);
}

YrDialogManager::Answer YrFileSelectionDialog::postAndWait(const char* title, const char* pattern,
                                                          const char* proposed,
                                                          std::string* chosen) {
  Widget d = dialog();
  XmString xmTitle = XmStringCreateLocalized(const_cast<char*>(title ? title : ""));
  XmString xmPattern = XmStringCreateLocalized(const_cast<char*>(pattern ? pattern : "*"));
  XtVaSetValues(d, XmNdialogTitle, xmTitle, XmNpattern, xmPattern, nullptr);
  XmStringFree(xmTitle);
  XmStringFree(xmPattern);
  XmFileSelectionDoSearch(d, nullptr);
  if (proposed && *proposed) {
    std::string text = proposed;
    if (text[0] != '/') {
      XmString dir = nullptr;
      XtVaGetValues(d, XmNdirectory, &dir, nullptr);
      char* dirText = static_cast<char*>(
          XmStringUnparse(dir, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
      std::string prefix = takeText(dirText);
      XmStringFree(dir);
      if (!prefix.empty() && prefix.back() != '/') prefix += '/';
      text = prefix + text;
    }
    setSelection(text);
  }
  Answer a = YrDialogManager::postAndWait(nullptr);
  if (a == Ok && chosen) *chosen = selection();
  return a;
}

YrFileSelectionDialog* getTheFileSelectionDialog() {
  static YrFileSelectionDialog* d = new YrFileSelectionDialog("fileSelectionDialog");
  return d;
}
