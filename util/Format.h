// Format: printf-style formatting into a std::string, for every message the
// program builds, core and interface alike.
//
// The result is as long as it needs to be (messages quote file names of any
// length); text inserted through "%s" is copied, never scanned for
// conversions again.  The compiler checks the arguments against the format.
#ifndef TAMBLIN_UTIL_FORMAT_H
#define TAMBLIN_UTIL_FORMAT_H

#include <cstdarg>
#include <string>

/// The text printf would print for fmt and the arguments.
std::string format(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
/// As format, with the arguments already collected; args is used up.
std::string vformat(const char* fmt, va_list args) __attribute__((format(printf, 1, 0)));

#endif
