// RowSelection: which rows of a list are selected, with the operations a
// list's user asks for.  Rows count from 1 (position p is flag p-1).
//
// Every operation costs time in proportion to the rows it names plus the
// span of rows that were selected before (clearing visits only the span
// between the first and the last row ever set since the last clear), so a
// click in a million-row list stays cheap; only assign and positions visit
// every row.
#ifndef TAMBLIN_FILELIST_ROWSELECTION_H
#define TAMBLIN_FILELIST_ROWSELECTION_H

#include <cstddef>
#include <vector>

class RowSelection {
 public:
  /// rows becomes the number of rows; rows that are new start unselected.
  void resize(int rows);
  int size() const { return static_cast<int>(_flags.size()); }
  int count() const { return _count; }
  /// Zero-based flag, as in the idb's record index.
  bool operator[](size_t index) const { return _flags[index] != 0; }
  /// One-based; false out of range.
  bool has(int position) const;
  const std::vector<char>& flags() const { return _flags; }

  void clear();
  /// Exactly these flags (shorter or longer than size(): cut or padded).
  void assign(const std::vector<char>& flags);
  /// Only position selected.
  void selectOnly(int position);
  void toggle(int position);
  /// Only first..last selected (in either order).
  void selectOnlyRange(int first, int last);
  /// first..last become on; the other rows keep their state.
  void setRange(int first, int last, bool on);
  void selectAll();
  /// Selected positions, ascending.
  std::vector<int> positions() const;

 private:
  void widenSpan(int lo, int hi);

  std::vector<char> _flags;
  int _count = 0;
  // Zero-based bounds of every flag that may be set; empty when _lo > _hi.
  int _lo = 1;
  int _hi = 0;
};

#endif
