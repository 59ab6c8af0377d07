#include "yr/YrMenu.h"

#include <Xm/CascadeB.h>
#include <Xm/RowColumn.h>
#include <Xm/Separator.h>

#include <cstring>

YrMenu::YrMenu(Widget parent, const char* label, int position)
    : YrComponent((std::string(label) + "Pane").c_str()), _label(label) {
  _baseWidget = XmCreatePulldownMenu(parent, const_cast<char*>(_name.c_str()), nullptr, 0);
  installDestroyHandler();
  XmString text = XmStringCreateLocalized(const_cast<char*>(label));
  Arg args[3];
  int n = 0;
  XtSetArg(args[n], XmNlabelString, text);
  ++n;
  XtSetArg(args[n], XmNsubMenuId, _baseWidget);
  ++n;
  XtSetArg(args[n], XmNpositionIndex, position < 0 ? XmLAST_POSITION : position);
  ++n;
  _cascade = XmCreateCascadeButton(parent, const_cast<char*>(label), args, n);
  XmStringFree(text);
  // Menu bar entries open with Alt and their first letter (File, View);
  // inside a pane first letters repeat (Save, SaveAs), so none there.
  unsigned char type = 0;
  XtVaGetValues(parent, XmNrowColumnType, &type, nullptr);
  if (type == XmMENU_BAR && label[0])
    XtVaSetValues(_cascade, XmNmnemonic, static_cast<KeySym>(label[0]), nullptr);
  XtManageChild(_cascade);
}

YrMenu::~YrMenu() {
  _entries.clear();
  if (_baseWidget && _cascade) XtDestroyWidget(_cascade);
}

YrMenuItem* YrMenu::addItem(const char* label, XtCallbackProc callback, XtPointer clientData,
                            int position) {
  auto* item = new YrMenuItem(_baseWidget, label, callback, clientData, position);
  _entries.emplace_back(item);
  return item;
}

YrMenuToggle* YrMenu::addToggle(const char* label, XtCallbackProc callback, XtPointer clientData,
                                int position) {
  auto* toggle = new YrMenuToggle(_baseWidget, label, callback, clientData, position);
  _entries.emplace_back(toggle);
  return toggle;
}

YrMenu* YrMenu::addSubmenu(const char* label, int position) {
  auto* menu = new YrMenu(_baseWidget, label, position);
  _entries.emplace_back(menu);
  return menu;
}

void YrMenu::addSeparator(int position) {
  Arg args[1];
  XtSetArg(args[0], XmNpositionIndex, position < 0 ? XmLAST_POSITION : position);
  XtManageChild(XmCreateSeparator(_baseWidget, const_cast<char*>("separator"), args, 1));
}

YrComponent* YrMenu::find(const char* label) const {
  for (const auto& entry : _entries) {
    if (auto* menu = dynamic_cast<YrMenu*>(entry.get())) {
      if (!std::strcmp(menu->label(), label)) return menu;
    } else if (auto* item = dynamic_cast<YrMenuItem*>(entry.get())) {
      if (!std::strcmp(item->label(), label)) return item;
    }
  }
  return nullptr;
}
