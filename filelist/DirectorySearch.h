// DirectorySearch: everything below a directory, as the system's find
// command lists it, collected into a StringSet.
//
// The command runs as a child without a shell (names with blanks or shell
// characters are safe), with only standard input, output and error open,
// and its output is read through a pipe as names each ended by a NUL byte
// (find -print0), so that any name a file may have, newlines included,
// comes through whole.  find follows links and reports loops of them instead
// of descending forever.  Every 100 names the caller's poll is asked whether
// the user has interrupted; an interruption ends the child and the search.
#ifndef TAMBLIN_FILELIST_DIRECTORYSEARCH_H
#define TAMBLIN_FILELIST_DIRECTORYSEARCH_H

#include <functional>
#include <string>
#include <vector>

class StringSet;

class DirectorySearch {
 public:
  /// Called with the running count at every multiple of 100 lines; true
  /// means the user interrupted.
  using Poll = std::function<bool(int count)>;

  /// The directory search: "/bin/find DIR -follow -print0"; "%s" stands for
  /// the directory.
  static const std::vector<std::string>& findCommand();

  /// Runs command (its "%s" arguments replaced by dir) and adds each
  /// NUL-ended name of its output (with dir and "/" before it when prefix is
  /// set) to set, if that path exists; count goes up for every name.  Returns false when
  /// interrupted; a command that cannot be started adds nothing and counts
  /// as finished.
  static bool addByCommand(const std::vector<std::string>& command, const std::string& dir,
                           int& count, StringSet& set, bool prefix, const Poll& poll);

  /// The directory itself and everything find lists below it.  False when
  /// interrupted.
  static bool addDir(const std::string& dir, StringSet& set, int& count, const Poll& poll);
};

#endif
