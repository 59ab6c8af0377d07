#include "yr/YrMsgClient.h"

#include <dbus/dbus.h>

#include <cstdlib>

#include "util/Format.h"
#include "yr/YrApp.h"

// Each libdbus watch gets an Xt input of its own while it is enabled, and a
// timeout an Xt timer re-armed after each expiry (Xt timers fire once).
// Dispatching runs from a work procedure, never inside libdbus's callbacks.
struct YrMsgClientGlue {
  struct WatchInput {
    YrMsgClient* client;
    DBusWatch* watch;
    XtInputId id;
  };
  struct TimeoutTimer {
    YrMsgClient* client;
    DBusTimeout* timeout;
    XtIntervalId id;
  };

  static void installWatch(YrMsgClient* client, DBusWatch* watch) {
    auto* input = static_cast<WatchInput*>(dbus_watch_get_data(watch));
    if (input->id || !dbus_watch_get_enabled(watch)) return;
    unsigned flags = dbus_watch_get_flags(watch);
    long mask = (flags & DBUS_WATCH_WRITABLE) ? XtInputWriteMask : XtInputReadMask;
    input->id = XtAppAddInput(client->_context, dbus_watch_get_unix_fd(watch),
                              reinterpret_cast<XtPointer>(mask), &watchReady, input);
  }
  static void uninstallWatch(DBusWatch* watch) {
    auto* input = static_cast<WatchInput*>(dbus_watch_get_data(watch));
    if (input && input->id) XtRemoveInput(input->id);
    if (input) input->id = 0;
  }
  static dbus_bool_t addWatch(DBusWatch* watch, void* data) {
    auto* client = static_cast<YrMsgClient*>(data);
    dbus_watch_set_data(watch, new WatchInput{client, watch, 0},
                        [](void* p) { delete static_cast<WatchInput*>(p); });
    installWatch(client, watch);
    return TRUE;
  }
  static void removeWatch(DBusWatch* watch, void*) { uninstallWatch(watch); }
  static void toggleWatch(DBusWatch* watch, void* data) {
    // A writable watch left installed while disabled makes the loop spin.
    if (dbus_watch_get_enabled(watch))
      installWatch(static_cast<YrMsgClient*>(data), watch);
    else
      uninstallWatch(watch);
  }
  static void watchReady(XtPointer clientData, int*, XtInputId*) {
    auto* input = static_cast<WatchInput*>(clientData);
    YrMsgClient* client = input->client;
    unsigned flags = dbus_watch_get_flags(input->watch) & DBUS_WATCH_WRITABLE
                         ? DBUS_WATCH_WRITABLE
                         : DBUS_WATCH_READABLE;
    dbus_watch_handle(input->watch, flags);
    client->dispatch();
  }

  static void armTimeout(TimeoutTimer* timer) {
    if (!dbus_timeout_get_enabled(timer->timeout)) return;
    timer->id = XtAppAddTimeOut(timer->client->_context,
                                static_cast<unsigned long>(dbus_timeout_get_interval(timer->timeout)),
                                &timeoutExpired, timer);
  }
  static void disarmTimeout(DBusTimeout* timeout) {
    auto* timer = static_cast<TimeoutTimer*>(dbus_timeout_get_data(timeout));
    if (timer && timer->id) XtRemoveTimeOut(timer->id);
    if (timer) timer->id = 0;
  }
  static dbus_bool_t addTimeout(DBusTimeout* timeout, void* data) {
    auto* timer = new TimeoutTimer{static_cast<YrMsgClient*>(data), timeout, 0};
    dbus_timeout_set_data(timeout, timer, [](void* p) { delete static_cast<TimeoutTimer*>(p); });
    armTimeout(timer);
    return TRUE;
  }
  static void removeTimeout(DBusTimeout* timeout, void*) { disarmTimeout(timeout); }
  static void toggleTimeout(DBusTimeout* timeout, void*) {
    disarmTimeout(timeout);
    armTimeout(static_cast<TimeoutTimer*>(dbus_timeout_get_data(timeout)));
  }
  static void timeoutExpired(XtPointer clientData, XtIntervalId*) {
    auto* timer = static_cast<TimeoutTimer*>(clientData);
    timer->id = 0;
    YrMsgClient* client = timer->client;
    DBusTimeout* timeout = timer->timeout;
    dbus_timeout_handle(timeout);
    // Handling may have removed the timeout (and freed the timer).
    if (dbus_timeout_get_data(timeout) == timer && !timer->id) armTimeout(timer);
    client->dispatch();
  }

