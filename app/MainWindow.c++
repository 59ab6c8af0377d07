#include "app/MainWindow.h"

#include <Xm/RowColumn.h>
#include <Xm/ToggleB.h>

#include <X11/cursorfont.h>
#include <limits.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "app/PatchDialog.h"
#include "app/View.h"
#include "build/Generate.h"
#include "filelist/IdbDocument.h"
#include "help/HelpClient.h"
#include "spec/SpecDocument.h"
#include "util/EditService.h"
#include "util/Format.h"
#include "util/Utils.h"
#include "yr/YrApp.h"
#include "yr/YrDialogManager.h"
#include "yr/YrFormat.h"
#include "yr/YrMenu.h"

const char* const MainWindow::kStartHint =
    "Enter your product name and description then click <Assign>, and create initial spec/idb "
    "file pair by working from left to right through the tabs above.  Otherwise, use the "
    "File->Open->Both menu item to start with an existing spec/idb file pair.";

namespace {

// Until the product hierarchy and file list panels are in the view, their
// menu entries tell the user so instead of doing nothing.  Nothing is
// unsaved, so dropping changes is always agreed.
template <class Base>
class Missing : public Base {
 public:
  Missing(View& view, const char* message) : _view(view), _message(message) {}
  int abandonChanges() override { return 1; }
  int open(const char*) override { return missing(); }
  int showOpenBrowser() override { return missing(); }
  int showReadBrowser() override { return missing(); }
  int showSaveBrowser() override { return missing(); }
  int save(const char*) override { return missing(); }

 protected:
  int missing() {
    _view.logMessage(_message);
    _view.showMessages();
    return 0;
  }

 private:
  View& _view;
  const char* _message;
};

class MissingSpec : public Missing<SpecDocument> {
 public:
  explicit MissingSpec(View& view)
      : Missing(view,
                "Spec files cannot be opened or saved: this version has no product hierarchy panel.") {}
  std::string getProductName() override { return ""; }
  bool subsystemExists() override { return false; }
};

class MissingIdb : public Missing<IdbDocument> {
 public:
  explicit MissingIdb(View& view)
      : Missing(view, "Idb files cannot be opened or saved: this version has no file list panel.") {}
  void clear() override { missing(); }
  int recordCount() override { return 0; }
  void refresh() override {}
};

MainWindow* self(XtPointer clientData) { return static_cast<MainWindow*>(clientData); }

bool toggleSet(XtPointer callData) {
  return static_cast<XmToggleButtonCallbackStruct*>(callData)->set != 0;
}

}  // namespace

MainWindow::MainWindow(const char* name) : YrMsgWindow(name) { registerMessageActions(); }

MainWindow::~MainWindow() {
  destroyShell();
  _view.reset();
}

// ---------------------------------------------------------------------------
// Requests from other desktop tools
// ---------------------------------------------------------------------------

void MainWindow::registerMessageActions() {
  _msgClient = std::make_unique<YrMsgClient>(YrApp::theApp()->appContext(),
                                             kEditServiceBusName, kEditServiceObjectPath,
                                             kEditServiceInterface);
  _msgClient->registerAction(kEditInstallationRequest, &MainWindow::messageHandler, this);
  // Other methods of the interface get the same error box as a malformed
  // request.
  _msgClient->registerDefaultAction(&MainWindow::messageHandler, this);
  _msgClient->setNameCallback(&MainWindow::busNameCallback, this);
}

void MainWindow::busNameCallback(void* clientData, bool owned) {
  self(clientData)->logBusName(owned);
}

void MainWindow::logBusName(bool owned) {
  if (!_view) return;
  const char* name = _msgClient->busName().c_str();
  if (owned)
    _view->logMessage(
        format("This window now holds the bus name %s and answers edit requests.", name).c_str());
  else
    _view->logMessage(format("Another program holds the bus name %s: edit requests go to it. "
                             "This window takes the name over when it is free.",
                             name)
                          .c_str());
}

int MainWindow::messageHandler(void* clientData, YrMsgClient::Reason reason,
                               YrMsgClient::Message* message, const char* messageName,
                               int argCount, const YrMsgClient::Arg* args) {
  bool accepted = reason == YrMsgClient::Request && argCount == 4;
  for (int i = 0; accepted && i < 4; ++i) accepted = args[i].type == "string";
  accepted = accepted && messageName && !std::strcmp(messageName, kEditInstallationRequest);
  if (!accepted) {
    std::string text = YrFormat("Unexpected or invalid message format for %s\n",
                                messageName ? messageName : "");
    getTheErrorDialog()->post(text.c_str());
    return 0;
  }
  MainWindow* window = self(clientData);
  std::string tooLong = overlongArgument(args);
  if (!tooLong.empty()) {
    window->_view->logMessage(tooLong.c_str());
    window->_view->showMessages();
    message->fail("org.freedesktop.DBus.Error.InvalidArgs", tooLong);
    return 1;
  }
  window->editInstallation(message, args);
  return 1;
}

