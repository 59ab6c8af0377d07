#include "idb/Idb.h"

#include <errno.h>
#include <grp.h>
#include <pwd.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <system_error>
#include <thread>

#include "util/AtomicFile.h"

namespace {

// From this size on, reading, sorting and writing share the work with a
// helper thread (below it the thread costs more than it saves).
constexpr std::size_t kParallelBytes = 4 << 20;
constexpr std::size_t kParallelRecords = 50000;

std::string readMessage(const std::string& file, const std::string& what, int line) {
  return "Couldn't read idb '" + file + "' (" + what + " on line " + std::to_string(line) + ").";
}

// User and group names by number.  Adding a tree of 100,000 files asks for the
// same handful of ids over and over; the databases behind getpwuid may be
// slow (network services), so each id is looked up once per process.
const std::string& userName(uid_t uid) {
  static std::unordered_map<uid_t, std::string> cache;
  auto it = cache.find(uid);
  if (it != cache.end()) return it->second;
  struct passwd* pw = getpwuid(uid);
  return cache.emplace(uid, pw && pw->pw_name ? pw->pw_name : "root").first->second;
}

const std::string& groupName(gid_t gid) {
  static std::unordered_map<gid_t, std::string> cache;
  auto it = cache.find(gid);
  if (it != cache.end()) return it->second;
  struct group* gr = getgrgid(gid);
  return cache.emplace(gid, gr && gr->gr_name ? gr->gr_name : "sys").first->second;
}

std::string linkTarget(const std::string& path) {
  std::vector<char> buf(256);
  for (;;) {
    ssize_t n = readlink(path.c_str(), buf.data(), buf.size());
    if (n < 0) return std::string();
    if (static_cast<std::size_t>(n) < buf.size()) return std::string(buf.data(), n);
    buf.resize(buf.size() * 2);
  }
}

void appendOctal(std::string& out, std::uint32_t mode) {
  char digits[12];
  int n = 0;
  do {
    digits[n++] = static_cast<char>('0' + (mode & 7));
    mode >>= 3;
  } while (mode);
  for (int i = n; i < 4; ++i) out += '0';
  while (n) out += digits[--n];
}

int octalDigits(std::uint32_t mode) {
  int n = 1;
  while (mode >>= 3) ++n;
  return n < 4 ? 4 : n;
}

// The mode field is read as strtol in base 8 reads it (sign, blanks, any
// length), masked to 16 bits.  The usual plain digits are read directly;
// canonical stays true only for what "%04o" would have written.
std::uint16_t parseMode(const char* t, bool& canonical) {
  std::uint32_t v = 0;
  int n = 0;
  for (; n < 7 && t[n] >= '0' && t[n] <= '7'; ++n) v = v * 8 + static_cast<std::uint32_t>(t[n] - '0');
  if (t[n] != '\0' || n == 0 || n == 7) {
    canonical = false;
    return static_cast<std::uint16_t>(std::strtol(t, nullptr, 8) & 0xFFFF);
  }
  if (v > 0xFFFF || n < 4 || (n > 4 && t[0] == '0')) canonical = false;
  return static_cast<std::uint16_t>(v & 0xFFFF);
}

bool isDerived(std::string_view attr) {
  return attr.find("symval(") != std::string_view::npos ||
         attr.find("dev(") != std::string_view::npos;
}

// ---- Sorting by destination path
//
// Records are ordered through a permutation of (key, index) pairs, where the
// key holds eight bytes of the destination path starting at some depth.  A
// stable radix sort orders the pairs by key; pairs whose keys tie and whose
// paths go on are ordered again by the next eight bytes.  The pairs start in
// record order and every step is stable, so equal paths keep file order.

// Twelve bytes: two of these per record are the sort's whole scratch space,
// and during a save they come on top of the idb and its undo copy.  The
// path a key came from is found through its record, at the depth its range
// has reached.
#pragma pack(push, 4)
struct SortKey {
  std::uint64_t key;
  std::uint32_t index;
};
#pragma pack(pop)

std::uint64_t keyAt(const char* s) {
  std::uint64_t k = 0;
  int i = 0;
  for (; i < 8 && s[i]; ++i) k = (k << 8) | static_cast<unsigned char>(s[i]);
  return i == 8 ? k : i == 0 ? 0 : k << (8 * (8 - i));
}

void radixSort(SortKey* a, SortKey* tmp, std::size_t n) {
  if (n < 64) {
    std::stable_sort(a, a + n, [](const SortKey& x, const SortKey& y) { return x.key < y.key; });
    return;
  }
  // Eight passes of one byte each, from the lowest; a byte that is the same
  // in every key (common: paths share their first directories) is skipped.
  std::vector<std::size_t> counts(8 * 256, 0);
  for (std::size_t i = 0; i < n; ++i) {
    std::uint64_t k = a[i].key;
    for (int b = 0; b < 8; ++b) ++counts[b * 256 + ((k >> (8 * b)) & 0xFF)];
  }
  SortKey* from = a;
  SortKey* to = tmp;
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
  std::size_t depth;  // bytes of the paths already compared
};

// Adds the runs of equal keys in the sorted range r that still need the next
// eight bytes to be told apart.
void pushTies(const SortKey* keys, Range r, std::vector<Range>& work) {
  const SortKey* a = keys + r.begin;
  for (std::size_t i = 0; i < r.size;) {
    std::size_t j = i + 1;
    while (j < r.size && a[j].key == a[i].key) ++j;
    // A key whose last byte is 0 holds the end of both paths: they are equal.
    if (j - i > 1 && (a[i].key & 0xFF)) work.push_back({r.begin + i, j - i, r.depth + 8});
    i = j;
  }
}

// Orders every range of work, and the ties found in them, by the next bytes.
void refine(const std::vector<idb>& records, SortKey* keys, SortKey* tmp,
            std::vector<Range> work) {
  while (!work.empty()) {
    Range r = work.back();
    work.pop_back();
    SortKey* a = keys + r.begin;
    // The paths lie all over memory; fetching ahead hides the wait.
    constexpr std::size_t kAhead = 16;
    for (std::size_t i = 0; i < r.size; ++i) {
      if (i + kAhead < r.size)
        __builtin_prefetch(records[a[i + kAhead].index].dstpath().data() + r.depth);
      a[i].key = keyAt(records[a[i].index].dstpath().data() + r.depth);
    }
    radixSort(a, tmp + r.begin, r.size);
    pushTies(keys, r, work);
  }
}

std::vector<std::uint32_t> sortOrder(const std::vector<idb>& records) {
  std::size_t n = records.size();
  // Keys and the radix sort's scratch space in one allocation, which the
  // C library then gives back to the system as a whole when done.
  std::vector<SortKey> space;
  space.reserve(2 * n);
  TextArena::preferLargePages(space.data(), 2 * n * sizeof(SortKey));
  space.resize(2 * n);
  SortKey* keys = space.data();
  SortKey* tmp = keys + n;
  for (std::size_t i = 0; i < n; ++i) {
    keys[i] = {keyAt(records[i].dstpath().data()), static_cast<std::uint32_t>(i)};
  }
  radixSort(keys, tmp, n);
  std::vector<Range> ties;
  pushTies(keys, {0, n, 0}, ties);

  // The runs of ties are independent of each other: a helper thread takes
  // about half of them (by size).
  std::vector<Range> helperShare;
  if (n >= kParallelRecords) {
    std::size_t total = 0;
    for (const Range& r : ties) total += r.size;
    std::size_t mine = 0;
    std::size_t cut = 0;
    while (cut < ties.size() && mine < total / 2) mine += ties[cut++].size;
    helperShare.assign(ties.begin() + static_cast<std::ptrdiff_t>(cut), ties.end());
    ties.resize(cut);
  }
  std::thread helper;
  if (!helperShare.empty()) {
    try {
      helper = std::thread(refine, std::cref(records), keys, tmp, helperShare);
      helperShare.clear();
    } catch (const std::system_error&) {
      // No thread: all of it is done here.
    }
  }
  refine(records, keys, tmp, std::move(ties));
  refine(records, keys, tmp, std::move(helperShare));
  if (helper.joinable()) helper.join();

  std::vector<std::uint32_t> order(n);
  for (std::size_t i = 0; i < n; ++i) order[i] = keys[i].index;
  return order;
}

}  // namespace

