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
    : _re(std::make_unique<re2::RE2>(expression, matcherOptions())) {}

LineMatcher::~LineMatcher() = default;

bool LineMatcher::ok() const { return _re->ok(); }

bool LineMatcher::matches(std::string_view line) const {
  return _re->ok() && re2::RE2::PartialMatch(re2::StringPiece(line.data(), line.size()), *_re);
}
