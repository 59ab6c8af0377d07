#include "util/RecordingReporter.h"

void RecordingReporter::logMessage(const std::string& line) { _events.push_back({"log", line}); }
void RecordingReporter::showMessages() { _events.push_back({"show", ""}); }
void RecordingReporter::error(const std::string& text) { _events.push_back({"error", text}); }
void RecordingReporter::warning(const std::string& text) { _events.push_back({"warning", text}); }
void RecordingReporter::bell() { _events.push_back({"bell", ""}); }

bool RecordingReporter::question(const std::string& text) {
  _events.push_back({"question", text});
  if (_answers.empty()) return _defaultAnswer;
  bool yes = _answers.front();
  _answers.pop_front();
  return yes;
}

std::vector<std::string> RecordingReporter::texts(const std::string& kind) const {
  std::vector<std::string> out;
  for (const Event& e : _events)
    if (e.kind == kind) out.push_back(e.text);
  return out;
}
