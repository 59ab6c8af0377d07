// CliReporter: the core's messages as tamblin-cli prints them: every log
// line and dialog text as it is, on standard error, so that standard output
// holds results only.  Questions are answered no: nothing is given up
// without the user's say.
#ifndef TAMBLIN_CLI_CLIREPORTER_H
#define TAMBLIN_CLI_CLIREPORTER_H

#include <string>

#include "util/Reporter.h"

class CliReporter : public Reporter {
 public:
  void logMessage(const std::string& line) override;
  void showMessages() override {}
  void error(const std::string& text) override;
  void warning(const std::string& text) override;
  bool question(const std::string& text) override;
  void bell() override {}
};

#endif
