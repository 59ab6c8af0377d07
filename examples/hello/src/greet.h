#ifndef GREET_H
#define GREET_H
/* Writes the greeting for name, as the configuration file words it. */
void greet(const char* greeting, const char* name);
#endif
