// Reporter: how the core tells the user something.
//
// The core never shows anything itself.  Every message that the program
// puts in its message log or in one of the shared dialogs goes through a
// Reporter, so that the interface can show it, the command-line companion
// can print it and tests can record it (and answer questions).
#ifndef TAMBLIN_UTIL_REPORTER_H
#define TAMBLIN_UTIL_REPORTER_H

#include <cstdio>
#include <string>

class Reporter {
 public:
  virtual ~Reporter();

  /// One line appended to the message log.
  virtual void logMessage(const std::string& line) = 0;
  /// Makes the message log visible (after a failure the user should read).
  virtual void showMessages() = 0;
  /// The shared error dialog, posted with text.
  virtual void error(const std::string& text) = 0;
  /// The shared warning dialog, posted with text.
  virtual void warning(const std::string& text) = 0;
  /// The shared question dialog; waits for the answer.  True means the
  /// affirmative answer (consent).
  virtual bool question(const std::string& text) = 0;
  /// The keyboard bell, for input the program refuses without a message.
  virtual void bell() = 0;
};

/// Writes log lines to a stream-like sink given at construction time; dialogs
/// become lines prefixed by their kind and questions are answered with a fixed
/// answer.  Used by the command-line companion.
class StreamReporter : public Reporter {
 public:
  explicit StreamReporter(std::FILE* out, bool answer = false);
  void logMessage(const std::string& line) override;
  void showMessages() override;
  void error(const std::string& text) override;
  void warning(const std::string& text) override;
  bool question(const std::string& text) override;
  void bell() override;

 private:
  std::FILE* _out;
  bool _answer;
};

#endif
