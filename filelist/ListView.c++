#include "filelist/ListView.h"

#include <Xm/List.h>

#include <string>

void ListView::setItems(int count, const std::function<std::string_view(int)>& line) {
  XmListDeleteAllItems(_list);
  if (count <= 0) return;
  std::vector<XmString> items(static_cast<size_t>(count));
  std::string text;
  for (int p = 1; p <= count; ++p) {
    text.assign(line(p));
    items[p - 1] = XmStringCreateLocalized(const_cast<char*>(text.c_str()));
  }
  XmListAddItemsUnselected(_list, items.data(), count, 0);
  for (XmString s : items) XmStringFree(s);
}

int ListView::itemCount() const {
  int count = 0;
  XtVaGetValues(_list, XmNitemCount, &count, nullptr);
  return count;
}

void ListView::setSelection(const std::vector<int>& positions) {
  unsigned char policy = XmEXTENDED_SELECT;
  XtVaGetValues(_list, XmNselectionPolicy, &policy, nullptr);
  XmListDeselectAllItems(_list);
  if (!positions.empty()) {
    // Several positions at once need multiple selection while they are set.
    std::vector<int> copy(positions);
    XtVaSetValues(_list, XmNselectionPolicy, XmMULTIPLE_SELECT, nullptr);
    XtVaSetValues(_list, XmNselectedPositions, copy.data(), XmNselectedPositionCount,
                  static_cast<int>(copy.size()), nullptr);
    XtVaSetValues(_list, XmNselectionPolicy, policy, nullptr);
  }
}

std::vector<int> ListView::selection() const {
  int* positions = nullptr;
  int count = 0;
  std::vector<int> out;
  if (XmListGetSelectedPos(_list, &positions, &count)) {
    out.assign(positions, positions + count);
    XtFree(reinterpret_cast<char*>(positions));
  }
  return out;
}

void ListView::showLast() { XmListSetBottomPos(_list, 0); }
