#include "pkg/ProblemLocation.h"

#include "pkg/BuildInput.h"
#include "util/Reporter.h"

std::optional<ProblemLocation> ProblemLocation::parse(std::string_view logLine) {
  // The file name may hold colons of its own: the location is the first
  // ":DIGITS: " in the line.
  for (size_t colon = logLine.find(':'); colon != std::string_view::npos;
       colon = logLine.find(':', colon + 1)) {
    size_t end = colon + 1;
    while (end < logLine.size() && logLine[end] >= '0' && logLine[end] <= '9') end++;
    if (colon == 0 || end == colon + 1 || end >= logLine.size() || logLine[end] != ':') continue;
    if (end + 1 < logLine.size() && logLine[end + 1] != ' ') continue;
    const std::string digits(logLine.substr(colon + 1, end - colon - 1));
    if (digits.size() > 9) return std::nullopt;
    return ProblemLocation{std::string(logLine.substr(0, colon)), std::stoi(digits)};
  }
  return std::nullopt;
}

namespace {

class SilentReporter : public Reporter {
 public:
  void logMessage(const std::string&) override {}
  void showMessages() override {}
  void error(const std::string&) override {}
  void warning(const std::string&) override {}
  bool question(const std::string&) override { return false; }
  void bell() override {}
};

}  // namespace

std::optional<std::string> ProblemLocation::idbDestination(const std::string& file, int line) {
  SilentReporter reporter;
  BuildInput input(&reporter);
  // A file that fails further down still gives the records above the failure.
  (void)input.loadIdb(file);
  for (int i = 0; i < input.idb().count(); i++)
    if (input.recordLine(i) == line) return std::string(input.idb()[i]->dstpath());
  return std::nullopt;
}
