#include "idb/IdbFileSorter.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

#include "idb/Idb.h"
#include "util/AtomicFile.h"

namespace {

// Offsets are 32 bits: the file and the lines reformatted from it (at most
// twice its size) must stay below 4 GB.  Larger files take Idb's way.
constexpr std::size_t kMaxMapped = std::size_t(1) << 30;
// From this size on a helper thread shares the sorting of ties.
constexpr std::size_t kParallelEntries = 50000;

// One line to write.  Offsets below the mapping's size point into the
// mapping, the others into the text of reformatted lines behind it.
struct Entry {
  std::uint64_t key;   // eight bytes of the destination path, from some depth
  std::uint32_t line;  // where the line starts
  std::uint32_t path;  // where its destination path starts
};

// Two pieces of text seen as one: the mapped file, then the lines that had
// to be reformatted.
struct Text {
  const char* map;
  std::size_t size;
  const char* extra;
  std::size_t extraSize;
  const char* at(std::uint32_t offset) const {
    return offset < size ? map + offset : extra + (offset - size);
  }
  const char* end(std::uint32_t offset) const {
    return offset < size ? map + size : extra + extraSize;
  }
};

// Eight bytes of a destination path as a number that orders like the bytes;
// the blank that ends every destination path reads as 0, like the end of a
// C string (a path holds no NUL: such files go through Idb).
std::uint64_t keyAt(const char* s) {
  std::uint64_t k = 0;
  int i = 0;
  for (; i < 8 && s[i] != ' '; ++i) k = (k << 8) | static_cast<unsigned char>(s[i]);
  return i == 0 ? 0 : k << (8 * (8 - i));
}

// ---- Lines the writer reproduces unchanged

// The mode as "%04o" writes it: four to six octal digits, no leading zero
// beyond four, at most 0xFFFF.
bool canonicalMode(const char* p, const char* e) {
  std::size_t n = static_cast<std::size_t>(e - p);
  if (n < 4 || n > 6 || (n > 4 && p[0] == '0')) return false;
  std::uint32_t v = 0;
  for (; p < e; ++p) {
    if (*p < '0' || *p > '7') return false;
    v = v * 8 + static_cast<std::uint32_t>(*p - '0');
  }
  return v <= 0xFFFF;
}

// Attribute text after the tag's blank: pieces split as Idb::parseAttributes
// splits them, each separated by exactly one blank, none empty, nothing
// trailing.
bool canonicalAttributes(const char* p, const char* e) {
  bool inAttr = false;
  while (p < e) {
    char c = *p;
    if (c == ' ') {
      if (!inAttr) return false;
      inAttr = false;
      ++p;
      continue;
    }
    inAttr = true;
    if (c == '\\') {
      p += p + 1 < e ? 2 : 1;
    } else if (c == '\'' || c == '"') {
      const char* close =
          static_cast<const char*>(std::memchr(p + 1, c, static_cast<std::size_t>(e - p - 1)));
      p = close ? close + 1 : e;
    } else {
      ++p;
    }
  }
  return inAttr;
}

// Where the destination path of [p, e) starts if the writer would write the
// line back unchanged, else null.  The caller has ruled out comments.
const char* canonicalLine(const char* p, const char* e) {
  if (e - p < 2 || p[0] == ' ' || p[1] != ' ') return nullptr;
  const char* f = p + 2;
  const char* blank = static_cast<const char*>(std::memchr(f, ' ', static_cast<std::size_t>(e - f)));
  if (!blank || !canonicalMode(f, blank)) return nullptr;
  const char* path = nullptr;
  f = blank + 1;
  // owner, group, destination, source: each non-empty and ended by one blank
  for (int field = 0; field < 4; ++field) {
    blank = static_cast<const char*>(std::memchr(f, ' ', static_cast<std::size_t>(e - f)));
    if (!blank || blank == f) return nullptr;
    if (field == 2) path = f;
    f = blank + 1;
  }
  // the tag, then the attributes, if any
  blank = static_cast<const char*>(std::memchr(f, ' ', static_cast<std::size_t>(e - f)));
  if (blank == f || f == e) return nullptr;
  if (blank && !canonicalAttributes(blank + 1, e)) return nullptr;
  return path;
}

// ---- Reading

class Scanner {
 public:
  Scanner(const char* map, std::size_t size) : _map(map), _size(size) {
    // Every record line holds at least 13 bytes and its newline; reserving
    // touches no memory.
    _entries.reserve(size / 14 + 2);
  }