  static void dispatchStatusChanged(DBusConnection*, DBusDispatchStatus status, void* data) {
    auto* client = static_cast<YrMsgClient*>(data);
    if (status == DBUS_DISPATCH_DATA_REMAINS && !client->_dispatchWork)
      client->_dispatchWork = XtAppAddWorkProc(client->_context, &dispatchWork, client);
  }
  static Boolean dispatchWork(XtPointer clientData) {
    auto* client = static_cast<YrMsgClient*>(clientData);
    client->_dispatchWork = 0;
    client->dispatch();
    return True;
  }
  static DBusHandlerResult messageFunction(DBusConnection*, DBusMessage* message, void* data) {
    if (dbus_message_get_type(message) != DBUS_MESSAGE_TYPE_METHOD_CALL)
      return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
    static_cast<YrMsgClient*>(data)->receive(message);
    return DBUS_HANDLER_RESULT_HANDLED;
  }
  // The bus tells a connection by itself when it gets or loses a name
  // (and only the bus may say so).
  static DBusHandlerResult busSignal(DBusConnection*, DBusMessage* message, void* data) {
    auto* client = static_cast<YrMsgClient*>(data);
    if (!dbus_message_has_sender(message, DBUS_SERVICE_DBUS)) return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
    bool acquired = dbus_message_is_signal(message, DBUS_INTERFACE_DBUS, "NameAcquired");
    bool lost = dbus_message_is_signal(message, DBUS_INTERFACE_DBUS, "NameLost");
    const char* name = nullptr;
    if ((acquired || lost) &&
        dbus_message_get_args(message, nullptr, DBUS_TYPE_STRING, &name, DBUS_TYPE_INVALID) &&
        client->_busName == name)
      client->nameChanged(acquired);
    return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
  }
  // Makes the outer loop's XtAppProcessEvent() return, so that its hooks
  // see a request that arrived through a work procedure at once.
  static void wake(XtPointer, XtIntervalId*) {}
};

namespace {

std::string typeName(int type) {
  switch (type) {
    case DBUS_TYPE_STRING: return "string";
    case DBUS_TYPE_INT32: return "int32";
    case DBUS_TYPE_UINT32: return "uint32";
    case DBUS_TYPE_INT16: return "int16";
    case DBUS_TYPE_UINT16: return "uint16";
    case DBUS_TYPE_INT64: return "int64";
    case DBUS_TYPE_UINT64: return "uint64";
    case DBUS_TYPE_BOOLEAN: return "boolean";
    case DBUS_TYPE_DOUBLE: return "double";
    case DBUS_TYPE_BYTE: return "byte";
    case DBUS_TYPE_OBJECT_PATH: return "objpath";
    case DBUS_TYPE_ARRAY: return "array";
    default: return std::string(1, static_cast<char>(type));
  }
}

std::string waitingStatus(const std::string& busName) {
  return format("%s is owned by another program; this one takes it over when it is free.",
                busName.c_str());
}

}  // namespace

void YrMsgClient::Message::reply(int status) {
  if (_replied || !_connection) return;
  _replied = true;
  if (dbus_message_get_no_reply(_call)) return;
  DBusMessage* reply = dbus_message_new_method_return(_call);
  if (!reply) return;
  dbus_int32_t value = status;
  dbus_message_append_args(reply, DBUS_TYPE_INT32, &value, DBUS_TYPE_INVALID);
  dbus_connection_send(_connection, reply, nullptr);
  dbus_message_unref(reply);
}