char type(const struct stat& st) {
  switch (st.st_mode & 0xF000) {
    case 0xC000: return 's';
    case 0x4000: return 'd';
    case 0x6000: return 'b';
    case 0x2000: return 'c';
    case 0x1000: return 'p';
    case 0xA000: return 'l';
    default: return 'f';
  }
}

std::vector<std::string> idb::attrs() const {
  std::vector<std::string> out;
  for (int i = 0; i < _nattrs; ++i) out.emplace_back(_attrs[i]);
  return out;
}

// ---- Construction and copying

Idb::Idb() = default;

Idb::~Idb() = default;

Idb::Idb(const Idb& other) { *this = other; }

Idb& Idb::operator=(const Idb& other) {
  if (this == &other) return *this;
  _name = other._name;
  _records = other._records;
  _arena = other._arena;
  // Attribute arrays are shared with other: neither side may fill the other's
  // spare slots, so this copy reallocates before it adds one.
  for (idb& r : _records) r._attrRoom = static_cast<std::uint32_t>(r._nattrs);
  _index.clear();
  _indexValid = false;
  return *this;
}

// ---- Access

const idb* Idb::operator[](int i) const {
  if (i < 0 || i >= count()) return nullptr;
  return &_records[static_cast<std::size_t>(i)];
}

