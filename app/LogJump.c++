#include "app/LogJump.h"

#include <Xm/Text.h>

#include "app/View.h"
#include "filelist/FileList.h"
#include "filelist/FileListModel.h"
#include "idb/Idb.h"
#include "pkg/ProblemLocation.h"
#include "spec/SpecGraph.h"
#include "spec/SpecGraphModel.h"
#include "util/Utils.h"

LogJump::LogJump(View* view, Widget logText, FileList* fileList, SpecGraph* specGraph)
    : _view(view), _text(logText), _fileListPanel(fileList), _specGraph(specGraph) {
  XtAddEventHandler(_text, ButtonPressMask, False, buttonHandler, this);
  XtAddCallback(_text, XmNdestroyCallback, destroyCallback, this);
}

LogJump::~LogJump() {
  // The main window may have destroyed the widget tree first.
  if (!_text) return;
  XtRemoveEventHandler(_text, ButtonPressMask, False, buttonHandler, this);
  XtRemoveCallback(_text, XmNdestroyCallback, destroyCallback, this);
}

void LogJump::destroyCallback(Widget, XtPointer clientData, XtPointer) {
  static_cast<LogJump*>(clientData)->_text = nullptr;
}

void LogJump::buttonHandler(Widget, XtPointer clientData, XEvent* event, Boolean*) {
  static_cast<LogJump*>(clientData)->buttonPress(event->xbutton);
}

void LogJump::buttonPress(const XButtonEvent& event) {
  if (event.button != Button1) return;
  const Time interval = static_cast<Time>(XtGetMultiClickTime(XtDisplay(_text)));
  const bool second = _lastPress && event.time - _lastPress <= interval;
  _lastPress = second ? 0 : event.time;
  if (!second) return;
  const XmTextPosition at = XmTextXYToPos(_text, event.x, event.y);
  char* all = XmTextGetString(_text);
  const std::string text = all ? all : "";
  XtFree(all);
  if (at < 0 || static_cast<size_t>(at) > text.size()) return;
  size_t begin = text.rfind('\n', at > 0 ? static_cast<size_t>(at) - 1 : 0);
  begin = (begin == std::string::npos || (at == 0 && text[0] != '\n')) ? 0 : begin + 1;
  size_t end = text.find('\n', static_cast<size_t>(at));
  jump(text.substr(begin, end == std::string::npos ? std::string::npos : end - begin));
}

bool LogJump::jump(const std::string& line) {
  std::optional<ProblemLocation> at = ProblemLocation::parse(line);
  if (!at) return false;
  return showRecord(at->file, at->line) || showSpecNode(at->file, at->line);
}

bool LogJump::showRecord(const std::string& file, int line) {
  if (!_fileListPanel) return false;
  FileListModel& model = _fileListPanel->model();
  if (model.idbFileName().empty() || !samePath(file, model.idbFileName())) return false;
  // The build read the file on disk; the list may be sorted otherwise, so
  // the record is found by its destination.
  std::optional<std::string> dst = ProblemLocation::idbDestination(file, line);
  const int index = dst ? model.idb().findIndex(*dst) : -1;
  if (index < 0) return false;
  _view->setView(1);
  model.setSelectedPositions({index + 1});
  _fileListPanel->listView().showPosition(index + 1);
  return true;
}

bool LogJump::showSpecNode(const std::string& file, int line) {
  if (!_specGraph) return false;
  SpecGraphModel& model = _specGraph->model();
  for (SpecNode* node : model.nodes()) {
    if (node->sourceLine() != line || !samePath(node->sourceFile(), file)) continue;
    _view->setView(0);
    model.select(node);
    return true;
  }
  return false;
}
