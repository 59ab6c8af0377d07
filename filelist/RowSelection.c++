#include "filelist/RowSelection.h"

#include <algorithm>
#include <cstring>

void RowSelection::resize(int rows) {
  rows = std::max(rows, 0);
  if (rows < size()) {
    for (int i = rows; i <= std::min(_hi, size() - 1); ++i) _count -= _flags[i] != 0;
    _hi = std::min(_hi, rows - 1);
  }
  _flags.resize(rows, 0);
}

bool RowSelection::has(int position) const {
  return position >= 1 && position <= size() && _flags[position - 1];
}

void RowSelection::clear() {
  if (_lo <= _hi) std::memset(_flags.data() + _lo, 0, static_cast<size_t>(_hi - _lo + 1));
  _count = 0;
  _lo = 1;
  _hi = 0;
}

void RowSelection::assign(const std::vector<char>& flags) {
  const int rows = size();
  _flags.assign(flags.begin(), flags.begin() + std::min<size_t>(flags.size(), rows));
  _flags.resize(rows, 0);
  _count = 0;
  _lo = 1;
  _hi = 0;
  for (int i = 0; i < rows; ++i) {
    if (!_flags[i]) continue;
    _flags[i] = 1;
    ++_count;
    if (_lo > _hi) _lo = i;
    _hi = i;
  }
}

void RowSelection::widenSpan(int lo, int hi) {
  if (_lo > _hi) {
    _lo = lo;
    _hi = hi;
  } else {
    _lo = std::min(_lo, lo);
    _hi = std::max(_hi, hi);
  }
}

void RowSelection::selectOnly(int position) {
  clear();
  setRange(position, position, true);
}

void RowSelection::toggle(int position) {
  if (position < 1 || position > size()) return;
  setRange(position, position, !_flags[position - 1]);
}

void RowSelection::selectOnlyRange(int first, int last) {
  clear();
  setRange(first, last, true);
}

void RowSelection::setRange(int first, int last, bool on) {
  if (first > last) std::swap(first, last);
  first = std::max(first, 1);
  last = std::min(last, size());
  if (first > last) return;
  const char value = on ? 1 : 0;
  for (int i = first - 1; i < last; ++i) {
    if (_flags[i] == value) continue;
    _flags[i] = value;
    _count += on ? 1 : -1;
  }
  if (on) widenSpan(first - 1, last - 1);
}

void RowSelection::selectAll() { setRange(1, size(), true); }

std::vector<int> RowSelection::positions() const {
  std::vector<int> out;
  out.reserve(_count);
  for (int i = std::max(_lo, 0); i <= _hi && i < size(); ++i)
    if (_flags[i]) out.push_back(i + 1);
  return out;
}
