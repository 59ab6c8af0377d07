#include "filelist/LineMatcher.h"

#include <re2/re2.h>

namespace {

re2::RE2::Options matcherOptions() {
  re2::RE2::Options opts;
  // Idb lines are bytes in whatever encoding the file system uses; Latin-1
  // makes every byte one character, so no line is rejected as bad UTF-8.
  opts.set_encoding(re2::RE2::Options::EncodingLatin1);
  opts.set_posix_syntax(true);
  opts.set_never_capture(true);
  // A typing mistake is answered with the bell, not a line on stderr.
  opts.set_log_errors(false);
  return opts;
}

}  // namespace

LineMatcher::LineMatcher(const std::string& expression)
    : _re(std::make_unique<re2::RE2>(expression, matcherOptions())) {
  if (!_re->ok() || !matches(std::string_view())) return;
  // Matching the empty text, an expression without anchors or escapes (the
  // only ways to write an assertion) matches at the start of every line.
  if (expression.find_first_of("^$\\") == std::string::npos) {
    _every = true;
    return;
  }
  // Nothing but anchors, of both kinds: a match must sit at the start and
  // the end of the line at once.
  _onlyEmpty = expression.find_first_not_of("^$") == std::string::npos &&
               expression.find('^') != std::string::npos && expression.find('$') != std::string::npos;
}

LineMatcher::~LineMatcher() = default;

bool LineMatcher::ok() const { return _re->ok(); }

bool LineMatcher::matches(std::string_view line) const {
  // Match() without submatches: the least work per call, which counts when
  // a selection asks once for each of a million lines.
  return _re->ok() && _re->Match(re2::StringPiece(line.data(), line.size()), 0, line.size(),
                                 re2::RE2::UNANCHORED, nullptr, 0);
}
