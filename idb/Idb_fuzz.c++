// Arbitrary bytes through the idb reader, line by line and as a whole file;
// whatever was read is written back and must read back to the same lines.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "idb/Idb.h"

namespace {

void check(bool ok) {
  if (!ok) std::abort();
}

std::string written(const Idb& db) {
  std::string out;
  for (int i = 0; i < db.count(); ++i) out += db.line(i) + "\n";
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view text(reinterpret_cast<const char*>(data), size);

  // As a whole file.
  Idb whole;
  bool failed = !whole.readText(text, "fuzz.idb").ok();

  // Line by line: up to the first bad line the records are the same.
  Idb byLine;
  int compared = 0;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t nl = text.find('\n', at);
    std::size_t end = nl == std::string_view::npos ? text.size() : nl + 1;
    if (!byLine.readLine(text.substr(at, end - at)).ok()) break;
    at = end;
  }
  for (; compared < whole.count() && compared < byLine.count(); ++compared)
    check(whole.line(compared) == byLine.line(compared));
  if (!failed) check(whole.count() == byLine.count());

  // A record whose type letter is '#' writes a line that reads as a comment;
  // the format cannot say otherwise, so such records are left out here.
  Idb plain;
  for (const idb& r : whole.records()) {
    if (r.type() == '#') continue;
    plain.addRecord(r.type(), r.mode(), r.owner(), r.group(), r.dstpath(), r.srcpath(), r.tag(),
                    r.attrs());
  }
  std::string first = written(plain);
  Idb again;
  check(again.readText(first).ok());
  check(written(again) == first);

  // Sorting keeps every record and orders the destinations.
  Idb sorted = again;
  sorted.sort();
  check(sorted.count() == again.count());
  for (int i = 1; i < sorted.count(); ++i) check(sorted[i - 1]->dstpath() <= sorted[i]->dstpath());
  for (int i = 0; i < sorted.count(); ++i) {
    int firstAt = sorted.findIndex(sorted[i]->dstpath());
    check(firstAt >= 0 && firstAt <= i && sorted[firstAt]->dstpath() == sorted[i]->dstpath());
  }
  for (int i = 1; i <= sorted.count(); ++i) sorted.deleteAttributes(static_cast<unsigned>(i));
  check(written(again) == first);  // the copy it came from is untouched
  return 0;
}
