// YrFormat: printf-style formatting into a string of whatever length the
// result needs (messages quote file names of any length).
#ifndef TAMBLIN_YR_YRFORMAT_H
#define TAMBLIN_YR_YRFORMAT_H

#include <string>

std::string YrFormat(const char* format, ...) __attribute__((format(printf, 1, 2)));

#endif
