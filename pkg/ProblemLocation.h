// ProblemLocation: where a build problem points, read back from its log line
// "FILE:LINE: message" (the form forgeset writes), so that the program can
// show the idb record or spec item to fix.
#ifndef TAMBLIN_PKG_PROBLEMLOCATION_H
#define TAMBLIN_PKG_PROBLEMLOCATION_H

#include <optional>
#include <string>
#include <string_view>

struct ProblemLocation {
  std::string file;
  int line = 0;

  /// The location at the start of a log line; nothing when the line does
  /// not begin with "FILE:LINE: ".
  static std::optional<ProblemLocation> parse(std::string_view logLine);
  /// The destination path of the record on line `line` of the idb file, or
  /// nothing when that line holds no record (or the file cannot be read).
  static std::optional<std::string> idbDestination(const std::string& file, int line);
};

#endif
