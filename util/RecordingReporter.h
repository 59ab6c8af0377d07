// RecordingReporter: a Reporter for tests.  It keeps every call in order and
// answers questions from a queue the test fills (default: the given answer).
#ifndef TAMBLIN_UTIL_RECORDINGREPORTER_H
#define TAMBLIN_UTIL_RECORDINGREPORTER_H

#include <deque>
#include <string>
#include <vector>

#include "util/Reporter.h"

class RecordingReporter : public Reporter {
 public:
  struct Event {
    std::string kind;  // "log", "show", "error", "warning", "question", "bell"
    std::string text;
    bool operator==(const Event& o) const { return kind == o.kind && text == o.text; }
  };

  void logMessage(const std::string& line) override;
  void showMessages() override;
  void error(const std::string& text) override;
  void warning(const std::string& text) override;
  bool question(const std::string& text) override;
  void bell() override;

  /// Queue the answer to the next question.
  void answer(bool yes) { _answers.push_back(yes); }
  /// Answer given when the queue is empty.
  void setDefaultAnswer(bool yes) { _defaultAnswer = yes; }

  const std::vector<Event>& events() const { return _events; }
  /// Texts of the events of one kind, in order.
  std::vector<std::string> texts(const std::string& kind) const;
  void clear() { _events.clear(); }

 private:
  std::vector<Event> _events;
  std::deque<bool> _answers;
  bool _defaultAnswer = true;
};

#endif
