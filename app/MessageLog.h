// MessageLog: the message log under the tabs, one message per line,
// appended at the end and scrolled into view.
//
// An append costs the same whatever the log holds and whatever it is given:
// - a message longer than kMaxLineBytes is shown cut, on a character
//   boundary, followed by kCutMark and the number of bytes not shown (Motif's
//   text widget takes time that grows with the square of a wrapped line's
//   length, and X cannot draw a run of glyphs that long);
// - the log keeps the last kMaxMessages messages: when it holds more, the
//   oldest kDropBatch ones are replaced by one line saying how many earlier
//   messages are no longer shown (the widget's own cost grows with the text
//   it holds).
#ifndef TAMBLIN_APP_MESSAGELOG_H
#define TAMBLIN_APP_MESSAGELOG_H

#include <Xm/Xm.h>

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>

class MessageLog {
 public:
  static constexpr size_t kMaxLineBytes = 1000;
  static constexpr size_t kMaxMessages = 5000;
  static constexpr size_t kDropBatch = 500;
  static constexpr const char* kCutMark = " ... [cut:";

  /// Writes into text, a multi-line XmText that only the log changes.
  explicit MessageLog(Widget text);

  /// Appends text as a line (an empty text is ignored).
  void append(const char* text);
  /// The whole log as shown, lines separated by "\n".
  std::string text() const;
  /// Messages held, the note about dropped ones included.
  size_t lines() const { return _lengths.size(); }
  /// Messages dropped from the start so far.
  size_t dropped() const { return _dropped; }

  /// What the log shows for a message: itself, or its start and the mark.
  static std::string shown(std::string_view message);

 private:
  void dropOldest();

  Widget _text;
  // Characters (not bytes) each message takes in the widget, its leading
  // newline included.
  std::deque<XmTextPosition> _lengths;
  size_t _dropped = 0;
};

#endif
