#include "idb/TextArena.h"

#include <sys/mman.h>

#include <cstdint>
#include <cstring>

namespace {
constexpr std::size_t kChunk = 64 * 1024;
}

TextArena::TextArena(const TextArena& other) : _chunks(other._chunks), _bytes(other._bytes) {}

TextArena& TextArena::operator=(const TextArena& other) {
  if (this != &other) {
    _chunks = other._chunks;
    _bytes = other._bytes;
    // The free tail of other's newest chunk is other's to fill.
    _next = nullptr;
    _left = 0;
  }
  return *this;
}

char* TextArena::raw(std::size_t n, std::size_t align) {
  std::size_t pad = _next ? (align - reinterpret_cast<std::uintptr_t>(_next) % align) % align : 0;
  if (!_next || pad + n > _left) {
    if (n > kChunk / 4) {
      // Large pieces get a chunk of their own, so the small chunk keeps its room.
      std::shared_ptr<char[]> big(new char[n]);
      _chunks.push_back(big);
      _bytes += n;
      return big.get();
    }
    std::shared_ptr<char[]> chunk(new char[kChunk]);
    _chunks.push_back(chunk);
    _bytes += kChunk;
    _next = chunk.get();
    _left = kChunk;
    pad = 0;  // new[] memory is suitably aligned for any fundamental type
  }
  char* p = _next + pad;
  _next = p + n;
  _left -= pad + n;
  return p;
}

char* TextArena::copy(std::string_view s) {
  char* p = raw(s.size() + 1, 1);
  if (!s.empty()) std::memcpy(p, s.data(), s.size());
  p[s.size()] = '\0';
  return p;
}

const char** TextArena::pointers(std::size_t n) {
  return reinterpret_cast<const char**>(raw(n * sizeof(const char*), alignof(const char*)));
}

char* TextArena::buffer(std::size_t n) {
  std::shared_ptr<char[]> big(new char[n + 1]);
  preferLargePages(big.get(), n + 1);
  _chunks.push_back(big);
  _bytes += n + 1;
  big[n] = '\0';
  return big.get();
}

void TextArena::clear() {
  _chunks.clear();
  _next = nullptr;
  _left = 0;
  _bytes = 0;
}

void TextArena::adopt(TextArena& other) {
  if (&other == this) return;
  _chunks.insert(_chunks.end(), other._chunks.begin(), other._chunks.end());
  _bytes += other._bytes;
  other.clear();
}

void TextArena::preferLargePages(void* p, std::size_t n) {
  constexpr std::uintptr_t kLarge = 2 << 20;
  if (n < 2 * kLarge) return;
  std::uintptr_t begin = (reinterpret_cast<std::uintptr_t>(p) + kLarge - 1) & ~(kLarge - 1);
  std::uintptr_t end = (reinterpret_cast<std::uintptr_t>(p) + n) & ~(kLarge - 1);
#ifdef MADV_HUGEPAGE
  if (end > begin) madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
#endif
}