idb* Idb::edit(int i) {
  if (i < 0 || i >= count()) return nullptr;
  idb* r = &_records[static_cast<std::size_t>(i)];
  // The writer copies a record's original line while _lineLength is set;
  // after any change that line would be stale.
  r->_lineLength = 0;
  return r;
}

int Idb::findIndex(std::string_view dstpath) const {
  if (!_indexValid) {
    _index.clear();
    _index.reserve(_records.size());
    _indexUnique = true;
    for (std::size_t i = 0; i < _records.size(); ++i)
      if (!_index.emplace(_records[i].dstpath(), static_cast<int>(i)).second) _indexUnique = false;
    _indexValid = true;
  }
  auto it = _index.find(dstpath);
  return it == _index.end() ? -1 : it->second;
}

const idb* Idb::find(std::string_view dstpath) const { return (*this)[findIndex(dstpath)]; }

const idb* Idb::find(const char* dstpath) const {
  return dstpath ? find(std::string_view(dstpath)) : nullptr;
}

void Idb::indexAdded(int i) {
  if (!_indexValid) return;
  if (!_index.emplace(_records[static_cast<std::size_t>(i)].dstpath(), i).second)
    _indexUnique = false;
}

// ---- Reading

Outcome Idb::parseLine(char* begin, char* end, bool newline) {
  if (begin < end && *begin == '#') return Outcome::success();
  char* p = begin;
  // Whether the line is exactly as the writer would write it: single blanks,
  // a one-letter type, a canonical mode, nothing trailing.
  bool tight = true;
  // Fields are separated by runs of blanks; each token is cut out in place.
  auto token = [&p, end, &tight]() -> char* {
    if (p < end && *p == ' ') {
      tight = false;
      while (p < end && *p == ' ') ++p;
    }
    if (p == end) return nullptr;
    char* t = p;
    while (p < end && *p != ' ') ++p;
    if (p < end) *p++ = '\0';
    return t;
  };

  char* t = token();
  if (!t) {
    if (newline) return Outcome::success();  // empty line
    return Outcome::error("Expected type in field 1");
  }
  idb r;
  r._type = t[0];
  tight = tight && t[1] == '\0';
  if (!(t = token())) return Outcome::error("Expected mode in field 2");
  r._mode = parseMode(t, tight);
  static const char* const kMissing[] = {"Expected owner in field 3", "Expected group in field 4",
                                         "Expected destination path in field 5",
                                         "Expected source path in field 6",
                                         "Expected tag in field 7"};
  const char** fields[] = {&r._owner, &r._group, &r._dstpath, &r._srcpath, &r._tag};
  for (int f = 0; f < 5; ++f) {
    if (!(t = token())) return Outcome::error(kMissing[f]);
    *fields[f] = t;
  }
  if (p == end && p[-1] == '\0') tight = false;  // a blank after the tag and nothing more
  _scratch.clear();
  if (p < end) splitAttributes(p, _scratch, &tight);
  if (!_scratch.empty()) setAttributes(r, _scratch.data(), _scratch.size(), false);
  std::size_t length = static_cast<std::size_t>(end - begin);
  if (tight && length <= UINT32_MAX) r._lineLength = static_cast<std::uint32_t>(length);
  _records.push_back(r);
  indexAdded(count() - 1);
  return Outcome::success();
}

