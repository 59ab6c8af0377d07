// TextArena: append-only storage for the strings of an installation database.
//
// An idb of a million lines is read in one go and its fields are cut out of
// that buffer in place; values set later (an edited owner, a new attribute)
// are copied into small chunks.  Nothing stored is ever changed or freed
// individually: a replaced value simply stays behind until the arena is
// cleared.  Chunks are reference counted, so copying an arena (the undo copy
// of an idb) shares every string stored so far instead of duplicating it;
// each copy allocates new strings in chunks of its own.
#ifndef TAMBLIN_IDB_TEXTARENA_H
#define TAMBLIN_IDB_TEXTARENA_H

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

class TextArena {
 public:
  TextArena() = default;
  /// Shares other's chunks; new allocations go to chunks of this arena only.
  TextArena(const TextArena& other);
  TextArena& operator=(const TextArena& other);

  /// A NUL-terminated copy of s (writable until shared); the pointer stays valid as long as any
  /// arena sharing this chunk lives.
  char* copy(std::string_view s);
  /// Uninitialised room for n pointers (8-byte aligned).
  const char** pointers(std::size_t n);
  /// A writable buffer of n bytes plus a terminating NUL, kept as one chunk
  /// (used for a whole file read at once).
  char* buffer(std::size_t n);
  /// Takes over other's chunks (other is left empty).
  void adopt(TextArena& other);
  /// Drops every chunk (strings shared with other arenas stay alive there).
  void clear();
  /// Asks the kernel to back [p, p+n) with large pages where it can: a
  /// buffer of a hundred megabytes then costs a few hundred page faults
  /// instead of tens of thousands.  Call before the memory is first touched.
  static void preferLargePages(void* p, std::size_t n);
  /// Bytes held in chunks (for tests and benchmarks).
  std::size_t bytes() const { return _bytes; }

 private:
  char* raw(std::size_t n, std::size_t align);

  std::vector<std::shared_ptr<char[]>> _chunks;
  char* _next = nullptr;  // free space in the newest small chunk
  std::size_t _left = 0;
  std::size_t _bytes = 0;
};

#endif