  /// Collects the lines of the whole mapping; false when Idb must do the job.
  bool scan() {
    const char* p = _map;
    const char* end = _map + _size;
    while (p < end) {
      const char* nl = static_cast<const char*>(std::memchr(p, '\n', static_cast<std::size_t>(end - p)));
      const char* e = nl ? nl : end;
      if (*p != '#' && e != p) {
        if (const char* path = canonicalLine(p, e))
          _entries.push_back({keyAt(path), offset(p), offset(path)});
        else if (!reformat(std::string_view(p, static_cast<std::size_t>((nl ? nl + 1 : e) - p))))
          return false;
      }
      p = nl ? nl + 1 : end;
    }
    return _extra.size() < kMaxMapped;
  }

  std::vector<Entry>& entries() { return _entries; }
  const std::string& extra() const { return _extra; }

 private:
  std::uint32_t offset(const char* p) const { return static_cast<std::uint32_t>(p - _map); }

  // A line the writer would change: Idb reads it and formats it.
  bool reformat(std::string_view line) {
    int before = _scratch.count();
    if (!_scratch.readLine(line).ok()) return false;
    if (_scratch.count() == before) return true;  // blanks only
    _scratch.write(_line, static_cast<unsigned>(before));
    std::size_t path = 0;
    for (int blanks = 0; blanks < 4; ++blanks) path = _line.find(' ', path) + 1;
    std::uint32_t at = static_cast<std::uint32_t>(_size + _extra.size());
    _entries.push_back({keyAt(_line.c_str() + path), at, static_cast<std::uint32_t>(at + path)});
    _extra += _line;
    _extra += '\n';
    if (_scratch.count() >= 4096) _scratch.clear();
    return true;
  }