Outcome Idb::readLine(std::string_view line) {
  bool newline = !line.empty() && line.back() == '\n';
  if (newline) line.remove_suffix(1);
  if (line.find('\0') != std::string_view::npos) return Outcome::error("Unexpected NUL byte");
  if (line.find('\n') != std::string_view::npos) return Outcome::error("Unexpected newline");
  char* text = _arena.copy(line);
  return parseLine(text, text + line.size(), newline);
}

void Idb::splitAttributes(char* text, std::vector<const char*>& out, bool* tight) const {
  char* p = text;
  char* start = nullptr;
  while (*p) {
    char c = *p;
    if (c == ' ') {
      if (start) {
        *p = '\0';
        out.push_back(start);
        start = nullptr;
      } else if (tight) {
        *tight = false;  // a blank that separates nothing
      }
      ++p;
      continue;
    }
    if (!start) start = p;
    if (c == '\\') {
      p += p[1] ? 2 : 1;  // the escaped character is not examined
    } else if (c == '\'' || c == '"') {
      char* close = std::strchr(p + 1, c);
      p = close ? close + 1 : p + std::strlen(p);  // unclosed: the rest of the text
    } else {
      ++p;
    }
  }
  if (start) out.push_back(start);
  else if (tight && p > text) *tight = false;  // ends in a blank
}

void Idb::setAttributes(idb& r, const char* const* attrs, std::size_t n, bool keepOld) {
  std::size_t old = keepOld ? static_cast<std::size_t>(r._nattrs) : 0;
  std::size_t total = old + n;
  if (total > r._attrRoom || !keepOld) {
    // Grown by doubling when attributes come one at a time; exact otherwise.
    std::size_t room = keepOld ? std::max<std::size_t>(total, 2 * r._attrRoom) : total;
    const char** fresh = room ? _arena.pointers(room) : nullptr;
    if (old) std::copy(r._attrs, r._attrs + old, fresh);
    r._attrs = fresh;
    r._attrRoom = static_cast<std::uint32_t>(room);
  }
  if (n) std::copy(attrs, attrs + n, r._attrs + old);
  r._nattrs = static_cast<std::int32_t>(total);
  if (!total) {
    r._attrs = nullptr;
    r._attrRoom = 0;
  }
}

Outcome Idb::parseLines(char* text, char* end, const char* nul, int firstLine, int& badLine) {
  int lineNo = firstLine;
  for (char* p = text; p < end; ++lineNo) {
    char* nl = static_cast<char*>(std::memchr(p, '\n', static_cast<std::size_t>(end - p)));
    char* lineEnd = nl ? nl : end;
    Outcome status;
    if (nul && nul >= p && nul < lineEnd) {
      status = Outcome::error("Unexpected NUL byte");
    } else {
      if (nl) *nl = '\0';
      status = parseLine(p, lineEnd, nl != nullptr);
    }
    if (!status.ok()) {
      badLine = lineNo;
      return status;
    }
    p = nl ? nl + 1 : end;
  }
  return Outcome::success();
}

void Idb::reserveRecords(std::size_t more) {
  // Room for every line at once, still doubling when many small files come in.
  std::size_t need = _records.size() + more;
  if (need <= _records.capacity()) return;
  _records.reserve(std::max(need, 2 * _records.capacity()));
  TextArena::preferLargePages(_records.data() + _records.size(),
                              (_records.capacity() - _records.size()) * sizeof(idb));
}

