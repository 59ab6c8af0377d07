// YrDialogManager: a dialog created on first use and reused, posted with a
// message and optional callbacks, or posted and waited for (modal).
//
// Every answer takes the dialog down before its callback runs: OK, Cancel,
// Return and Escape (through the box's default and cancel buttons) and a
// window manager's Close, which answers Cancel where the dialog has one and
// OK where it has not.  Motif leaves some boxes (file selection) up on
// their own, and a modal box left up would lock the whole program.
// Error, warning and information boxes offer OK alone.
//
// The program shares one error, one warning and one question dialog
// (getTheErrorDialog() and friends).  Anything that drives the interface
// without a user (tests, scripted runs) answers dialogs with
// queueResponder(): the next dialog posted runs the responder from the event
// loop once it is up, and the responder answers it with press() just as a
// click would.
#ifndef TAMBLIN_YR_YRDIALOGMANAGER_H
#define TAMBLIN_YR_YRDIALOGMANAGER_H

#include <functional>
#include <string>

#include "yr/YrComponent.h"

class YrDialogManager : public YrComponent {
 public:
  enum Answer { NoAnswer, Ok, Cancel, Help };
  enum Kind { Error, Warning, Question, Information, Working, Custom };
  using Callback = void (*)(void* clientData);
  using Responder = std::function<void(YrDialogManager&)>;

  YrDialogManager(const char* name, Kind kind = Custom);
  const char* className() const override { return "YrDialogManager"; }
  Kind kind() const { return _kind; }

  /// Shows the dialog with message (null keeps the dialog's own text); the
  /// callbacks (each may be null) run when the user answers.  Returns the
  /// dialog widget.
  virtual Widget post(const char* message = nullptr, void* clientData = nullptr,
                      Callback ok = nullptr, Callback cancel = nullptr, Callback help = nullptr);
  /// Shows the dialog modally and processes events until it is answered or
  /// taken down (Cancel).
  Answer postAndWait(const char* message = nullptr);
  void unpost();
  bool isPosted() const;
  /// The message last posted.
  const std::string& message() const { return _message; }
  /// The button the user pressed last (NoAnswer while posted).
  Answer answer() const { return _answer; }

  /// Presses one of the dialog's buttons through its own callbacks.
  void press(Answer button);

  /// The next posted dialog (of any kind) runs responder once it is up.
  static void queueResponder(Responder responder);
  static size_t pendingResponders();
  static void clearResponders();
  /// Longest a modal wait may take, in milliseconds (0, the default: no
  /// limit).  A wait that runs out counts as Cancel.
  static void setWaitLimit(unsigned long milliseconds);

 protected:
  /// Creates the dialog below parent; the default makes the message dialog
  /// of the kind.  The result becomes the base widget.
  virtual Widget createDialog(Widget parent);
  virtual void ok(Widget w, XtPointer callData);
  virtual void cancel(Widget w, XtPointer callData);
  virtual void help(Widget w, XtPointer callData);
  /// Creates the dialog if needed; returns it.
  Widget dialog();
  Widget button(Answer which) const;
  void setAnswer(Answer a) { _answer = a; }
  /// The window title used unless the resources give the dialog's shell
  /// one ("Error", "Warning", ...).
  virtual const char* defaultTitle() const;
  /// A window manager's Close.
  virtual void closed();

 private:
  static void okCallback(Widget, XtPointer, XtPointer);
  static void cancelCallback(Widget, XtPointer, XtPointer);
  static void helpCallback(Widget, XtPointer, XtPointer);
  static void closeCallback(Widget, XtPointer, XtPointer);
  static void respondProc(XtPointer, XtIntervalId*);
  static void waitExpired(XtPointer, XtIntervalId*);
  void answered(Answer a);

  Kind _kind;
  std::string _message;
  Answer _answer = NoAnswer;
  void* _clientData = nullptr;
  Callback _ok = nullptr;
  Callback _cancel = nullptr;
  Callback _help = nullptr;
};

/// The shared dialogs.
YrDialogManager* getTheErrorDialog();
YrDialogManager* getTheWarningDialog();
YrDialogManager* getTheQuestionDialog();

/// Makes a window manager's Close of shell call callback (with clientData)
/// instead of whatever the shell would do by itself.
void yrOnWindowClose(Widget shell, XtCallbackProc callback, XtPointer clientData);
/// Makes shell take the keyboard each time it is mapped.  Keys answer a
/// dialog only once it has the keyboard: a window manager hands it over on
/// mapping, but without one (or with a lax one) Return and Escape would go
/// to the window the dialog blocks.
void yrFocusOnMap(Widget shell);

#endif