void YrMsgClient::Message::fail(const char* errorName, const std::string& text) {
  if (_replied || !_connection) return;
  _replied = true;
  if (dbus_message_get_no_reply(_call)) return;
  DBusMessage* error = dbus_message_new_error(_call, errorName, text.c_str());
  if (!error) return;
  dbus_connection_send(_connection, error, nullptr);
  dbus_message_unref(error);
}

YrMsgClient::YrMsgClient(XtAppContext context, const char* busName, const char* objectPath,
                         const char* interface)
    : _context(context), _busName(busName), _interface(interface) {
  if (connect(objectPath) && YrApp::theApp()) {
    YrApp::theApp()->addOuterLoopHook(&YrMsgClient::outerLoop, this);
    _hooked = true;
  }
}

YrMsgClient::~YrMsgClient() {
  if (_hooked && YrApp::theApp()) YrApp::theApp()->removeOuterLoopHook(&YrMsgClient::outerLoop, this);
  disconnect();
}

bool YrMsgClient::connect(const char* objectPath) {
  // libdbus would otherwise launch a bus that outlives the program.
  const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
  if (!address || !*address) {
    _status = "No session bus.";
    return false;
  }
  DBusError error;
  dbus_error_init(&error);
  DBusConnection* connection = dbus_bus_get_private(DBUS_BUS_SESSION, &error);
  if (!connection) {
    _status = format("Couldn't connect to the session bus (%s).", error.message);
    dbus_error_free(&error);
    return false;
  }
  dbus_connection_set_exit_on_disconnect(connection, FALSE);
  dbus_connection_add_filter(connection, &YrMsgClientGlue::busSignal, this, nullptr);
  // Queued behind the owner, if any: the bus hands the name over when the
  // owner ends or lets it go, and says so with NameAcquired.
  int owned = dbus_bus_request_name(connection, _busName.c_str(), 0, &error);
  if (owned < 0) {
    _status = format("Couldn't own %s (%s).", _busName.c_str(), error.message);
    dbus_error_free(&error);
    dbus_connection_close(connection);
    dbus_connection_unref(connection);
    return false;
  }
  static const DBusObjectPathVTable vtable = {nullptr, &YrMsgClientGlue::messageFunction,
                                              nullptr, nullptr, nullptr, nullptr};
  dbus_connection_register_object_path(connection, objectPath, &vtable, this);
  _connection = connection;
  dbus_connection_set_watch_functions(connection, &YrMsgClientGlue::addWatch,
                                      &YrMsgClientGlue::removeWatch, &YrMsgClientGlue::toggleWatch,
                                      this, nullptr);
  dbus_connection_set_timeout_functions(connection, &YrMsgClientGlue::addTimeout,
                                        &YrMsgClientGlue::removeTimeout,
                                        &YrMsgClientGlue::toggleTimeout, this, nullptr);
  dbus_connection_set_dispatch_status_function(connection, &YrMsgClientGlue::dispatchStatusChanged,
                                               this, nullptr);
  // Calls may already be queued (a request that started the program); they
  // are handled once the event loop runs, when the window is complete.
  _dispatchWork = XtAppAddWorkProc(_context, &YrMsgClientGlue::dispatchWork, this);
  _ownsName = owned == DBUS_REQUEST_NAME_REPLY_PRIMARY_OWNER ||
              owned == DBUS_REQUEST_NAME_REPLY_ALREADY_OWNER;
  _status = _ownsName ? "" : waitingStatus(_busName);
  return true;
}