Outcome Idb::readBuffer(char* text, std::size_t size, const std::string& file) {
  char* end = text + size;
  const char* nul = static_cast<const char*>(std::memchr(text, '\0', size));
  auto countLines = [](const char* from, const char* to) {
    std::size_t n = 0;
    while ((from = static_cast<const char*>(std::memchr(from, '\n', static_cast<std::size_t>(to - from)))))
      ++n, ++from;
    return n;
  };
  // A large file is read in two halves at once, the second by a helper
  // thread into a database of its own, which is then put behind the first.
  char* split = nullptr;
  if (size >= kParallelBytes) {
    split = static_cast<char*>(std::memchr(text + size / 2, '\n', size - size / 2));
    if (split) ++split;
  }
  int badLine = 0;
  if (!split) {
    reserveRecords(countLines(text, end) + 1);
    Outcome status = parseLines(text, end, nul, 1, badLine);
    if (!status.ok()) return Outcome::error(readMessage(file, status.message(), badLine));
    return Outcome::success();
  }
  std::size_t firstLines = countLines(text, split);
  std::size_t secondLines = countLines(split, end) + 1;
  reserveRecords(firstLines + secondLines);
  Idb second;
  second.reserveRecords(secondLines);
  Outcome secondStatus;
  int secondBad = 0;
  auto parseSecond = [&]() {
    secondStatus = second.parseLines(split, end, nul, static_cast<int>(firstLines) + 1, secondBad);
  };
  bool helped = false;
  std::thread helper;
  try {
    helper = std::thread(parseSecond);
    helped = true;
  } catch (const std::system_error&) {
    // No thread to be had: the second half waits its turn below.
  }
  Outcome status = parseLines(text, split, nul, 1, badLine);
  if (helped) helper.join();
  if (!status.ok()) return Outcome::error(readMessage(file, status.message(), badLine));
  if (!helped) parseSecond();
  for (const idb& r : second._records) {
    _records.push_back(r);
    indexAdded(count() - 1);
  }
  _arena.adopt(second._arena);
  if (!secondStatus.ok())
    return Outcome::error(readMessage(file, secondStatus.message(), secondBad));
  return Outcome::success();
}

Outcome Idb::load(const std::string& file, const char* openFormat, bool withReason, bool replace) {
  auto openFailure = [&](int err) {
    std::string m = std::string("Couldn't open idb '") + file + "'";
    if (withReason) m += std::string(" (") + std::strerror(err) + ")";
    return Outcome::error(m + openFormat, err);
  };
  std::FILE* f = std::fopen(file.c_str(), "r");
  if (!f) return openFailure(errno);

  // The whole file is read in one go into storage that the records then
  // point into.  Regular files are read straight into place; anything else
  // (a pipe) through a growing string.
  struct stat st;
  std::string extra;
  std::size_t size = 0;
  char* text = nullptr;
  TextArena incoming;
  bool regular = fstat(fileno(f), &st) == 0 && S_ISREG(st.st_mode);
  errno = 0;
  if (regular) {
    std::size_t want = static_cast<std::size_t>(st.st_size);
    text = incoming.buffer(want);
    size = std::fread(text, 1, want, f);
  }
  char chunk[65536];
  for (std::size_t n; (n = std::fread(chunk, 1, sizeof chunk, f)) > 0;) extra.append(chunk, n);
  int err = std::ferror(f) ? (errno ? errno : EIO) : 0;
  std::fclose(f);
  if (err) return openFailure(err);
  if (!extra.empty() || !text) {
    // The file grew while it was read, or it is not a regular file.
    TextArena whole;
    char* joined = whole.buffer(size + extra.size());
    if (size) std::memcpy(joined, text, size);
    if (!extra.empty()) std::memcpy(joined + size, extra.data(), extra.size());
    incoming = whole;  // drops the first, partial buffer
    text = joined;
    size += extra.size();
    joined[size] = '\0';
  } else {
    text[size] = '\0';
  }
  if (replace) {
    clear();
    _name = file;
  }
  _arena.adopt(incoming);
  return readBuffer(text, size, file);
}

Outcome Idb::open(const std::string& file) { return load(file, ".", true, true); }

Outcome Idb::append(const std::string& file) { return load(file, ".\n", false, false); }

Outcome Idb::readText(std::string_view text, const std::string& fileName) {
  char* copy = _arena.buffer(text.size());
  if (!text.empty()) std::memcpy(copy, text.data(), text.size());
  return readBuffer(copy, text.size(), fileName);
}

// ---- Writing