  const char* _map;
  std::size_t _size;
  std::vector<Entry> _entries;
  std::string _extra;
  std::string _line;
  Idb _scratch;
};

// ---- Sorting
//
// A stable radix sort orders the entries by key; entries whose keys tie and
// whose paths go on are ordered again by the next eight bytes.  Entries
// start in file order and every step is stable, so equal paths keep it.

void radixSort(Entry* a, Entry* tmp, std::size_t n) {
  if (n < 64) {
    std::stable_sort(a, a + n, [](const Entry& x, const Entry& y) { return x.key < y.key; });
    return;
  }
  // One byte a pass, from the lowest; a byte that is the same in every key
  // (paths share their first directories) costs no pass.
  std::vector<std::size_t> counts(8 * 256, 0);
  for (std::size_t i = 0; i < n; ++i) {
    std::uint64_t k = a[i].key;
    for (int b = 0; b < 8; ++b) ++counts[b * 256 + ((k >> (8 * b)) & 0xFF)];
  }
  Entry* from = a;
  Entry* to = tmp;
  for (int b = 0; b < 8; ++b) {
    std::size_t* c = &counts[b * 256];
    if (c[(from[0].key >> (8 * b)) & 0xFF] == n) continue;
    std::size_t sum = 0;
    for (int v = 0; v < 256; ++v) {
      std::size_t k = c[v];
      c[v] = sum;
      sum += k;
    }
    for (std::size_t i = 0; i < n; ++i) to[c[(from[i].key >> (8 * b)) & 0xFF]++] = from[i];
    std::swap(from, to);
  }
  if (from != a) std::copy(from, from + n, a);
}

struct Range {
  std::size_t begin, size;
  std::uint32_t depth;  // bytes of the path that the keys have already compared
};

// Adds the runs of equal keys in r that still need the next eight bytes.
void pushTies(const Entry* entries, Range r, std::vector<Range>& work) {
  const Entry* a = entries + r.begin;
  for (std::size_t i = 0; i < r.size;) {
    std::size_t j = i + 1;
    while (j < r.size && a[j].key == a[i].key) ++j;
    // A key whose last byte is 0 holds the end of both paths: they are equal.
    if (j - i > 1 && (a[i].key & 0xFF)) work.push_back({r.begin + i, j - i, r.depth + 8});
    i = j;
  }
}

void refine(const Text& text, Entry* entries, Entry* tmp, std::vector<Range> work) {
  while (!work.empty()) {
    Range r = work.back();
    work.pop_back();
    Entry* a = entries + r.begin;
    // The paths lie all over the file; fetching ahead hides the wait.
    constexpr std::size_t kAhead = 16;
    for (std::size_t i = 0; i < r.size; ++i) {
      if (i + kAhead < r.size) __builtin_prefetch(text.at(a[i + kAhead].path) + r.depth);
      a[i].key = keyAt(text.at(a[i].path) + r.depth);
    }
    radixSort(a, tmp + r.begin, r.size);
    pushTies(entries, r, work);
  }
}

void sortEntries(const Text& text, std::vector<Entry>& entries) {
  std::size_t n = entries.size();
  if (n < 2) return;
  std::vector<Entry> scratch(n);
  Entry* a = entries.data();
  Entry* tmp = scratch.data();
  radixSort(a, tmp, n);
  std::vector<Range> ties;
  pushTies(a, {0, n, 0}, ties);
  // Runs of ties are independent: a helper thread takes about half of them.
  std::vector<Range> helperShare;
  if (n >= kParallelEntries) {
    std::size_t total = 0;
    for (const Range& r : ties) total += r.size;
    std::size_t mine = 0, cut = 0;
    while (cut < ties.size() && mine < total / 2) mine += ties[cut++].size;
    helperShare.assign(ties.begin() + static_cast<std::ptrdiff_t>(cut), ties.end());
    ties.resize(cut);
  }
  std::thread helper;
  if (!helperShare.empty()) {
    try {
      helper = std::thread(refine, std::cref(text), a, tmp, helperShare);
      helperShare.clear();
    } catch (const std::system_error&) {
      // No thread: all of it is done here.
    }
  }
  refine(text, a, tmp, std::move(ties));
  refine(text, a, tmp, std::move(helperShare));
  if (helper.joinable()) helper.join();
}

// ---- Writing

int writeEntries(const Text& text, const std::vector<Entry>& entries, std::FILE* out) {
  // Lines are gathered into a buffer of a fixed size and written in pieces
  // that large: the output never exists twice.
  constexpr std::size_t kBuffer = 1 << 20;
  std::vector<char> buffer(kBuffer);
  std::size_t used = 0;
  auto flush = [&]() {
    bool ok = std::fwrite(buffer.data(), 1, used, out) == used;
    used = 0;
    return ok;
  };
  constexpr std::size_t kAhead = 16;
  std::size_t n = entries.size();
  for (std::size_t i = 0; i < n; ++i) {
    if (i + kAhead < n) {
      const char* ahead = text.at(entries[i + kAhead].line);
      __builtin_prefetch(ahead);
      __builtin_prefetch(ahead + 64);
    }
    const Entry& e = entries[i];
    const char* line = text.at(e.line);
    const char* limit = text.end(e.line);
    const char* from = text.at(e.path);
    const char* nl =
        static_cast<const char*>(std::memchr(from, '\n', static_cast<std::size_t>(limit - from)));
    std::size_t length = static_cast<std::size_t>((nl ? nl : limit) - line);
    if (used + length + 1 > kBuffer) {
      if (!flush()) return errno ? errno : EIO;
      if (length + 1 > kBuffer) {  // a line longer than the buffer goes alone
        if (std::fwrite(line, 1, length, out) != length || std::fputc('\n', out) == EOF)
          return errno ? errno : EIO;
        continue;
      }
    }
    std::memcpy(buffer.data() + used, line, length);
    used += length;
    buffer[used++] = '\n';
  }
  if (used && !flush()) return errno ? errno : EIO;
  return 0;
}

// The mapped input; unmapped and closed when it goes.
class Mapping {
 public:
  explicit Mapping(const std::string& file) {
    _fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat st;
    if (_fd < 0 || fstat(_fd, &st) != 0 || !S_ISREG(st.st_mode) || st.st_size <= 0 ||
        static_cast<std::size_t>(st.st_size) >= kMaxMapped)
      return;
    _size = static_cast<std::size_t>(st.st_size);
    // Populated at once: the pages are the page cache's, nothing is copied.
    void* p = mmap(nullptr, _size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, _fd, 0);
    if (p == MAP_FAILED) return;
    _data = static_cast<const char*>(p);
  }
  ~Mapping() {
    if (_data) munmap(const_cast<char*>(_data), _size);
    if (_fd >= 0) close(_fd);
  }
  Mapping(const Mapping&) = delete;
  Mapping& operator=(const Mapping&) = delete;
  const char* data() const { return _data; }
  std::size_t size() const { return _size; }

