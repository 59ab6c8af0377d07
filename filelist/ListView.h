// ListView: the one way the file list talks to its Motif list, so that the
// widget can be replaced without touching the panel.
//
// Items are replaced all at once; the selection is set as a whole, with one
// XmNselectedPositions change (selecting position by position costs time
// quadratic in the list's length in Motif); positions count from 1.
#ifndef TAMBLIN_FILELIST_LISTVIEW_H
#define TAMBLIN_FILELIST_LISTVIEW_H

#include <X11/Intrinsic.h>

#include <functional>
#include <string_view>
#include <vector>

class ListView {
 public:
  explicit ListView(Widget list) : _list(list) {}
  Widget widget() const { return _list; }

  /// Replaces every item with count lines; line(p) gives position p's text.
  /// The selection is cleared.
  void setItems(int count, const std::function<std::string_view(int)>& line);
  int itemCount() const;
  /// Exactly these positions end selected; no selection callback runs.
  void setSelection(const std::vector<int>& positions);
  std::vector<int> selection() const;
  /// Scrolls so that the last item shows.
  void showLast();

 private:
  Widget _list;
};

#endif