void Idb::appendLine(std::string& out, const idb& r) {
  if (std::size_t lineLength = r._lineLength) {
    // The record still lies in its line as the writer would format it: copy
    // the line and put back the blanks where the reader cut the fields.
    const char* line = r._owner - octalDigits(r._mode) - 3;
    std::size_t at = out.size();
    out.append(line, lineLength);
    char* o = &out[at];
    o[1] = ' ';
    for (const char* f : {r._owner, r._group, r._dstpath, r._srcpath, r._tag}) o[f - line - 1] = ' ';
    for (int a = 0; a < r._nattrs; ++a) o[r._attrs[a] - line - 1] = ' ';
    return;
  }
  out += r.type();
  out += ' ';
  appendOctal(out, r.mode());
  for (std::string_view f : {r.owner(), r.group(), r.dstpath(), r.srcpath(), r.tag()}) {
    out += ' ';
    out += f;
  }
  for (int a = 0; a < r.nattrs(); ++a) {
    out += ' ';
    out += r.attr(a);
  }
}


void Idb::formatLines(std::string& out, std::size_t from, std::size_t to) const {
  out.clear();
  constexpr std::size_t kAhead = 8;
  for (std::size_t i = from; i < to; ++i) {
    // After sorting, consecutive records point all over the text: fetch the
    // fields of a later line while this one is formatted.
    if (i + kAhead < to) {
      const char* ahead = _records[i + kAhead]._owner;
      __builtin_prefetch(ahead);
      __builtin_prefetch(ahead + 64);
      __builtin_prefetch(ahead + 128);
    }
    appendLine(out, _records[i]);
    out += '\n';
  }
}

Outcome Idb::save(const std::string& file) {
  std::string target = file.empty() ? _name : file;
  if (target.empty()) return AtomicFile::failure(ENOENT);
  AtomicFile out(target);
  if (Outcome opened = out.open(); !opened.ok()) return opened;
  // The records are sorted in memory before they are written; when the
  // write fails they go back to the order the caller knows, so that its
  // positions (the list's lines and selection) still name the same records.
  // Only the permutation is kept for that, not a copy of the records.
  std::vector<std::uint32_t> order;
  sort(&order);
  auto fail = [this, &order](Outcome failure) {
    if (!order.empty()) {
      std::vector<std::uint32_t> back(order.size());
      for (std::size_t j = 0; j < order.size(); ++j) back[order[j]] = static_cast<std::uint32_t>(j);
      permute(back);
      indexChanged();
    }
    return failure;
  };

  // Lines are formatted in pieces of kChunk records; for a large database a
  // helper thread formats every second piece while this one writes.
  constexpr std::size_t kChunk = 8192;
  std::size_t n = _records.size();
  bool parallel = n >= kParallelRecords;
  std::string mine, theirs;
  auto emit = [&out](const std::string& text) {
    return text.empty() || std::fwrite(text.data(), 1, text.size(), out.stream()) == text.size();
  };
  for (std::size_t at = 0; at < n;) {
    std::size_t mid = std::min(at + kChunk, n);
    std::size_t stop = std::min(mid + kChunk, n);
    std::thread helper;
    if (parallel && mid < stop) {
      try {
        helper = std::thread([this, &theirs, mid, stop]() { formatLines(theirs, mid, stop); });
      } catch (const std::system_error&) {
        parallel = false;
      }
    }
    formatLines(mine, at, mid);
    bool ok = emit(mine);
    int err = errno;
    if (helper.joinable()) helper.join();
    else formatLines(theirs, mid, stop);
    if (ok) {
      ok = emit(theirs);
      err = errno;
    }
    if (!ok)
      return fail(AtomicFile::failure(out.writeError() ? out.writeError() : err ? err : EIO));
    at = stop;
  }
  if (Outcome committed = out.commit(); !committed.ok()) return fail(committed);
  if (_name.empty()) _name = target;
  return Outcome::success();
}

void Idb::write(std::string& buf, unsigned i) const {
  if (i >= _records.size()) return;
  buf.clear();
  appendLine(buf, _records[i]);
}

std::string Idb::line(int i) const {
  std::string buf;
  if (i >= 0) write(buf, static_cast<unsigned>(i));
  return buf;
}

void Idb::print() const {
  std::printf("%s (%d items):\n", _name.c_str(), count());
  std::string buf;
  for (unsigned i = 0; i < _records.size(); ++i) {
    write(buf, i);
    std::printf("%s\n", buf.c_str());
  }
}

// ---- Adding and removing records

