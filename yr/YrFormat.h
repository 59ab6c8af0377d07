// YrFormat: the framework's name for the core's formatter, format() in
// util/Format.h; see there for what it promises.  A name, not a second
// implementation: the compiler checks the arguments as for format().
#ifndef TAMBLIN_YR_YRFORMAT_H
#define TAMBLIN_YR_YRFORMAT_H

#include "util/Format.h"

#define YrFormat format

#endif
