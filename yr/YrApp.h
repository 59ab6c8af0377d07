// YrApp: the one Xt application of the program.
//
// Owns the application context, the display connection and an application
// shell (realized but never mapped: windows and dialogs hang below it).
// There is one YrApp per process; theApp() finds it.  Long operations
// bracket themselves with busy()/notBusy(): the first busy() posts a small
// dialog with its message and shows the busy cursor in every window until
// the matching notBusy().  run() processes events until quit().
#ifndef TAMBLIN_YR_YRAPP_H
#define TAMBLIN_YR_YRAPP_H

#include <X11/Intrinsic.h>

#include <string>
#include <utility>
#include <vector>

class YrApp {
 public:
  /// Makes Xt set the process's locale from the user's environment when a
  /// display is opened (the first constructor does it itself).
  static void setLanguageProc();

  /// Opens the display named by the command line or DISPLAY.  options are
  /// the application's own command-line options (parsed and removed from
  /// argv by Xt); fallback holds resource lines used when the user's
  /// resources say nothing (null terminated, may be null).  When the display
  /// cannot be opened, prints a message and exits with status 1.
  YrApp(const char* appClassName, int* argc, char** argv, XrmOptionDescRec* options,
        Cardinal numOptions, const char* const* fallback = nullptr);
  /// Adopts a display that is already open (the interface tests share one
  /// connection); fallback lines are merged below the user's resources.
  YrApp(const char* appClassName, XtAppContext context, Display* display,
        const char* const* fallback = nullptr);
  virtual ~YrApp();
  YrApp(const YrApp&) = delete;
  YrApp& operator=(const YrApp&) = delete;

  /// The application object, or null before one is made.
  static YrApp* theApp();

  XtAppContext appContext() const { return _context; }
  Display* display() const { return _display; }
  /// The hidden application shell; parent of every window of the program.
  Widget baseWidget() const { return _shell; }
  const char* applicationClass() const { return _class.c_str(); }

  void setVersionString(const char* version) { _version = version ? version : ""; }
  const char* versionString() const { return _version.c_str(); }

  /// Enters the busy state (nested calls count).  The message is shown in
  /// the busy dialog, over parent when one is given.
  virtual void busy(const char* message = nullptr, Widget parent = nullptr);
  /// Leaves one level of the busy state; the last one takes the dialog down.
  virtual void notBusy();
  bool isBusy() const { return _busyDepth > 0; }
  /// The text the busy dialog shows ("" when not busy).
  const std::string& busyMessage() const { return _busyMessage; }

  /// Processes events until quit(); returns the status given to quit().
  /// Each turn is processEvent().
  virtual int run();
  /// Waits for one event, handles it, then runs the outer-loop hooks.
  /// Loops that stand for the program's main loop (tests) call this;
  /// nested loops inside callbacks (a modal question waiting for its
  /// answer) must not.
  void processEvent();
  /// hook(clientData) runs each time control is back in the outer loop, out
  /// of every callback and every nested loop: work that must not happen
  /// under a pending question (requests from other programs) waits for it.
  using OuterLoopHook = void (*)(void* clientData);
  void addOuterLoopHook(OuterLoopHook hook, void* clientData);
  void removeOuterLoopHook(OuterLoopHook hook, void* clientData);
  /// Ends run() after the callback in progress returns.
  virtual void quit(int status = 0);
  bool quitRequested() const { return _quit; }

  /// Adds a shell whose window shows the busy cursor while busy.
  void registerShell(Widget shell);
  void unregisterShell(Widget shell);

 protected:
  /// Parses argv against options into the display's resource database
  /// (options given there win over files and fallbacks) and removes what it
  /// recognised, updating *argc.
  void parseCommandLine(XrmOptionDescRec* options, Cardinal numOptions, int* argc, char** argv);
  /// Fetches resources of the application (name and class of the shell)
  /// into base.
  void getResources(XtResource* resources, Cardinal numResources, void* base);

 private:
  void createShell(const char* const* fallback);
  void setBusyCursor(bool on);
  static void busyDialogClosed(Widget, XtPointer, XtPointer);

  std::string _class;
  std::string _version;
  XtAppContext _context = nullptr;
  Display* _display = nullptr;
  Widget _shell = nullptr;
  bool _ownsDisplay = false;
  bool _quit = false;
  int _status = 0;
  int _busyDepth = 0;
  std::string _busyMessage;
  Widget _busyDialog = nullptr;
  Cursor _busyCursor = 0;
  std::vector<Widget> _shells;
  std::vector<std::pair<OuterLoopHook, void*>> _outerLoopHooks;
};

#endif
