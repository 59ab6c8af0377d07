// LineMatcher: the file list's selection expression.
//
// An expression selects every line it matches anywhere (unanchored), so ".*"
// selects all lines, "^$" none of a non-empty list, "sw.base" every line
// holding that text and [0-9] every line with a digit.  The syntax is that of
// POSIX extended expressions (alternation, groups, bounds, bracket classes).
// Matching is byte-wise and takes time linear in the line's length whatever
// the expression, so selecting over a million lines never stalls the program.
#ifndef TAMBLIN_FILELIST_LINEMATCHER_H
#define TAMBLIN_FILELIST_LINEMATCHER_H

#include <memory>
#include <string>
#include <string_view>

namespace re2 {
class RE2;
}

class LineMatcher {
 public:
  explicit LineMatcher(const std::string& expression);
  ~LineMatcher();
  LineMatcher(const LineMatcher&) = delete;
  LineMatcher& operator=(const LineMatcher&) = delete;

  /// False when the expression does not compile; matches() is then false.
  bool ok() const;
  /// True when the expression matches somewhere in line.
  bool matches(std::string_view line) const;
  /// True when the expression matches every line whatever its text (".*",
  /// "x*"), so a selection need not look at the lines.
  bool matchesEveryLine() const { return _every; }
  /// True when it matches the empty line and no other ("^$").
  bool matchesOnlyEmptyLine() const { return _onlyEmpty; }

 private:
  std::unique_ptr<re2::RE2> _re;
  bool _every = false;
  bool _onlyEmpty = false;
};

#endif