void YrMsgClient::disconnect() {
  if (_dispatchWork) XtRemoveWorkProc(_dispatchWork);
  _dispatchWork = 0;
  for (DBusMessage* call : _waiting) dbus_message_unref(call);
  _waiting.clear();
  if (!_connection) return;
  // Clearing the functions removes every input and timer first.
  dbus_connection_set_watch_functions(_connection, nullptr, nullptr, nullptr, nullptr, nullptr);
  dbus_connection_set_timeout_functions(_connection, nullptr, nullptr, nullptr, nullptr, nullptr);
  dbus_connection_set_dispatch_status_function(_connection, nullptr, nullptr, nullptr);
  dbus_connection_remove_filter(_connection, &YrMsgClientGlue::busSignal, this);
  dbus_connection_close(_connection);
  dbus_connection_unref(_connection);
  _connection = nullptr;
  _ownsName = false;
}

void YrMsgClient::dispatch() {
  if (!_connection) return;
  while (dbus_connection_dispatch(_connection) == DBUS_DISPATCH_DATA_REMAINS) {
  }
}

void YrMsgClient::nameChanged(bool owned) {
  if (owned == _ownsName) return;
  _ownsName = owned;
  _status = owned ? "" : waitingStatus(_busName);
  if (_nameCallback) _nameCallback(_nameClientData, owned);
}

void YrMsgClient::registerAction(const char* name, Handler handler, void* clientData) {
  _actions[name] = Action{handler, clientData};
}

void YrMsgClient::registerDefaultAction(Handler handler, void* clientData) {
  _defaultAction = Action{handler, clientData};
}

void YrMsgClient::setNameCallback(NameCallback callback, void* clientData) {
  _nameCallback = callback;
  _nameClientData = clientData;
}

void YrMsgClient::receive(DBusMessage* call) {
  dbus_message_ref(call);
  _waiting.push_back(call);
  // Without an application there is no outer loop to wait for.
  if (!_hooked)
    handleWaiting();
  else
    XtAppAddTimeOut(_context, 0, &YrMsgClientGlue::wake, nullptr);
}

void YrMsgClient::outerLoop(void* clientData) {
  static_cast<YrMsgClient*>(clientData)->handleWaiting();
}

void YrMsgClient::handleWaiting() {
  // A request's handler may ask a question; requests arriving meanwhile
  // join the queue and are handled after it, in order.
  if (_handling) return;
  _handling = true;
  while (!_waiting.empty()) {
    DBusMessage* call = _waiting.front();
    _waiting.pop_front();
    handle(call);
    dbus_message_unref(call);
  }
  _handling = false;
}

void YrMsgClient::handle(DBusMessage* call) {
  Message message;
  message._connection = _connection;
  message._call = call;
  const char* interface = dbus_message_get_interface(call);
  const char* member = dbus_message_get_member(call);
  message._name = member ? member : "";
  if (interface && _interface != interface) {
    message.fail(DBUS_ERROR_UNKNOWN_METHOD,
                 format("No method %s in %s", message._name.c_str(), interface));
    return;
  }
  DBusMessageIter iter;
  if (dbus_message_iter_init(call, &iter)) {
    do {
      int type = dbus_message_iter_get_arg_type(&iter);
      const char* value = nullptr;
      if (type == DBUS_TYPE_STRING) {
        dbus_message_iter_get_basic(&iter, &value);
        if (value && !*value) value = nullptr;
      }
      message._args.push_back(Arg{typeName(type), value});
    } while (dbus_message_iter_next(&iter));
  }

  auto found = _actions.find(message._name);
  bool known = found != _actions.end();
  const Action& action = known ? found->second : _defaultAction;
  if (action.handler)
    action.handler(action.clientData, Request, &message, message._name.c_str(),
                   static_cast<int>(message._args.size()), message._args.data());
  // Nobody is left waiting for an answer.
  if (!message.replied())
    message.fail(known ? DBUS_ERROR_INVALID_ARGS : DBUS_ERROR_UNKNOWN_METHOD,
                 format("Unexpected or invalid message format for %s", message._name.c_str()));
}
