// A window with the source-tree browser over a file list, for driving from
// outside (addfiles_e2e_test.sh).  Usage: addfiles_driver SOURCE_ROOT IDB
//
// Once the window is up it prints where to click: one line "entry NAME X Y"
// per browser entry (blanks, tabs and newlines in NAME written as \s, \t
// and \n, so that a line stays three words and a name), then "button add X
// Y" and "button save X Y" (root coordinates of the middle of each), then
// "ready".  Save writes the idb to IDB and ends the program; the message log
// goes to standard error.
#include <Xm/Form.h>
#include <Xm/List.h>
#include <Xm/PushB.h>
#include <Xm/Xm.h>

#include <cstdio>
#include <string>

#include "filelist/FileListAdd.h"
#include "filelist/FileListModel.h"
#include "util/Reporter.h"
#include "yr/YrApp.h"

namespace {

struct Driver {
  FileListModel* model;
  std::string idb;
};

void saveCallback(Widget, XtPointer clientData, XtPointer) {
  auto* d = static_cast<Driver*>(clientData);
  int status = d->model->save(d->idb.c_str()).ok() ? 0 : 1;
  YrApp::theApp()->quit(status);
}

std::string escaped(const std::string& name) {
  std::string out;
  for (char c : name) {
    if (c == ' ') out += "\\s";
    else if (c == '\t') out += "\\t";
    else if (c == '\n') out += "\\n";
    else out += c;
  }
  return out;
}

void printCentre(const char* what, const std::string& name, Widget w, Position x, Position y,
                 Dimension width, Dimension height) {
  Position rootX = 0, rootY = 0;
  XtTranslateCoords(w, static_cast<Position>(x + width / 2), static_cast<Position>(y + height / 2),
                    &rootX, &rootY);
  std::printf("%s %s %d %d\n", what, escaped(name).c_str(), rootX, rootY);
}

void printWidget(const char* name, Widget w) {
  Dimension width = 0, height = 0;
  XtVaGetValues(w, XmNwidth, &width, XmNheight, &height, nullptr);
  printCentre("button", name, w, 0, 0, width, height);
}

}  // namespace

int main(int argc, char** argv) {
  YrApp app("Tamblin", &argc, argv, nullptr, 0);
  if (argc != 3) {
    std::fprintf(stderr, "usage: addfiles_driver SOURCE_ROOT IDB\n");
    return 2;
  }
  StreamReporter reporter(stderr);
  FileListModel model(reporter);
  if (!model.setSourceRoot(argv[1])) return 1;
  Driver driver{&model, argv[2]};

  Widget shell = XtVaAppCreateShell("addFiles", "Tamblin", topLevelShellWidgetClass,
                                    app.display(), XmNtitle, "Add Files", XmNx, 0, XmNy, 0,
                                    XmNwidth, 500, XmNheight, 500, nullptr);
  Widget form = XtVaCreateManagedWidget("form", xmFormWidgetClass, shell, nullptr);
  FileListAdd panel("FileListAdd", form);
  XtVaSetValues(panel.baseWidget(), XmNtopAttachment, XmATTACH_FORM, XmNleftAttachment,
                XmATTACH_FORM, XmNrightAttachment, XmATTACH_FORM, nullptr);
  panel.show();
  Widget save = XtVaCreateManagedWidget("save", xmPushButtonWidgetClass, form, XmNtopAttachment,
                                        XmATTACH_WIDGET, XmNtopWidget, panel.baseWidget(),
                                        XmNleftAttachment, XmATTACH_FORM, nullptr);
  XtAddCallback(save, XmNactivateCallback, &saveCallback, &driver);
  model.setAddFilesPartner(&panel);
  panel.connect(model, reporter);
  panel.setBrowsingDirectory(argv[1]);
  XtRealizeWidget(shell);

  // Wait until the window is mapped and laid out before telling where
  // things are.
  XtAppContext context = app.appContext();
  XSync(app.display(), False);
  while (XtAppPending(context)) XtAppProcessEvent(context, XtIMAll);
  Widget list = XtNameToWidget(panel.baseWidget(), "*filesList");
  int count = 0;
  XtVaGetValues(list, XmNitemCount, &count, nullptr);
  for (int pos = 1; pos <= count; pos++) {
    Position x = 0, y = 0;
    Dimension width = 0, height = 0;
    if (!XmListPosToBounds(list, pos, &x, &y, &width, &height)) continue;
    printCentre("entry", panel.getEntryText(pos, nullptr), list, x, y, width, height);
  }
  printWidget("add", XtNameToWidget(panel.baseWidget(), "*arrowButton"));
  printWidget("save", save);
  std::printf("ready\n");
  std::fflush(stdout);
  int status = app.run();
  model.setAddFilesPartner(nullptr);
  return status;
}
