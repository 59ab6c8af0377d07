#include "cli/CliReporter.h"

#include <cstdio>

namespace {

// Dialog texts often end in a newline of their own.
void printBlock(const std::string& text) {
  std::fputs(text.c_str(), stderr);
  if (text.empty() || text.back() != '\n') std::fputc('\n', stderr);
}

}  // namespace

void CliReporter::logMessage(const std::string& line) { printBlock(line); }

void CliReporter::error(const std::string& text) { printBlock(text); }

void CliReporter::warning(const std::string& text) { printBlock(text); }

bool CliReporter::question(const std::string& text) {
  printBlock(text);
  return false;
}
