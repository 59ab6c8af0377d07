// tamblin-cli edit DIR SPEC IDB DIST: asks the running program (started by
// the session bus when none runs) to enter DIR, open SPEC and IDB and use
// DIST as its distribution directory.  An empty argument leaves that part
// as it is.  Prints the status the program replies (0, or -1 when something
// failed); exit 0 for status 0, 1 for another status or when the program
// refused the request (its reason on standard error), 2 when the request
// could not be delivered.
#include <dbus/dbus.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "cli/Subcommands.h"
#include "util/EditService.h"
#include "util/Utils.h"

namespace {

const char kUsage[] = "usage: tamblin-cli edit DIR SPEC IDB DIST\n";
// The program may first have to be started by the bus.
const int kReplyTimeoutMs = 120000;

int fail(const char* what, DBusError* error) {
  std::fprintf(stderr, "tamblin-cli edit: %s%s%s\n", what, error && error->message ? ": " : "",
               error && error->message ? error->message : "");
  if (error) dbus_error_free(error);
  return 2;
}

}  // namespace

int editCommand(int argc, char** argv) {
  if (argc != 5) {
    std::fputs(kUsage, stderr);
    return 2;
  }
  // libdbus would launch a private bus of its own without an address.
  const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
  if (!address || !*address) return fail("no session bus (DBUS_SESSION_BUS_ADDRESS is not set)", nullptr);

  // The program does not share our working directory: a relative DIR is
  // taken from ours.
  std::string dir = argv[1];
  if (!dir.empty()) dir = normalize(dir);
  const char* values[4] = {dir.c_str(), argv[2], argv[3], argv[4]};

  DBusError error;
  dbus_error_init(&error);
  DBusConnection* connection = dbus_bus_get_private(DBUS_BUS_SESSION, &error);
  if (!connection) return fail("cannot connect to the session bus", &error);
  dbus_connection_set_exit_on_disconnect(connection, FALSE);
  DBusMessage* call = dbus_message_new_method_call(kEditServiceBusName, kEditServiceObjectPath,
                                                   kEditServiceInterface, kEditInstallationRequest);
  for (const char* value : values)
    dbus_message_append_args(call, DBUS_TYPE_STRING, &value, DBUS_TYPE_INVALID);
  DBusMessage* reply =
      dbus_connection_send_with_reply_and_block(connection, call, kReplyTimeoutMs, &error);
  dbus_message_unref(call);
  int result;
  dbus_int32_t status = 0;
  if (!reply) {
    // An error from the program itself says why it refused; the bus's own
    // errors mean that nobody answered.
    bool refused = dbus_error_has_name(&error, DBUS_ERROR_INVALID_ARGS);
    result = fail(refused ? "request refused" : "no reply", &error);
    if (refused) result = 1;
  } else if (!dbus_message_get_args(reply, &error, DBUS_TYPE_INT32, &status, DBUS_TYPE_INVALID)) {
    result = fail("unexpected reply", &error);
  } else {
    std::printf("%d\n", static_cast<int>(status));
    result = status == 0 ? 0 : 1;
  }
  if (reply) dbus_message_unref(reply);
  dbus_connection_close(connection);
  dbus_connection_unref(connection);
  return result;
}
