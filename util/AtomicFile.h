// AtomicFile: replaces a file's content all at once.
//
// The new content goes to a temporary file in the target's directory, which
// is flushed to disk and renamed over the target on commit().  A crash, a
// full disk or a write error before that leaves the old file as it was.  The
// target's permission bits (and owner, where allowed) are kept; a target that
// is a symbolic link is written through, so the link stays a link.
#ifndef TAMBLIN_UTIL_ATOMICFILE_H
#define TAMBLIN_UTIL_ATOMICFILE_H

#include <cstdio>
#include <string>

class AtomicFile {
 public:
  explicit AtomicFile(std::string target);
  /// Discards the temporary file unless commit() succeeded.
  ~AtomicFile();
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;

  /// Creates the temporary file.  Returns 0 or the system error number
  /// (for instance when the directory is not writable).
  int open();
  /// The stream to write to, valid between a successful open() and commit().
  std::FILE* stream() const { return _stream; }
  /// Flushes, syncs and renames over the target.  Returns 0 or the system
  /// error number of the first failure, in which case the target is untouched.
  int commit();
  /// Drops the temporary file.
  void discard();

  /// The file that is really replaced: target with symbolic links followed.
  const std::string& resolvedTarget() const { return _resolved; }

 private:
  std::string _target;
  std::string _resolved;
  std::string _tempPath;
  std::FILE* _stream = nullptr;
};

#endif
