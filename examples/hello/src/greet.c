#include "greet.h"

#include <stdio.h>

void greet(const char* greeting, const char* name) { printf("%s, %s!\n", greeting, name); }
