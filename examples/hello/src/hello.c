/* hello: greets with the word from /etc/hello.conf ("Hello" without it). */
#include <stdio.h>
#include <string.h>

#include "greet.h"

int main(int argc, char** argv) {
  char word[64] = "Hello";
  FILE* conf = fopen("/etc/hello.conf", "r");
  if (conf) {
    if (fgets(word, sizeof word, conf)) word[strcspn(word, "\n")] = '\0';
    fclose(conf);
  }
  greet(word, argc > 1 ? argv[1] : "world");
  return 0;
}
