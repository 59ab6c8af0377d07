// The whole program with the example product open, for driving from outside
// (forgeset_e2e_test.sh).  Usage:
//   forgeset_driver [X options] SPEC IDB DIST OUTDIR
// SBASE names the source root, as for the program.  Once the window is up it
// prints the root coordinates of the "Build Product" tab, the "Test Build"
// and "Build All" buttons ("tab X Y", "dryrun X Y", "all X Y"), then
// "ready".  Every 100 ms it writes what a person sees into OUTDIR: log.txt
// (the message log), state.txt ("view N", "selected P..." of the file list,
// "node TAG" selected in the hierarchy) and, once, problem.txt (where the
// "FILE:LINE:" lines of the log are drawn, "X Y" each, after scrolling the
// log to the first, once the run that logged them is over).
#include <Xm/Text.h>
#include <Xm/Xm.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "filelist/IdbDocument.h"
#include "app/MainWindow.h"
#include "app/MyApp.h"
#include "spec/SpecDocument.h"
#include "app/View.h"
#include "build/Generate.h"
#include "filelist/FileListModel.h"
#include "pkg/ProblemLocation.h"
#include "spec/SpecGraph.h"
#include "spec/SpecGraphModel.h"
#include "yr/YrTabPanel.h"

namespace {

struct Driver {
  View* view;
  std::string out;
  XtAppContext context;
  bool located = false;  // the problem line is scrolled into view once only
};

void writeFile(const std::string& path, const std::string& text) {
  std::ofstream(path + ".tmp") << text;
  std::rename((path + ".tmp").c_str(), path.c_str());
}

void printCentre(const char* what, Widget w) {
  Dimension width = 0, height = 0;
  XtVaGetValues(w, XmNwidth, &width, XmNheight, &height, nullptr);
  Position x = 0, y = 0;
  XtTranslateCoords(w, static_cast<Position>(width / 2), static_cast<Position>(height / 2), &x, &y);
  std::printf("%s %d %d\n", what, x, y);
}

void report(XtPointer clientData, XtIntervalId*) {
  auto* d = static_cast<Driver*>(clientData);
  const std::string log = d->view->messages();
  writeFile(d->out + "/log.txt", log);
  std::string state = "view " + std::to_string(d->view->currentView()) + "\nselected";
  for (int p : d->view->fileList()->selectedPositions()) state += " " + std::to_string(p);
  const SpecNode* node = d->view->specGraph()->model().selected();
  state += "\nnode " + (node ? node->getTag() : std::string("-")) + "\n";
  writeFile(d->out + "/state.txt", state);
  // Once the run that reports problems is over ("Done."): scroll to the
  // first problem line and tell where every problem line now showing is
  // drawn.  Not before: each line logged later scrolls the log again and
  // would move the lines away from the places told.
  std::vector<size_t> starts;
  bool over = false;
  for (size_t start = 0; !d->located && start < log.size();) {
    size_t end = log.find('\n', start);
    if (end == std::string::npos) end = log.size();
    const std::string line = log.substr(start, end - start);
    if (ProblemLocation::parse(line)) starts.push_back(start);
    if (line == "Done.") over = true;
    start = end + 1;
  }
  if (over && !starts.empty()) {
    Widget text = d->view->messageText();
    XmTextShowPosition(text, static_cast<XmTextPosition>(starts[0]));
    std::string where;
    for (size_t start : starts) {
      Position x = 0, y = 0, rootX = 0, rootY = 0;
      if (!XmTextPosToXY(text, static_cast<XmTextPosition>(start + 3), &x, &y)) continue;
      XtTranslateCoords(text, x, static_cast<Position>(y - 3), &rootX, &rootY);
      where += std::to_string(rootX) + " " + std::to_string(rootY) + "\n";
    }
    if (!where.empty()) {
      writeFile(d->out + "/problem.txt", where);
      d->located = true;
    }
  }
  XtAppAddTimeOut(d->context, 100, report, d);
}

}  // namespace

int main(int argc, char** argv) {
  auto* app = new MyApp("Tamblin", &argc, argv, nullptr, 0, "ORVEX_TAMBLIN");
  if (argc != 5) {
    std::fprintf(stderr, "usage: forgeset_driver [X options] SPEC IDB DIST OUTDIR\n");
    return 2;
  }
  auto* window = new MainWindow("tamblin");
  window->initialize();
  window->setTitle("Tamblin");
  window->show();
  View* view = window->view();
  if (!view->specDocument()->open(argv[1]) || !view->idbDocument()->open(argv[2])) return 1;
  view->buildPanel()->setDistDir(argv[3]);
  Driver driver{view, argv[4], app->appContext(), false};

  // Tell where things are once the window is mapped and laid out.
  XtAppContext context = app->appContext();
  Widget shell = window->baseWidget();
  while (!XtIsRealized(shell) || !XtIsManaged(view->baseWidget())) XtAppProcessEvent(context, XtIMAll);
  XSync(XtDisplay(shell), False);
  while (XtAppPending(context)) XtAppProcessEvent(context, XtIMAll);
  printCentre("tab", view->tabPanel()->tab(4));
  printCentre("dryrun", XtNameToWidget(view->buildPanel()->baseWidget(), "*dryrunPushButton"));
  printCentre("all", XtNameToWidget(view->buildPanel()->baseWidget(), "*allPushButton"));
  std::printf("ready\n");
  std::fflush(stdout);
  XtAppAddTimeOut(context, 100, report, &driver);
  return app->run();
}
