#include "idb/StringSet.h"

#include <algorithm>

StringSet::StringSet(const char* name) : _name(name ? name : "") {}

StringSet::~StringSet() = default;

const char* StringSet::add(const char* s) {
  if (const char* found = find(s)) return found;
  _items.push_back(std::make_unique<std::string>(s ? s : ""));
  const std::string& stored = *_items.back();
  _index.insert(std::string_view(stored));
  return stored.c_str();
}

const char* StringSet::find(const char* s) const {
  if (!s) return nullptr;
  auto it = _index.find(std::string_view(s));
  return it == _index.end() ? nullptr : it->data();
}

void StringSet::remove(const char* s) {
  const char* stored = find(s);
  if (!stored) return;
  auto it = std::find_if(_items.begin(), _items.end(),
                         [stored](const auto& p) { return p->c_str() == stored; });
  _index.erase(std::string_view(stored));
  _items.erase(it);
}

void StringSet::sort() {
  std::sort(_items.begin(), _items.end(), [](const auto& a, const auto& b) { return *a < *b; });
}

const char* StringSet::item(int i) const {
  if (i < 0 || i >= count()) return nullptr;
  return _items[static_cast<size_t>(i)]->c_str();
}
