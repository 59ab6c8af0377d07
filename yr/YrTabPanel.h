// YrTabPanel: a row of tabs (buttons showing a picture or a text).  Pressing
// a tab tells the select callbacks its index; the owner decides what
// "selected" looks like (it sets the tab's picture or label).
#ifndef TAMBLIN_YR_YRTABPANEL_H
#define TAMBLIN_YR_YRTABPANEL_H

#include <string>
#include <vector>

#include "yr/YrComponent.h"

class YrTabPanel : public YrComponent {
 public:
  using SelectCallback = void (*)(YrTabPanel* caller, void* clientData, int index);

  /// horizontal: tabs side by side (else stacked); height: the panel's
  /// height in pixels (0: as the tabs need).
  YrTabPanel(const char* name, Widget parent, int horizontal, int height);
  const char* className() const override { return "YrTabPanel"; }

  /// Adds a tab at the end; an empty name names it by its index.  Returns
  /// the index.
  int addTab(const char* name);
  int numTabs() const { return static_cast<int>(_tabs.size()); }
  Widget tab(int index) const;
  /// Index of the tab named name, or -1.
  int indexOf(const char* name) const;

  /// A picture tab fills its button; a text tab gets a frame, margins and
  /// spacing from its neighbours (a panel shows either pictures or texts).
  void setTabPixmap(int index, Pixmap pixmap);
  void setTabLabel(int index, const char* text);
  static constexpr int kTextMarginWidth = 12;
  static constexpr int kTextMarginHeight = 4;
  static constexpr int kTextTabSpacing = 6;

  /// Makes index the current tab; with notify the select callbacks run as
  /// if the user had pressed it.  Returns false for an unknown tab.
  bool selectTab(int index, bool notify);
  bool selectTab(const char* name, bool notify);
  int currentTab() const { return _current; }

  void addSelectCallback(SelectCallback callback, void* clientData);

 private:
  static void activateCallback(Widget, XtPointer, XtPointer);
  void pressed(Widget w);

  struct Listener {
    SelectCallback callback;
    void* clientData;
  };
  std::vector<Widget> _tabs;
  std::vector<std::string> _names;
  std::vector<Listener> _listeners;
  int _current = -1;
};

#endif
