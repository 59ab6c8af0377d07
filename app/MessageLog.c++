#include "app/MessageLog.h"

#include <Xm/Text.h>

#include "util/Format.h"
#include "util/Utils.h"

MessageLog::MessageLog(Widget text) : _text(text) {}

std::string MessageLog::shown(std::string_view message) {
  if (message.size() <= kMaxLineBytes) return std::string(message);
  size_t cut = utf8Prefix(message, kMaxLineBytes);
  return std::string(message.substr(0, cut)) +
         format("%s %zu more bytes]", kCutMark, message.size() - cut);
}

void MessageLog::append(const char* text) {
  if (!text || !*text) return;
  bool first = _lengths.empty();
  std::string line = (first ? "" : "\n") + shown(text);
  XmTextPosition end = XmTextGetLastPosition(_text);
  XmTextInsert(_text, end, const_cast<char*>(line.c_str()));
  XmTextPosition length = XmTextGetLastPosition(_text) - end;
  _lengths.push_back(length);
  if (_lengths.size() > kMaxMessages) dropOldest();
  // The first character of the new message, wherever dropping moved it.
  XmTextPosition start = XmTextGetLastPosition(_text) - length + (first ? 0 : 1);
  XmTextShowPosition(_text, start);
}

void MessageLog::dropOldest() {
  // The note about earlier drops, if any, goes with the batch and comes
  // back counting them all.
  XmTextPosition gone = 0;
  for (size_t i = 0; i < kDropBatch; ++i) {
    gone += _lengths.front();
    _lengths.pop_front();
  }
  _dropped += kDropBatch - (_dropped > 0 ? 1 : 0);
  std::string note = format("(%zu earlier messages are no longer shown.)", _dropped);
  XmTextReplace(_text, 0, gone, const_cast<char*>(note.c_str()));
  _lengths.push_front(static_cast<XmTextPosition>(note.size()));
}

std::string MessageLog::text() const {
  char* text = XmTextGetString(_text);
  std::string out = text ? text : "";
  XtFree(text);
  return out;
}
