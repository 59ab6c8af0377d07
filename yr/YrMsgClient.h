// YrMsgClient: the program's end of the desktop message service, the D-Bus
// session bus, inside the Xt event loop.
//
// It asks for a bus name and answers method calls on one object path and
// one interface.  Each call is handed to the action registered under the
// method's name as a request: the message name, and one argument per value
// with its type ("string", "int32", ...) and, for strings, its value (an
// empty string stands for a null value).  An action replies with an int32
// status through reply(), or refuses with fail().  A request that the action
// refuses without an answer (it returns 0) gets the error
// org.freedesktop.DBus.Error.InvalidArgs; a call of a method that has no
// action goes to the default action, if any, and then gets
// org.freedesktop.DBus.Error.UnknownMethod.  Every caller gets an answer.
//
// Requests are handled only from the application's outer event loop
// (YrApp::addOuterLoopHook): one that arrives while a nested loop runs (a
// modal question waiting for its answer, perhaps asked by another request)
// waits, in order, until that loop has ended and its callback returned, so
// nothing changes under the user's answer.
//
// Without a session bus address in the environment the client stays
// unconnected: it never starts a bus of its own.  When another program owns
// the name, the client waits in the bus's queue for it and takes the name
// when it becomes free (the name callback tells).  The connection is private
// and losing it does not end the program.
#ifndef TAMBLIN_YR_YRMSGCLIENT_H
#define TAMBLIN_YR_YRMSGCLIENT_H

#include <X11/Intrinsic.h>

#include <deque>
#include <map>
#include <string>
#include <vector>

struct DBusConnection;
struct DBusMessage;

class YrMsgClient {
 public:
  /// Why an action is called.
  enum Reason { Request = 1 };

  struct Arg {
    std::string type;   // "string", "int32", ... or the type's code
    const char* value;  // a string's value (valid during the call); null
                        // for "" and for other types
  };

  class Message {
   public:
    const std::string& name() const { return _name; }
    const std::vector<Arg>& args() const { return _args; }
    /// Sends the reply: one int32.  Only the first answer counts.
    void reply(int status);
    /// Sends the error errorName ("org.freedesktop.DBus.Error.InvalidArgs")
    /// with text instead of a reply.
    void fail(const char* errorName, const std::string& text);
    bool replied() const { return _replied; }

   private:
    friend class YrMsgClient;
    DBusConnection* _connection = nullptr;
    DBusMessage* _call = nullptr;
    std::string _name;
    std::vector<Arg> _args;
    bool _replied = false;
  };

  /// Returns 1 when the request was handled (and answered), 0 when it was
  /// refused.
  using Handler = int (*)(void* clientData, Reason reason, Message* message,
                          const char* messageName, int argCount, const Arg* args);
  /// Told when the client comes to own the bus name (owned true) or loses it.
  using NameCallback = void (*)(void* clientData, bool owned);

  YrMsgClient(XtAppContext context, const char* busName, const char* objectPath,
              const char* interface);
  ~YrMsgClient();
  YrMsgClient(const YrMsgClient&) = delete;
  YrMsgClient& operator=(const YrMsgClient&) = delete;

  /// True while connected to the bus (owning the name or waiting for it).
  bool connected() const { return _connection != nullptr; }
  /// True while the bus name is owned: requests sent to it arrive here.
  bool ownsName() const { return _ownsName; }
  const std::string& busName() const { return _busName; }
  /// Why requests do not arrive here ("" when the name is owned).
  const std::string& status() const { return _status; }

  /// Calls of method name go to handler.
  void registerAction(const char* name, Handler handler, void* clientData);
  /// Calls of any other method of the interface go to handler.
  void registerDefaultAction(Handler handler, void* clientData);
  void setNameCallback(NameCallback callback, void* clientData);

  /// Requests received and not handled yet (waiting for a nested loop to
  /// end).
  size_t waitingRequests() const { return _waiting.size(); }

 private:
  struct Action {
    Handler handler;
    void* clientData;
  };

  bool connect(const char* objectPath);
  void disconnect();
  void receive(DBusMessage* call);
  void handleWaiting();
  void handle(DBusMessage* call);
  void nameChanged(bool owned);
  void dispatch();
  static void outerLoop(void* clientData);

  // libdbus's callbacks (watches, timeouts, dispatch, calls, signals).
  friend struct YrMsgClientGlue;

  XtAppContext _context;
  std::string _busName;
  std::string _interface;
  DBusConnection* _connection = nullptr;
  bool _ownsName = false;
  std::string _status;
  std::map<std::string, Action> _actions;
  Action _defaultAction{nullptr, nullptr};
  NameCallback _nameCallback = nullptr;
  void* _nameClientData = nullptr;
  XtWorkProcId _dispatchWork = 0;
  std::deque<DBusMessage*> _waiting;
  bool _handling = false;
  bool _hooked = false;
};

#endif
