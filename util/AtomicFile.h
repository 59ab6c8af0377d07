// AtomicFile: replaces a file's content all at once, keeping the file.
//
// What the caller writes to stream() goes to an unnamed temporary file
// (O_TMPFILE), so a killed save leaves nothing behind.  commit() then puts
// the new content in place in one of two ways:
//
// - Replacing by rename, when that keeps everything the user expects of the
//   file: the temporary takes the target's mode, owner and group, is synced,
//   given a name and renamed over the target.  A new file is linked into
//   place directly.
// - Writing in place, when a rename would lose something: the target has
//   other hard links, is reached through a symbolic link, has extended
//   attributes, lies in a directory the user cannot write (or a sticky one
//   that forbids the rename), or the temporary cannot take its owner, group
//   or mode.  The old content is first copied aside, space for the new one
//   is reserved, and the copy over the target runs in a child process of its
//   own session, which finishes (or puts the old content back after a write
//   error) even when this process is killed.  So the target is always the
//   whole old or the whole new text.
//
// On a file system without unnamed files, a named temporary (".NAME.XXXXXX"
// beside the target) takes the unnamed one's place, and a killed save can
// leave it behind.  Replacing by rename also names the temporary for the
// moment between linking it and renaming it.
//
// A target that exists and is not a regular file (a directory, FIFO or device)
// is refused with kNotRegular before anything is opened for writing; one the
// user may not write is refused with the error fopen("w") would give.  Every
// failure is reported by the system error number of its real cause (a full
// disk is ENOSPC however the caller wrote), and leaves the target as it was.
// While a save is open, SIGXFSZ is ignored, so that a file size limit fails
// the save (EFBIG) instead of ending the program.
#ifndef TAMBLIN_UTIL_ATOMICFILE_H
#define TAMBLIN_UTIL_ATOMICFILE_H

#include <signal.h>
#include <sys/types.h>

#include <cstdio>
#include <string>

#include "util/Outcome.h"

class AtomicFile {
 public:
  /// The code() of open()'s failure for a target that is there but not a
  /// regular file.
  static constexpr int kNotRegular = -1;
  /// The text for an error number of this class: strerror, or "Not a regular
  /// file" for kNotRegular.
  static std::string describe(int err);
  /// The Outcome for an error number of this class: ok for 0, else
  /// describe(err) with err as its code.
  static Outcome failure(int err);
  /// True when something exists at path (links followed) that is not a
  /// regular file.
  static bool existsButNotRegular(const std::string& path);

  explicit AtomicFile(std::string target);
  /// Discards the temporary file unless commit() succeeded.
  ~AtomicFile();
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;

  /// Checks the target and creates the temporary file.  Fails with code
  /// kNotRegular or the system error number (for instance EACCES when the
  /// target may not be written, or its directory not when it is new), and
  /// the message describe() gives for it.
  Outcome open();
  /// The stream to write to, valid between a successful open() and commit().
  std::FILE* stream() const { return _stream; }
  /// The first error met writing to stream(), or 0.
  int writeError() const { return _writeError; }
  /// Puts the written text in place.  Fails with the system error number of
  /// the first failure (as open() does), in which case the target is as it was.
  Outcome commit();
  /// Drops the temporary file.
  void discard();

  /// The file that is really replaced: target with symbolic links followed.
  const std::string& resolvedTarget() const { return _resolved; }
  /// Whether commit() writes in place rather than renaming (known after open()).
  bool inPlace() const { return _inPlace; }

 private:
  int openTarget();
  int commitTarget();
  static ssize_t cookieWrite(void* self, const char* data, size_t size);
  int createTemporary(bool exists, const struct stat& target);
  int replace();
  int writeInPlace();
  void closeAll();

  std::string _target;
  std::string _resolved;
  std::string _tempPath;  // set only when no unnamed temporary could be made
  std::FILE* _stream = nullptr;
  int _tempFd = -1;
  int _targetFd = -1;
  bool _exists = false;
  bool _inPlace = false;
  int _writeError = 0;
  bool _signalSaved = false;
  struct sigaction _oldXfsz;
};

#endif
