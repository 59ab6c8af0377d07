// tamblin-cli edit DIR SPEC IDB DIST [-v]: asks the running program
// (started by the session bus when none runs) to enter DIR, open SPEC and
// IDB and use DIST as its distribution directory.  An empty argument leaves
// that part as it is.  Prints the status the program replies (0, or -1 when
// something failed); exit 0 for status 0, 1 for another status or when the
// program refused the request (its reason on standard error), 2 when the
// request could not be delivered.
#include <dbus/dbus.h>

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "cli/CliCommand.h"
#include "cli/Subcommands.h"
#include "util/EditService.h"
#include "util/Utils.h"

namespace {

const CliCommand::Spec kSpec = {
    "edit", "DIR SPEC IDB DIST [-v]",
    "Asks the running Tamblin (started through the session bus when none runs) to\n"
    "enter the directory DIR, open the spec file SPEC and the idb file IDB, and use\n"
    "DIST as its distribution directory.  An empty argument (\"\") leaves that part\n"
    "as it is.  Prints the status the program replies: 0, or -1 when the directory\n"
    "could not be entered or a file could not be opened (the program shows why).\n"
    "\n"
    "  -v   report the request on standard error\n"
    "\n"
    "Exit status: 0 the program replied 0; 1 it replied another status or refused\n"
    "the request (its reason on standard error); 2 usage error, or the request\n"
    "could not be delivered (no session bus, no reply).\n",
    4, 4, {}};

// The program may first have to be started by the bus.
const int kReplyTimeoutMs = 120000;

int fail(const char* what, DBusError* error) {
  std::fprintf(stderr, "tamblin-cli edit: %s%s%s\n", what, error && error->message ? ": " : "",
               error && error->message ? error->message : "");
  if (error) dbus_error_free(error);
  return kCliTrouble;
}

}  // namespace

int editCommand(int argc, char** argv) {
  CliCommand command(kSpec);
  if (std::optional<int> status = command.parse(argc, argv)) return *status;
  const std::vector<std::string>& args = command.operands();
  // libdbus would launch a private bus of its own without an address.
  const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
  if (!address || !*address)
    return fail("no session bus (DBUS_SESSION_BUS_ADDRESS is not set)", nullptr);

  // The program does not share our working directory: a relative DIR is
  // taken from ours.
  std::string dir = args[0];
  if (!dir.empty()) dir = normalize(dir);
  const char* values[4] = {dir.c_str(), args[1].c_str(), args[2].c_str(), args[3].c_str()};
  command.note("Asking " + std::string(kEditServiceBusName) + " to edit '" + dir + "'.");

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
    if (refused) result = kCliBad;
  } else if (!dbus_message_get_args(reply, &error, DBUS_TYPE_INT32, &status, DBUS_TYPE_INVALID)) {
    result = fail("unexpected reply", &error);
  } else {
    std::printf("%d\n", static_cast<int>(status));
    result = status == 0 ? kCliOk : kCliBad;
    if (std::fflush(stdout) != 0 || std::ferror(stdout))
      result = fail("cannot write standard output", nullptr);
  }
  if (reply) dbus_message_unref(reply);
  dbus_connection_close(connection);
  dbus_connection_unref(connection);
  return result;
}
