#include "yr/YrDialogManager.h"

#include <Xm/FileSB.h>
#include <Xm/MessageB.h>
#include <Xm/Protocols.h>
#include <Xm/PushB.h>

#include <cstring>
#include <deque>
#include <memory>

#include "yr/YrApp.h"

namespace {

std::deque<YrDialogManager::Responder>& responders() {
  static std::deque<YrDialogManager::Responder> queue;
  return queue;
}

unsigned long gWaitLimit = 0;

struct PendingResponse {
  YrDialogManager* dialog;
  YrDialogManager::Responder responder;
};

}  // namespace

YrDialogManager::YrDialogManager(const char* name, Kind kind) : YrComponent(name), _kind(kind) {}

void YrDialogManager::queueResponder(Responder responder) {
  responders().push_back(std::move(responder));
}

size_t YrDialogManager::pendingResponders() { return responders().size(); }

void YrDialogManager::clearResponders() { responders().clear(); }

void YrDialogManager::setWaitLimit(unsigned long milliseconds) { gWaitLimit = milliseconds; }

Widget YrDialogManager::createDialog(Widget parent) {
  char* name = const_cast<char*>(_name.c_str());
  switch (_kind) {
    case Error:
      return XmCreateErrorDialog(parent, name, nullptr, 0);
    case Warning:
      return XmCreateWarningDialog(parent, name, nullptr, 0);
    case Question: {
      Widget d = XmCreateQuestionDialog(parent, name, nullptr, 0);
      XmString yes = XmStringCreateLocalized(const_cast<char*>("Yes"));
      XmString no = XmStringCreateLocalized(const_cast<char*>("No"));
      XtVaSetValues(d, XmNokLabelString, yes, XmNcancelLabelString, no, nullptr);
      XmStringFree(yes);
      XmStringFree(no);
      return d;
    }
    case Working:
      return XmCreateWorkingDialog(parent, name, nullptr, 0);
    case Information:
    case Custom:
      break;
  }
  return XmCreateInformationDialog(parent, name, nullptr, 0);
}

Widget YrDialogManager::dialog() {
  if (_baseWidget) return _baseWidget;
  _baseWidget = createDialog(YrApp::theApp()->baseWidget());
  installDestroyHandler();
  XtAddCallback(_baseWidget, XmNokCallback, &YrDialogManager::okCallback, this);
  XtAddCallback(_baseWidget, XmNcancelCallback, &YrDialogManager::cancelCallback, this);
  XtAddCallback(_baseWidget, XmNhelpCallback, &YrDialogManager::helpCallback, this);
  // Only the error, warning and question boxes have a use for Help once a
  // help server is there; until then it would do nothing.
  if (Widget h = button(Help)) XtUnmanageChild(h);
  if (_kind == Error || _kind == Warning || _kind == Information) {
    // A Cancel here would only repeat OK.  Escape still reaches the cancel
    // callback (a message box will not take another cancel button), which
    // takes the box down as OK does.
    if (Widget c = button(Cancel)) XtUnmanageChild(c);
  }
  Widget shell = XtParent(_baseWidget);
  if (XtIsVendorShell(shell)) {
    // The shell's own title is its widget name ("errorDialog_popup").
    char* title = nullptr;
    XtVaGetValues(shell, XmNtitle, &title, nullptr);
    if (!title || std::strcmp(title, XtName(shell)) == 0)
      XtVaSetValues(shell, XmNtitle, defaultTitle(), nullptr);
    yrOnWindowClose(shell, &YrDialogManager::closeCallback, this);
    yrFocusOnMap(shell);
  }
  return _baseWidget;
}

namespace {

// When the dialog goes down the keyboard reverts to whatever window the
// pointer is in (X's own default), never to the root window, where no
// window of the program would see a key again.
void focusOnMap(Widget shell, XtPointer, XEvent* event, Boolean*) {
  if (event->type != MapNotify || !XtIsRealized(shell)) return;
  // The dialog may have been answered and taken down again before its
  // MapNotify is seen; focus on an unmapped window is a fatal BadMatch.
  XWindowAttributes attributes{};
  if (!XGetWindowAttributes(XtDisplay(shell), XtWindow(shell), &attributes) ||
      attributes.map_state != IsViewable)
    return;
  XSetInputFocus(XtDisplay(shell), XtWindow(shell), RevertToPointerRoot, CurrentTime);
}

}  // namespace

void yrFocusOnMap(Widget shell) {
  XtAddEventHandler(shell, StructureNotifyMask, False, &focusOnMap, nullptr);
}

const char* YrDialogManager::defaultTitle() const {
  switch (_kind) {
    case Error:
      return "Error";
    case Warning:
      return "Warning";
    case Question:
      return "Question";
    case Information:
      return "Information";
    case Working:
      return "Working";
    case Custom:
      break;
  }
  return _name.c_str();
}

void YrDialogManager::closed() {
  Widget c = button(Cancel);
  if (c && XtIsManaged(c))
    cancel(c, nullptr);
  else
    ok(button(Ok), nullptr);
}

void yrOnWindowClose(Widget shell, XtCallbackProc callback, XtPointer clientData) {
  XtVaSetValues(shell, XmNdeleteResponse, XmDO_NOTHING, nullptr);
  Atom deleteWindow = XmInternAtom(XtDisplay(shell), const_cast<char*>("WM_DELETE_WINDOW"), False);
  XmAddWMProtocolCallback(shell, deleteWindow, callback, clientData);
}