std::string MainWindow::overlongArgument(const YrMsgClient::Arg* args) {
  // Every value is a path: one longer than any path can be is hostile or
  // broken, and is refused before it reaches a file name, the log or a text
  // field.
  static const char* const kWhat[4] = {"working directory", "spec file name", "idb file name",
                                       "distribution directory"};
  for (int i = 0; i < 4; ++i) {
    size_t length = args[i].value ? std::strlen(args[i].value) : 0;
    if (length >= PATH_MAX)
      return format("Edit request refused: its %s is %zu bytes long; no path is longer than %d "
                    "bytes.",
                    kWhat[i], length, PATH_MAX - 1);
  }
  return "";
}

bool MainWindow::mayReplaceDocuments(const YrMsgClient::Arg* args) {
  // The same questions as the menus, and only for what the request would
  // replace.
  if (args[1].value && !spec()->abandonChanges()) return false;
  if (args[2].value && !idb()->abandonChanges()) return false;
  return true;
}

void MainWindow::editInstallation(YrMsgClient::Message* message, const YrMsgClient::Arg* args) {
  if (!mayReplaceDocuments(args)) {
    _view->logMessage("Edit request refused: the unsaved changes were kept.");
    _view->showMessages();
    message->reply(-1);
    return;
  }
  int status = 0;
  if (const char* dir = args[0].value) {
    status = chdir(dir);
    if (std::getenv("PWD")) {
      // putenv keeps the buffer: it belongs to the environment from now on.
      std::string entry = std::string("PWD=") + dir;
      putenv(strdup(entry.c_str()));
    }
    if (status == 0) _view->setBrowsingDirectory(dir);
  }
  if (const char* spec = args[1].value) {
    std::string name = trimCurrent(spec);
    if (this->spec()->open(name.c_str()))
      _view->logMessage(format("Opened spec '%s'.", name.c_str()).c_str());
    else
      status = -1;
  }
  if (const char* idb = args[2].value) {
    std::string name = trimCurrent(idb);
    if (!this->idb()->open(name.c_str())) status = -1;
  }
  if (const char* dist = args[3].value) {
    if (_view->buildPanel()) _view->buildPanel()->setDistDir(trimCurrent(dist));
  }
  message->reply(status);
}

// ---------------------------------------------------------------------------
// Building the window
// ---------------------------------------------------------------------------

Widget MainWindow::setUpInterface(Widget parent) {
  OrvexHelpInit(XtDisplay(parent), _name.c_str(), YrApp::theApp()->applicationClass());
  _view = std::make_unique<View>("view", parent);
  _noSpec = std::make_unique<MissingSpec>(*_view);
  _noIdb = std::make_unique<MissingIdb>(*_view);
  buildMenus();
  _view->show();
  _view->setShowMessagesToggle(_showMessagesToggle);
  _view->setShowInternalNamesToggle(_showInternalNamesToggle);
  _view->setCreatePatchItem(_createPatchItem);
  XFlush(XtDisplay(parent));
  _view->initialView();
  _view->logMessage(kStartHint);
  if (_msgClient->connected() && !_msgClient->ownsName()) logBusName(false);
  _view->showMessages();
  return _view->baseWidget();
}

