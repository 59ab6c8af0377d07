#include "yr/YrGenericDialog.h"

#include <Xm/MessageB.h>

YrGenericDialog::YrGenericDialog(const char* name, const char* title)
    : YrDialogManager(name, Custom), _title(title ? title : "") {}

Widget YrGenericDialog::createDialog(Widget parent) {
  Arg args[1];
  XtSetArg(args[0], XmNautoUnmanage, False);
  Widget d = XmCreateMessageDialog(parent, const_cast<char*>(_name.c_str()), args, 1);
  XtUnmanageChild(XmMessageBoxGetChild(d, XmDIALOG_MESSAGE_LABEL));
  XtUnmanageChild(XmMessageBoxGetChild(d, XmDIALOG_SYMBOL_LABEL));
  if (!_title.empty()) XtVaSetValues(XtParent(d), XmNtitle, _title.c_str(), nullptr);
  return d;
}