 private:
  int _fd = -1;
  const char* _data = nullptr;
  std::size_t _size = 0;
};

int writeIdb(Idb& db, std::FILE* out) {
  db.sort();
  std::string text, line;
  for (int i = 0; i < db.count(); ++i) {
    db.write(line, static_cast<unsigned>(i));
    text += line;
    text += '\n';
    if (text.size() >= (1u << 20) || i + 1 == db.count()) {
      if (std::fwrite(text.data(), 1, text.size(), out) != text.size()) return errno ? errno : EIO;
      text.clear();
    }
  }
  return 0;
}

}  // namespace

struct IdbFileSorter::State {
  std::unique_ptr<Mapping> input;
  std::vector<Entry> entries;
  std::string extra;
  // Set instead of the above when the input takes Idb's way.
  std::unique_ptr<Idb> db;
};

IdbFileSorter::IdbFileSorter() = default;
IdbFileSorter::~IdbFileSorter() = default;

Outcome IdbFileSorter::read(const std::string& in) {
  _state = std::make_unique<State>();
  auto input = std::make_unique<Mapping>(in);
  if (input->data() && !std::memchr(input->data(), '\0', input->size())) {
    Scanner scanner(input->data(), input->size());
    if (scanner.scan()) {
      _state->entries = std::move(scanner.entries());
      _state->extra = scanner.extra();
      Text text{input->data(), input->size(), _state->extra.data(), _state->extra.size()};
      sortEntries(text, _state->entries);
      _state->input = std::move(input);
      return Outcome::success();
    }
  }
  // Idb gives the messages, whatever made the fast way give up.
  _state->db = std::make_unique<Idb>();
  Outcome status = _state->db->open(in);
  if (!status.ok()) _state.reset();
  return status;
}

Outcome IdbFileSorter::write(std::FILE* out) const {
  if (!_state) return AtomicFile::failure(EINVAL);
  if (_state->db) return AtomicFile::failure(writeIdb(*_state->db, out));
  const Mapping& input = *_state->input;
  Text text{input.data(), input.size(), _state->extra.data(), _state->extra.size()};
  return AtomicFile::failure(writeEntries(text, _state->entries, out));
}

Outcome IdbFileSorter::sortFile(const std::string& in, const std::string& out) {
  IdbFileSorter sorter;
  if (Outcome status = sorter.read(in); !status.ok()) return status;
  AtomicFile file(out);
  if (Outcome status = file.open(); !status.ok()) return status;
  if (Outcome status = sorter.write(file.stream()); !status.ok()) return status;
  return file.commit();
}
