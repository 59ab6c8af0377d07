// BrowserDirectory: the file-system side of the source-tree browser.
//
// Which directory a typed text names, whether a directory lies inside the
// source root (links resolved), and the entries the browser lists for a
// directory.  Stateless; messages go to the Reporter handed in.
#ifndef TAMBLIN_FILELIST_BROWSERDIRECTORY_H
#define TAMBLIN_FILELIST_BROWSERDIRECTORY_H

#include <memory>
#include <string>

class Reporter;
class StringSet;

class BrowserDirectory {
 public:
  /// The absolute path a typed text stands for: an absolute text as it is,
  /// anything else (empty included) below the process's current directory;
  /// "~" alone is the current directory itself (no home directory).
  static std::string typedPath(const std::string& text);

  /// True when path is a directory (links followed) that can be opened.
  static bool isReadableDirectory(const std::string& path);

  /// True when dir lies at or below root once every link is resolved; a
  /// root of "/" holds everything.  /a/bc is not below /a/b.  A path that
  /// cannot be resolved is reported to log and counts as outside.
  static bool isSubdir(const std::string& root, const std::string& dir, Reporter& log);

  /// True when the canonical path is root or lies below it, by the text of
  /// the paths alone (as the idb's relative paths are made).
  static bool isUnder(const std::string& root, const std::string& path);

  /// The entries of dir as the browser lists them, sorted: directories
  /// (after following links) with "/" appended, "./" and "../" included.
  /// Empty when the directory cannot be read.
  static std::unique_ptr<StringSet> readEntries(const std::string& dir);

  /// The path of a listed entry: directory "/" entry, without a doubled
  /// slash in the root directory.
  static std::string entryPath(const std::string& directory, const std::string& entry);
};

#endif
