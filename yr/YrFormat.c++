#include "yr/YrFormat.h"

#include <cstdarg>
#include <cstdio>

std::string YrFormat(const char* format, ...) {
  va_list args;
  va_start(args, format);
  va_list again;
  va_copy(again, args);
  int n = std::vsnprintf(nullptr, 0, format, args);
  va_end(args);
  std::string out;
  if (n > 0) {
    out.resize(static_cast<size_t>(n) + 1);
    std::vsnprintf(&out[0], out.size(), format, again);
    out.resize(static_cast<size_t>(n));
  }
  va_end(again);
  return out;
}