void MainWindow::buildMenus() {
  enum Kind { Item, Toggle, Separator };
  struct Row {
    const char* pane;
    const char* submenu;  // null: directly in the pane
    const char* label;
    Kind kind;
    XtCallbackProc callback;
  };
  static const Row rows[] = {
      {"File", "New", "Spec", Item, &MainWindow::newSpecCallback},
      {"File", "New", "Idb", Item, &MainWindow::newIdbCallback},
      {"File", "New", "Both", Item, &MainWindow::newBothCallback},
      {"File", "Open", "Spec", Item, &MainWindow::openSpecCallback},
      {"File", "Open", "Idb", Item, &MainWindow::openIdbCallback},
      {"File", "Open", "Both", Item, &MainWindow::openBothCallback},
      {"File", "Append", "Spec", Item, &MainWindow::readSpecCallback},
      {"File", "Append", "Idb", Item, &MainWindow::readIdbCallback},
      {"File", nullptr, nullptr, Separator, nullptr},
      {"File", "Save", "Spec", Item, &MainWindow::saveSpecCallback},
      {"File", "Save", "Idb", Item, &MainWindow::saveIdbCallback},
      {"File", "Save", "Both", Item, &MainWindow::saveBothCallback},
      {"File", "SaveAs", "Spec", Item, &MainWindow::saveAsSpecCallback},
      {"File", "SaveAs", "Idb", Item, &MainWindow::saveAsIdbCallback},
      {"File", nullptr, nullptr, Separator, nullptr},
      {"File", nullptr, "Create Patch...", Item, &MainWindow::createPatchCallback},
      {"File", nullptr, nullptr, Separator, nullptr},
      {"File", nullptr, "Quit", Item, &MainWindow::quitCallback},
      {"View", nullptr, "Show Messages", Toggle, &MainWindow::showMessagesCallback},
      {"View", nullptr, "Show Orvex Board Names", Toggle, &MainWindow::showInternalNamesCallback},
      {"Help", nullptr, "On Context", Item, &MainWindow::contextHelpCallback},
      {"Help", nullptr, "Index", Item, &MainWindow::helpIndexCallback},
  };
  for (const Row& row : rows) {
    YrMenu*& pane = !std::strcmp(row.pane, "File")   ? _fileMenu
                    : !std::strcmp(row.pane, "View") ? _viewMenu
                                                     : _helpMenu;
    if (!pane) pane = addMenuPane(row.pane, -1);
    YrMenu* target = pane;
    if (row.submenu) {
      target = dynamic_cast<YrMenu*>(pane->find(row.submenu));
      if (!target) target = pane->addSubmenu(row.submenu, -1);
    }
    switch (row.kind) {
      case Separator:
        target->addSeparator(-1);
        break;
      case Toggle:
        target->addToggle(row.label, row.callback, this, -1);
        break;
      case Item:
        target->addItem(row.label, row.callback, this, -1);
        break;
    }
  }
  _newMenu = dynamic_cast<YrMenu*>(_fileMenu->find("New"));
  _openMenu = dynamic_cast<YrMenu*>(_fileMenu->find("Open"));
  _appendMenu = dynamic_cast<YrMenu*>(_fileMenu->find("Append"));
  _saveMenu = dynamic_cast<YrMenu*>(_fileMenu->find("Save"));
  _saveAsMenu = dynamic_cast<YrMenu*>(_fileMenu->find("SaveAs"));
  _createPatchItem = dynamic_cast<YrMenuItem*>(_fileMenu->find("Create Patch..."));
  _createPatchItem->deactivate();
  _showMessagesToggle = dynamic_cast<YrMenuToggle*>(_viewMenu->find("Show Messages"));
  _showInternalNamesToggle = dynamic_cast<YrMenuToggle*>(_viewMenu->find("Show Orvex Board Names"));
  // Where desktop users look for it: at the right end of the menu bar.
  XtVaSetValues(menuBar(), XmNmenuHelpWidget, _helpMenu->cascade(), nullptr);
}

YrMenuItem* MainWindow::menuItem(const char* path) const {
  std::string rest = path;
  YrMenu* menu = nullptr;
  for (YrMenu* pane : {_fileMenu, _viewMenu, _helpMenu}) {
    std::string prefix = std::string(pane->label()) + "/";
    if (rest.compare(0, prefix.size(), prefix) == 0) {
      menu = pane;
      rest.erase(0, prefix.size());
    }
  }
  while (menu) {
    size_t slash = rest.find('/');
    YrComponent* entry = menu->find(rest.substr(0, slash).c_str());
    if (slash == std::string::npos) return dynamic_cast<YrMenuItem*>(entry);
    menu = dynamic_cast<YrMenu*>(entry);
    rest.erase(0, slash + 1);
  }
  return nullptr;
}

SpecDocument* MainWindow::spec() const {
  return _view->specDocument() ? _view->specDocument() : _noSpec.get();
}

IdbDocument* MainWindow::idb() const {
  return _view->idbDocument() ? _view->idbDocument() : _noIdb.get();
}

// ---------------------------------------------------------------------------
// Menu callbacks
// ---------------------------------------------------------------------------

void MainWindow::newSpecCallback(Widget, XtPointer clientData, XtPointer) {
  SpecDocument* spec = self(clientData)->spec();
  if (spec->abandonChanges()) spec->open("");
}

void MainWindow::newIdbCallback(Widget, XtPointer clientData, XtPointer) {
  self(clientData)->idb()->clear();
}