bool Idb::add(const std::string& path, std::string_view tag, std::string_view root) {
  struct stat st;
  if (lstat(path.c_str(), &st) != 0) {
    std::fprintf(stderr, "%s does not exist.\n", path.c_str());
    return false;
  }
  std::string rel = relativePath(path, root);

  std::vector<std::string> attrs;
  char t = type(st);
  if (t == 'b' || t == 'c')
    attrs.push_back("dev(" + std::to_string(major(st.st_rdev)) + "," +
                    std::to_string(minor(st.st_rdev)) + ")");
  if (t == 'l') {
    std::string target = linkTarget(path);
    if (!target.empty()) attrs.push_back("symval(" + target + ")");
  }
  addRecord(t, st.st_mode & 0x0FFF, userName(st.st_uid), groupName(st.st_gid), rel, rel, tag,
            attrs);
  return true;
}

std::string Idb::relativePath(std::string_view path, std::string_view root) {
  // Callers pass paths under root; the root and its separating slash are cut
  // off without further checks.
  std::size_t skip = root.size();
  if (path.substr(0, root.size()) == root && root != "/") ++skip;
  return skip < path.size() ? std::string(path.substr(skip)) : std::string();
}

const char* Idb::unstorable(std::string_view field) {
  if (field.empty()) return "is empty";
  for (char c : field) {
    if (c == ' ') return "holds a blank";
    if (c == '\t') return "holds a tab";
    if (c == '\n') return "holds a newline";
    if (c == '\0') return "holds a NUL byte";
  }
  return nullptr;
}

Outcome Idb::storageProblem(int i) const {
  const idb* r = (*this)[i];
  if (!r) return Outcome::success();
  static const char* const kNames[] = {"owner", "group", "destination path", "source path", "tag"};
  const std::string_view fields[] = {r->owner(), r->group(), r->dstpath(), r->srcpath(), r->tag()};
  for (int f = 0; f < 5; ++f)
    if (const char* why = unstorable(fields[f]))
      return Outcome::error(std::string("the ") + kNames[f] + " " + why);
  // What is left to differ: the type letter, the mode, the attributes.
  Idb again;
  if (!again.readLine(line(i)).ok() || again.count() != 1)
    return Outcome::error("the line does not read back");
  const idb& b = again._records[0];
  if (b.type() != r->type()) return Outcome::error("the type does not read back the same");
  if (b.mode() != r->mode()) return Outcome::error("the mode does not read back the same");
  if (b.attrs() != r->attrs()) return Outcome::error("the attributes do not read back the same");
  return Outcome::success();
}

int Idb::addRecord(char type, std::uint32_t mode, std::string_view owner, std::string_view group,
                   std::string_view dstpath, std::string_view srcpath, std::string_view tag,
                   const std::vector<std::string>& attrs) {
  idb r;
  r._type = type;
  r._mode = static_cast<std::uint16_t>(mode & 0xFFFF);
  r._owner = _arena.copy(owner);
  r._group = _arena.copy(group);
  r._dstpath = _arena.copy(dstpath);
  r._srcpath = _arena.copy(srcpath);
  r._tag = _arena.copy(tag);
  _scratch.clear();
  for (const std::string& a : attrs) _scratch.push_back(_arena.copy(a));
  setAttributes(r, _scratch.data(), _scratch.size(), false);
  _records.push_back(r);
  indexAdded(count() - 1);
  return count() - 1;
}

void Idb::remove(unsigned item) {
  if (item < 1 || item > _records.size()) return;
  _records.erase(_records.begin() + (item - 1));
  indexChanged();
}

void Idb::removeItems(std::vector<unsigned> items) {
  std::sort(items.begin(), items.end());
  std::size_t out = 0;
  std::size_t next = 0;  // position in items
  for (std::size_t i = 0; i < _records.size(); ++i) {
    while (next < items.size() && items[next] < i + 1) ++next;
    if (next < items.size() && items[next] == i + 1) continue;
    _records[out++] = _records[i];
  }
  if (out == _records.size()) return;
  _records.resize(out);
  indexChanged();
}

void Idb::deleteItem(int i) {
  idb* r = edit(i);
  if (!r) return;
  char t = r->_type;
  std::uint16_t mode = r->_mode;
  *r = idb();
  r->_type = t;
  r->_mode = mode;
  indexChanged();
}

