#include "util/Reporter.h"

Reporter::~Reporter() = default;

StreamReporter::StreamReporter(std::FILE* out, bool answer) : _out(out), _answer(answer) {}

void StreamReporter::logMessage(const std::string& line) {
  std::fprintf(_out, "%s\n", line.c_str());
}

void StreamReporter::showMessages() {}

// Dialog texts often end in a newline of their own; print them as they are
// and end the line only when the text did not.
static void printBlock(std::FILE* out, const char* kind, const std::string& text) {
  std::fprintf(out, "%s: %s", kind, text.c_str());
  if (text.empty() || text.back() != '\n') std::fputc('\n', out);
}

void StreamReporter::error(const std::string& text) { printBlock(_out, "Error", text); }

void StreamReporter::warning(const std::string& text) { printBlock(_out, "Warning", text); }

bool StreamReporter::question(const std::string& text) {
  printBlock(_out, "Question", text);
  return _answer;
}

void StreamReporter::bell() {}