void MainWindow::newBothCallback(Widget, XtPointer clientData, XtPointer) {
  SpecDocument* spec = self(clientData)->spec();
  if (spec->abandonChanges()) spec->open("");
  // Even when the spec's changes were kept: New > Both always clears the idb.
  self(clientData)->idb()->clear();
}

void MainWindow::openSpecCallback(Widget, XtPointer clientData, XtPointer) {
  self(clientData)->spec()->showOpenBrowser();
}

void MainWindow::openIdbCallback(Widget, XtPointer clientData, XtPointer) {
  self(clientData)->idb()->showOpenBrowser();
}

void MainWindow::openBothCallback(Widget, XtPointer clientData, XtPointer) {
  if (self(clientData)->spec()->showOpenBrowser()) self(clientData)->idb()->showOpenBrowser();
}

void MainWindow::readSpecCallback(Widget, XtPointer clientData, XtPointer) {
  self(clientData)->spec()->showReadBrowser();
}

void MainWindow::readIdbCallback(Widget, XtPointer clientData, XtPointer) {
  self(clientData)->idb()->showReadBrowser();
}

void MainWindow::saveSpecCallback(Widget, XtPointer clientData, XtPointer) {
  self(clientData)->spec()->save(nullptr);
}

void MainWindow::saveIdbCallback(Widget, XtPointer clientData, XtPointer) {
  self(clientData)->idb()->save(nullptr);
}

void MainWindow::saveBothCallback(Widget, XtPointer clientData, XtPointer) {
  if (self(clientData)->spec()->save(nullptr)) self(clientData)->idb()->save(nullptr);
}

void MainWindow::saveAsSpecCallback(Widget, XtPointer clientData, XtPointer) {
  self(clientData)->spec()->showSaveBrowser();
}

void MainWindow::saveAsIdbCallback(Widget, XtPointer clientData, XtPointer) {
  self(clientData)->idb()->showSaveBrowser();
}

void MainWindow::createPatchCallback(Widget, XtPointer clientData, XtPointer) {
  MainWindow* w = self(clientData);
  // The spec is asked first here, unlike Quit.
  if (w->spec()->abandonChanges() && w->idb()->abandonChanges()) w->postPatchDialog();
}

void MainWindow::postPatchDialog() {
  FileListModel* fileList = _view->fileList();
  if (!fileList) {
    _view->logMessage("Create Patch is not available in this version.");
    _view->showMessages();
    return;
  }
  // A new dialog each time: it lists the idb as it is now.
  _patchDialog.reset();
  _patchDialog = std::make_unique<PatchDialog>("patchdialog", *fileList, spec()->getProductName(),
                                               _view->reporter());
  _patchDialog->post();
}

void MainWindow::quitCallback(Widget, XtPointer clientData, XtPointer) { self(clientData)->quit(); }

void MainWindow::quit() {
  if (idb()->abandonChanges() && spec()->abandonChanges()) YrApp::theApp()->quit(0);
}

void MainWindow::closeRequested() { quit(); }

void MainWindow::showMessagesCallback(Widget, XtPointer clientData, XtPointer callData) {
  if (toggleSet(callData))
    self(clientData)->_view->showMessages();
  else
    self(clientData)->_view->hideMessages();
}

void MainWindow::showInternalNamesCallback(Widget, XtPointer clientData, XtPointer callData) {
  if (toggleSet(callData))
    self(clientData)->_view->showInternalNames();
  else
    self(clientData)->_view->hideInternalNames();
}

// ---------------------------------------------------------------------------
// Help
// ---------------------------------------------------------------------------

const char* const MainWindow::kHelpBook = "Tamblin";

std::string MainWindow::helpKey(Widget w) {
  // The widget's path below the window: the names are fixed, so help
  // authors can rely on them ("view.generateBody.Generate.buttonGrid.allPushButton").
  std::string key;
  for (; w && !XtIsShell(w); w = XtParent(w)) {
    std::string name = XtName(w);
    key = key.empty() ? name : name + "." + key;
  }
  return key;
}

void MainWindow::contextHelpCallback(Widget, XtPointer clientData, XtPointer) {
  MainWindow* window = self(clientData);
  Cursor cursor = XCreateFontCursor(XtDisplay(window->shell()), XC_question_arrow);
  Widget chosen = XmTrackingLocate(window->shell(), cursor, False);
  XFreeCursor(XtDisplay(window->shell()), cursor);
  if (chosen) OrvexHelpMsg(helpKey(chosen).c_str(), kHelpBook, "");
}

void MainWindow::helpIndexCallback(Widget, XtPointer, XtPointer) {
  OrvexHelpIndexMsg("", kHelpBook);
}
