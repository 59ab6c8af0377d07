// MainWindow: the program's one window: the File and View menus over the
// tabbed view.  Menu callbacks are thin: each forwards to the idb (the file
// list) or the spec (the product hierarchy) in a fixed order, and stops at
// the first refusal where the order says so.
#ifndef TAMBLIN_APP_MAINWINDOW_H
#define TAMBLIN_APP_MAINWINDOW_H

#include <memory>
#include <string>

#include "yr/YrMsgClient.h"
#include "yr/YrMsgWindow.h"

class PatchDialog;
class View;
class YrMenu;
class YrMenuItem;
class YrMenuToggle;

class MainWindow : public YrMsgWindow {
 public:
  explicit MainWindow(const char* name);
  ~MainWindow() override;
  const char* className() const override { return "MainWindow"; }

  View* view() const { return _view.get(); }
  /// A menu entry by its labels, "File/Open/Both" or "View/Show Messages";
  /// null when there is none.
  YrMenuItem* menuItem(const char* path) const;

  /// The desktop message service (never null; unconnected without a
  /// session bus or when another instance owns the name).
  YrMsgClient* msgClient() const { return _msgClient.get(); }
  /// The Create Patch dialog last made (null before the first use).
  PatchDialog* patchDialog() const { return _patchDialog.get(); }
  /// The edit-installation request: enter a directory, open a spec and an
  /// idb, set the distribution directory; replies the status.  A value
  /// longer than any path is refused; unsaved changes of what the request
  /// would replace are first offered to the user as the menus do, and kept
  /// changes refuse the request (status -1, nothing done).
  static int messageHandler(void* clientData, YrMsgClient::Reason reason,
                            YrMsgClient::Message* message, const char* messageName, int argCount,
                            const YrMsgClient::Arg* args);

  /// The help book of the program, and the topic key of a widget for
  /// context help: its names from below the window down to it, joined by ".".
  static const char* const kHelpBook;
  static std::string helpKey(Widget w);

  /// The start hint, logged when the window is set up.
  static const char* const kStartHint;

 protected:
  Widget setUpInterface(Widget parent) override;
  /// The window manager's close button: the same as File > Quit.
  void closeRequested() override;

 private:
  void buildMenus();
  void registerMessageActions();

  static void newSpecCallback(Widget, XtPointer, XtPointer);
  static void newIdbCallback(Widget, XtPointer, XtPointer);
  static void newBothCallback(Widget, XtPointer, XtPointer);
  static void openSpecCallback(Widget, XtPointer, XtPointer);
  static void openIdbCallback(Widget, XtPointer, XtPointer);
  static void openBothCallback(Widget, XtPointer, XtPointer);
  static void readSpecCallback(Widget, XtPointer, XtPointer);
  static void readIdbCallback(Widget, XtPointer, XtPointer);
  static void saveSpecCallback(Widget, XtPointer, XtPointer);
  static void saveIdbCallback(Widget, XtPointer, XtPointer);
  static void saveBothCallback(Widget, XtPointer, XtPointer);
  static void saveAsSpecCallback(Widget, XtPointer, XtPointer);
  static void saveAsIdbCallback(Widget, XtPointer, XtPointer);
  static void createPatchCallback(Widget, XtPointer, XtPointer);
  static void quitCallback(Widget, XtPointer, XtPointer);
  static void showMessagesCallback(Widget, XtPointer, XtPointer);
  static void showInternalNamesCallback(Widget, XtPointer, XtPointer);
  static void contextHelpCallback(Widget, XtPointer, XtPointer);
  static void helpIndexCallback(Widget, XtPointer, XtPointer);

  class SpecDocument* spec() const;
  class IdbDocument* idb() const;
  void quit();

  void postPatchDialog();
  void editInstallation(YrMsgClient::Message* message, const YrMsgClient::Arg* args);
  static std::string overlongArgument(const YrMsgClient::Arg* args);
  bool mayReplaceDocuments(const YrMsgClient::Arg* args);
  static void busNameCallback(void* clientData, bool owned);
  void logBusName(bool owned);

  std::unique_ptr<View> _view;
  std::unique_ptr<YrMsgClient> _msgClient;
  std::unique_ptr<class PatchDialog> _patchDialog;
  YrMenu* _fileMenu = nullptr;
  YrMenu* _openMenu = nullptr;
  YrMenu* _appendMenu = nullptr;
  YrMenu* _newMenu = nullptr;
  YrMenu* _saveMenu = nullptr;
  YrMenu* _saveAsMenu = nullptr;
  YrMenu* _viewMenu = nullptr;
  YrMenu* _helpMenu = nullptr;
  YrMenuToggle* _showMessagesToggle = nullptr;
  YrMenuToggle* _showInternalNamesToggle = nullptr;
  YrMenuItem* _createPatchItem = nullptr;
  // Stand-ins used while the view has no spec or idb panel.
  std::unique_ptr<class SpecDocument> _noSpec;
  std::unique_ptr<class IdbDocument> _noIdb;
};

#endif
