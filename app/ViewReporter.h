// ViewReporter: the core's Reporter inside the program.  Log lines go to
// the view's message log, dialogs to the shared error, warning and question
// dialogs (a question waits for the answer), the bell to the display.
#ifndef TAMBLIN_APP_VIEWREPORTER_H
#define TAMBLIN_APP_VIEWREPORTER_H

#include "util/Reporter.h"

class View;

class ViewReporter : public Reporter {
 public:
  explicit ViewReporter(View& view) : _view(view) {}
  void logMessage(const std::string& line) override;
  void showMessages() override;
  void error(const std::string& text) override;
  void warning(const std::string& text) override;
  bool question(const std::string& text) override;
  void bell() override;

 private:
  View& _view;
};

#endif
