#include "util/Format.h"

#include <cstdio>

std::string format(const char* fmt, ...) {
  va_list args;
  va_start(args, fmt);
  std::string out = vformat(fmt, args);
  va_end(args);
  return out;
}

std::string vformat(const char* fmt, va_list args) {
  // Measured first, then written once into a string of that size.
  va_list again;
  va_copy(again, args);
  int n = std::vsnprintf(nullptr, 0, fmt, args);
  std::string out;
  if (n > 0) {
    out.resize(static_cast<std::size_t>(n));
    // The string's own terminator takes the NUL vsnprintf writes.
    std::vsnprintf(&out[0], out.size() + 1, fmt, again);
  }
  va_end(again);
  return out;
}
