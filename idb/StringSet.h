// StringSet: a named collection of distinct strings.
//
// Carries query results (tags, source paths, list items, image ordering)
// from the models to the panels.  Duplicates are rejected, insertion order
// is kept until sort(), and the set owns copies of its strings.  Membership
// is hashed, so filling a set of n strings costs O(n).
//
// Pointers returned by add() and find() (and by item()) stay valid until that
// element is removed or the set is destroyed; growing the set does not move
// the strings.
#ifndef TAMBLIN_IDB_STRINGSET_H
#define TAMBLIN_IDB_STRINGSET_H

#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

class StringSet {
 public:
  /// name labels the set for diagnostics only.
  explicit StringSet(const char* name);
  virtual ~StringSet();
  StringSet(const StringSet&) = delete;
  StringSet& operator=(const StringSet&) = delete;

  /// Returns the stored element equal to s: the existing one when there is
  /// one (nothing changes), else a new copy appended at the end.
  const char* add(const char* s);
  const char* add(const std::string& s) { return add(s.c_str()); }
  /// The stored element equal to s, or null (also for a null s).
  const char* find(const char* s) const;
  /// Removes the element equal to s, if any; later elements move down one.
  void remove(const char* s);
  /// Sorts the elements in ascending byte order (strcmp).
  void sort();

  const std::string& name() const { return _name; }
  int count() const { return static_cast<int>(_items.size()); }
  /// Element i, 0 <= i < count(); null outside that range.
  const char* item(int i) const;
  const char* operator[](int i) const { return item(i); }

 private:
  std::string _name;
  std::vector<std::unique_ptr<std::string>> _items;
  // Views into the owned strings above; their data() is the stored pointer.
  std::unordered_set<std::string_view> _index;
};

#endif
