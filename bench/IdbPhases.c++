// idbphases FILE [OUT]: times the phases of sorting an idb (read, sort,
// format and write) separately, to see where `tamblin-cli sort` spends it.
#include <chrono>
#include <cstdio>
#include <string>

#include "idb/Idb.h"

namespace {
double since(std::chrono::steady_clock::time_point& t) {
  auto now = std::chrono::steady_clock::now();
  double s = std::chrono::duration<double>(now - t).count();
  t = now;
  return s;
}
}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: idbphases FILE [OUT]\n");
    return 2;
  }
  auto t = std::chrono::steady_clock::now();
  Idb db;
  if (Outcome status = db.open(argv[1]); !status.ok()) {
    std::fprintf(stderr, "%s\n", status.message().c_str());
    return 1;
  }
  double read = since(t);
  db.sort();
  double sort = since(t);
  bool saved = argc > 2 ? db.save(argv[2]).ok() : true;
  double save = since(t);
  std::printf("records %d  read %.3f s  sort %.3f s  save %.3f s  storage %zu MB\n", db.count(),
              read, sort, save, db.storageBytes() >> 20);
  return saved ? 0 : 1;
}
