#include "app/ViewReporter.h"

#include "app/View.h"
#include "yr/YrDialogManager.h"

void ViewReporter::logMessage(const std::string& line) { _view.logMessage(line.c_str()); }

void ViewReporter::showMessages() { _view.showMessages(); }

void ViewReporter::error(const std::string& text) { getTheErrorDialog()->post(text.c_str()); }

void ViewReporter::warning(const std::string& text) { getTheWarningDialog()->post(text.c_str()); }

bool ViewReporter::question(const std::string& text) {
  return getTheQuestionDialog()->postAndWait(text.c_str()) == YrDialogManager::Ok;
}

void ViewReporter::bell() {
  if (Widget w = _view.baseWidget()) XBell(XtDisplay(w), 0);
}
