// LogJump: a double click on a "FILE:LINE: message" line of the message log
// shows what the line points at: for the idb being edited, the "Tag Files"
// tab with that record selected and scrolled into view; for the spec, the
// "Create Product Hierarchy" tab with that node selected.  Lines that name
// another file, or none, are left alone.
#ifndef TAMBLIN_APP_LOGJUMP_H
#define TAMBLIN_APP_LOGJUMP_H

#include <X11/Intrinsic.h>

#include <string>

class FileList;
class SpecGraph;
class View;

class LogJump {
 public:
  /// Watches the log text widget of view; the panels must outlive this.
  LogJump(View* view, Widget logText, FileList* fileList, SpecGraph* specGraph);
  ~LogJump();
  LogJump(const LogJump&) = delete;
  LogJump& operator=(const LogJump&) = delete;

  /// Shows what line points at; false when it points at nothing loaded.
  bool jump(const std::string& line);

 private:
  static void buttonHandler(Widget, XtPointer clientData, XEvent* event, Boolean*);
  static void destroyCallback(Widget, XtPointer clientData, XtPointer);
  void buttonPress(const XButtonEvent& event);
  bool showRecord(const std::string& file, int line);
  bool showSpecNode(const std::string& file, int line);

  View* _view;
  Widget _text;
  FileList* _fileListPanel;
  SpecGraph* _specGraph;
  Time _lastPress = 0;
};

#endif
