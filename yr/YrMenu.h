// YrMenu: a pulldown pane with the cascade button that opens it, in a menu
// bar or in another pane (a submenu).  The pane owns the entries added to it.
#ifndef TAMBLIN_YR_YRMENU_H
#define TAMBLIN_YR_YRMENU_H

#include <memory>
#include <vector>

#include "yr/YrComponent.h"
#include "yr/YrMenuItem.h"
#include "yr/YrMenuToggle.h"

class YrMenu : public YrComponent {
 public:
  /// parent is a menu bar or a pulldown pane; position -1 appends.
  YrMenu(Widget parent, const char* label, int position = -1);
  ~YrMenu() override;
  const char* className() const override { return "YrMenu"; }

  const char* label() const { return _label.c_str(); }
  /// The cascade button that opens the pane.
  Widget cascade() const { return _cascade; }

  YrMenuItem* addItem(const char* label, XtCallbackProc callback, XtPointer clientData,
                      int position = -1);
  YrMenuToggle* addToggle(const char* label, XtCallbackProc callback, XtPointer clientData,
                          int position = -1);
  YrMenu* addSubmenu(const char* label, int position = -1);
  void addSeparator(int position = -1);

  /// Entries of this pane by label (items, toggles and submenus); null when
  /// there is none.
  YrComponent* find(const char* label) const;

 private:
  std::string _label;
  Widget _cascade = nullptr;
  std::vector<std::unique_ptr<YrComponent>> _entries;
};

#endif