void Idb::clear() {
  _name.clear();
  _records.clear();
  _records.shrink_to_fit();
  _arena.clear();
  _index.clear();
  _indexValid = false;
}

void Idb::sort() { sort(nullptr); }

void Idb::sort(std::vector<std::uint32_t>* order) {
  if (_records.size() < 2) return;
  std::vector<std::uint32_t> sorted = sortOrder(_records);
  permute(sorted);
  if (order) order->swap(sorted);
  indexChanged();
}

void Idb::permute(const std::vector<std::uint32_t>& order) {
  // In place, following the permutation's cycles: a second array of a
  // million records would raise the peak of a save (the undo copy's records
  // are held too) by their whole size.  The record two steps ahead on the
  // cycle is fetched early, which keeps most of the waiting on memory off
  // the path.
  const std::size_t n = order.size();
  std::vector<bool> placed(n, false);
  for (std::size_t start = 0; start < n; ++start) {
    if (placed[start] || order[start] == start) continue;
    idb first = _records[start];
    std::size_t j = start;
    for (;;) {
      std::size_t k = order[j];
      placed[j] = true;
      if (k == start) {
        _records[j] = first;
        break;
      }
      std::size_t next = order[k];
      if (next != start) __builtin_prefetch(&_records[order[next]]);
      _records[j] = _records[k];
      j = k;
    }
  }
}

// ---- Field edits

void Idb::setType(int i, char t) {
  if (idb* r = edit(i)) {
    r->_type = t;
  }
}

void Idb::setMode(int i, std::uint32_t mode) {
  if (idb* r = edit(i)) {
    r->_mode = static_cast<std::uint16_t>(mode & 0xFFFF);
  }
}

void Idb::setOwner(int i, std::string_view owner) {
  if (idb* r = edit(i)) {
    r->_owner = _arena.copy(owner);
  }
}

void Idb::setGroup(int i, std::string_view group) {
  if (idb* r = edit(i)) {
    r->_group = _arena.copy(group);
  }
}

void Idb::setSrcpath(int i, std::string_view srcpath) {
  if (idb* r = edit(i)) {
    r->_srcpath = _arena.copy(srcpath);
  }
}

void Idb::setTag(int i, std::string_view tag) {
  if (idb* r = edit(i)) {
    r->_tag = _arena.copy(tag);
  }
}

void Idb::setDstpath(int i, std::string_view dstpath) {
  idb* r = edit(i);
  if (!r) return;
  std::string_view old = r->dstpath();
  r->_dstpath = _arena.copy(dstpath);
  if (!_indexValid) return;
  auto it = _index.find(old);
  if (it != _index.end() && it->second == i) {
    // Another record may carry the old path too and become its first.
    if (!_indexUnique) {
      indexChanged();
      return;
    }
    _index.erase(it);
  }
  auto [at, inserted] = _index.emplace(r->dstpath(), i);
  if (!inserted) {
    _indexUnique = false;
    if (at->second > i) at->second = i;
  }
}

// ---- Attributes

void Idb::addAttribute(unsigned item, std::string_view attr) {
  idb* r = edit(static_cast<int>(item) - 1);
  if (!r || item == 0) return;
  const char* copy = _arena.copy(attr);
  setAttributes(*r, &copy, 1, true);
}

void Idb::parseAttributes(unsigned item, std::string_view text) {
  idb* r = edit(static_cast<int>(item) - 1);
  if (!r || item == 0) return;
  // Cut at a NUL, as the C string the text stands for would be.
  text = text.substr(0, text.find('\0'));
  std::vector<const char*> pieces;
  splitAttributes(_arena.copy(text), pieces);
  if (!pieces.empty()) setAttributes(*r, pieces.data(), pieces.size(), true);
}

void Idb::deleteAttributes(unsigned item) {
  idb* r = edit(static_cast<int>(item) - 1);
  if (!r || item == 0 || r->_nattrs == 0) return;
  std::vector<const char*> kept;
  for (int a = 0; a < r->_nattrs; ++a)
    if (isDerived(r->_attrs[a])) kept.push_back(r->_attrs[a]);
  if (kept.size() == static_cast<std::size_t>(r->_nattrs)) return;
  // A fresh array: the old one may be shared with an undo copy.
  setAttributes(*r, kept.data(), kept.size(), false);
}