Widget YrDialogManager::button(Answer which) const {
  if (!_baseWidget) return nullptr;
  unsigned char child = which == Ok ? XmDIALOG_OK_BUTTON
                        : which == Cancel ? XmDIALOG_CANCEL_BUTTON
                                          : XmDIALOG_HELP_BUTTON;
  if (XmIsFileSelectionBox(_baseWidget)) return XmFileSelectionBoxGetChild(_baseWidget, child);
  if (XmIsMessageBox(_baseWidget)) return XmMessageBoxGetChild(_baseWidget, child);
  return nullptr;
}

Widget YrDialogManager::post(const char* message, void* clientData, Callback ok, Callback cancel,
                             Callback help) {
  Widget d = dialog();
  if (message) {
    _message = message;
    if (XmIsMessageBox(d)) {
      XmString text = XmStringCreateLtoR(const_cast<char*>(message),
                                         const_cast<char*>(XmFONTLIST_DEFAULT_TAG));
      XtVaSetValues(d, XmNmessageString, text, nullptr);
      XmStringFree(text);
    }
  }
  _answer = NoAnswer;
  _clientData = clientData;
  _ok = ok;
  _cancel = cancel;
  _help = help;
  XtManageChild(d);
  if (!responders().empty()) {
    auto* pending = new PendingResponse{this, std::move(responders().front())};
    responders().pop_front();
    // A timer rather than a work procedure: XtAppProcessEvent() returns
    // after a timer, so a modal wait sees the answer at once.
    XtAppAddTimeOut(YrApp::theApp()->appContext(), 0, &YrDialogManager::respondProc, pending);
  }
  return d;
}

void YrDialogManager::respondProc(XtPointer data, XtIntervalId*) {
  std::unique_ptr<PendingResponse> pending(static_cast<PendingResponse*>(data));
  if (isComponent(pending->dialog)) pending->responder(*pending->dialog);
}

void YrDialogManager::waitExpired(XtPointer data, XtIntervalId*) {
  *static_cast<bool*>(data) = true;
}

YrDialogManager::Answer YrDialogManager::postAndWait(const char* message) {
  XtVaSetValues(dialog(), XmNdialogStyle, XmDIALOG_FULL_APPLICATION_MODAL, nullptr);
  post(message);
  XtAppContext context = YrApp::theApp()->appContext();
  bool expired = false;
  XtIntervalId timer = 0;
  if (gWaitLimit) timer = XtAppAddTimeOut(context, gWaitLimit, &YrDialogManager::waitExpired, &expired);
  while (_answer == NoAnswer && isPosted() && !expired) XtAppProcessEvent(context, XtIMAll);
  if (timer && !expired) XtRemoveTimeOut(timer);
  if (_answer == NoAnswer) {
    unpost();
    _answer = Cancel;
  }
  return _answer;
}

void YrDialogManager::unpost() {
  if (_baseWidget) XtUnmanageChild(_baseWidget);
}

bool YrDialogManager::isPosted() const { return _baseWidget && XtIsManaged(_baseWidget); }

void YrDialogManager::press(Answer which) {
  Widget b = button(which);
  if (!b || !XtIsSensitive(b)) return;
  XEvent event{};
  event.xbutton.type = ButtonRelease;
  event.xbutton.display = XtDisplayOfObject(b);
  event.xbutton.window = XtWindowOfObject(b);
  XmPushButtonCallbackStruct cbs{};
  cbs.reason = XmCR_ACTIVATE;
  cbs.event = &event;
  cbs.click_count = 1;
  XtCallCallbacks(b, XmNactivateCallback, &cbs);
}

void YrDialogManager::answered(Answer a) {
  _answer = a;
  // Down before the callback, which may post this same dialog again.
  if (a != Help) unpost();
  Callback cb = a == Ok ? _ok : a == Cancel ? _cancel : _help;
  if (cb) cb(_clientData);
}

void YrDialogManager::ok(Widget, XtPointer) { answered(Ok); }
void YrDialogManager::cancel(Widget, XtPointer) { answered(Cancel); }
void YrDialogManager::help(Widget, XtPointer) { answered(Help); }

void YrDialogManager::okCallback(Widget w, XtPointer clientData, XtPointer callData) {
  static_cast<YrDialogManager*>(clientData)->ok(w, callData);
}
void YrDialogManager::cancelCallback(Widget w, XtPointer clientData, XtPointer callData) {
  static_cast<YrDialogManager*>(clientData)->cancel(w, callData);
}
void YrDialogManager::helpCallback(Widget w, XtPointer clientData, XtPointer callData) {
  static_cast<YrDialogManager*>(clientData)->help(w, callData);
}
void YrDialogManager::closeCallback(Widget, XtPointer clientData, XtPointer) {
  static_cast<YrDialogManager*>(clientData)->closed();
}

YrDialogManager* getTheErrorDialog() {
  static YrDialogManager* d = new YrDialogManager("errorDialog", YrDialogManager::Error);
  return d;
}

YrDialogManager* getTheWarningDialog() {
  static YrDialogManager* d = new YrDialogManager("warningDialog", YrDialogManager::Warning);
  return d;
}

YrDialogManager* getTheQuestionDialog() {
  static YrDialogManager* d = new YrDialogManager("questionDialog", YrDialogManager::Question);
  return d;
}
