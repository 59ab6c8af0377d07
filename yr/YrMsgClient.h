// YrMsgClient: the program's end of the desktop message service, the D-Bus
// session bus, inside the Xt event loop.
//
// It owns a bus name and answers method calls on one object path and one
// interface.  Each call is handed to the action registered under the
// method's name as a request: the message name, and one argument per value
// with its type ("string", "int32", ...) and, for strings, its value (an
// empty string stands for a null value).  An action replies with an int32
// status through reply(); a request that the action refuses (it returns 0
// without replying) gets the error org.freedesktop.DBus.Error.InvalidArgs.
//
// Without a session bus address in the environment the client stays
// unconnected: it never starts a bus of its own.  When another program
// already owns the name, the client gives up the connection too, and the
// program runs without the service.  The connection is private and losing
// it does not end the program.
#ifndef TAMBLIN_YR_YRMSGCLIENT_H
#define TAMBLIN_YR_YRMSGCLIENT_H

#include <X11/Intrinsic.h>

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
    const char* value;  // a string's value; null for "" and for other types
  };

  class Message {
   public:
    const std::string& name() const { return _name; }
    const std::vector<Arg>& args() const { return _args; }
    /// Sends the reply: one int32.  Only the first reply counts.
    void reply(int status);
    bool replied() const { return _replied; }

   private:
    friend class YrMsgClient;
    DBusConnection* _connection = nullptr;
    DBusMessage* _call = nullptr;
    std::string _name;
    std::vector<std::string> _values;
    std::vector<Arg> _args;
    bool _replied = false;
  };

  /// Returns 1 when the request was handled (and replied to), 0 when it was
  /// refused.
  using Handler = int (*)(void* clientData, Reason reason, Message* message,
                          const char* messageName, int argCount, const Arg* args);

  YrMsgClient(XtAppContext context, const char* busName, const char* objectPath,
              const char* interface);
  ~YrMsgClient();
  YrMsgClient(const YrMsgClient&) = delete;
  YrMsgClient& operator=(const YrMsgClient&) = delete;

  /// True while the bus name is owned and calls can arrive.
  bool connected() const { return _connection != nullptr; }
  /// Why the client is not connected ("" when it is).
  const std::string& status() const { return _status; }

  /// Calls of method name go to handler.
  void registerAction(const char* name, Handler handler, void* clientData);

 private:
  struct Action {
    Handler handler;
    void* clientData;
  };

  bool connect(const char* busName, const char* objectPath);
  void disconnect();
  void handleCall(DBusMessage* call);
  void dispatch();

  // libdbus's callbacks (watches, timeouts, dispatch, calls).
  friend struct YrMsgClientGlue;

  XtAppContext _context;
  std::string _interface;
  DBusConnection* _connection = nullptr;
  std::string _status;
  std::map<std::string, Action> _actions;
  XtWorkProcId _dispatchWork = 0;
};

#endif
