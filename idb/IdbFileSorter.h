// IdbFileSorter: sorts an idb file by destination path into another file,
// writing exactly what Idb::open followed by Idb::save would write (the same
// bytes, the same messages), without building the records.
//
// The input is mapped, never copied: each line the writer would reproduce
// unchanged (single blanks, a "%04o" mode, no trailing blank) is sorted by
// its position in the mapping and written from there.  Lines the writer
// would change are read by an Idb and written as Idb::write formats them;
// comments and empty lines are dropped, as saving drops them.  A line that
// Idb would refuse, a NUL byte, or a file that cannot be mapped sends the
// whole job through Idb::open and Idb::save, so that every message is the
// one they give.
//
// Records with equal destination paths keep their order in the file.
#ifndef TAMBLIN_IDB_IDBFILESORTER_H
#define TAMBLIN_IDB_IDBFILESORTER_H

#include <cstdio>
#include <memory>
#include <string>

#include "util/Outcome.h"

class IdbFileSorter {
 public:
  IdbFileSorter();
  ~IdbFileSorter();
  IdbFileSorter(const IdbFileSorter&) = delete;
  IdbFileSorter& operator=(const IdbFileSorter&) = delete;

  /// Reads and sorts in; fails as Idb::open does when it cannot be read.
  /// The input stays mapped until the sorter goes.
  Outcome read(const std::string& in);
  /// Writes the lines read, in order, to out; fails with the system error
  /// number (AtomicFile::failure).
  Outcome write(std::FILE* out) const;

  /// Sorts in into out (out may be in): the target is replaced atomically.
  /// Fails as read() when in cannot be read (nothing is written then), else
  /// as AtomicFile when out cannot be saved (out is unchanged).
  static Outcome sortFile(const std::string& in, const std::string& out);

 private:
  struct State;
  std::unique_ptr<State> _state;
};

#endif
