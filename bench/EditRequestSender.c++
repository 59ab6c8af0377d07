// edit_request_send BYTES TIMES: sends the edit-installation request with
// four values of BYTES bytes each, TIMES times, to the program on the
// session bus, and prints the median time from sending to the answer (a
// reply or an error), with the answer.  A command line cannot carry values
// of more than 128 KB, hence this sender; edit_request_bench.sh runs it
// against the real program.
#include <dbus/dbus.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "util/EditService.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: edit_request_send BYTES TIMES\n");
    return 2;
  }
  size_t bytes = std::strtoul(argv[1], nullptr, 10);
  int times = std::atoi(argv[2]);
  DBusError error;
  dbus_error_init(&error);
  DBusConnection* connection = dbus_bus_get_private(DBUS_BUS_SESSION, &error);
  if (!connection) {
    std::fprintf(stderr, "no session bus: %s\n", error.message);
    return 2;
  }
  dbus_connection_set_exit_on_disconnect(connection, FALSE);
  std::string value(bytes, 'a');
  std::vector<double> ms;
  std::string answer;
  for (int i = 0; i < times; ++i) {
    DBusMessage* call = dbus_message_new_method_call(kEditServiceBusName, kEditServiceObjectPath,
                                                     kEditServiceInterface,
                                                     kEditInstallationRequest);
    const char* v = value.c_str();
    for (int k = 0; k < 4; ++k) dbus_message_append_args(call, DBUS_TYPE_STRING, &v, DBUS_TYPE_INVALID);
    auto start = std::chrono::steady_clock::now();
    DBusMessage* reply = dbus_connection_send_with_reply_and_block(connection, call, 600000, &error);
    ms.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    dbus_message_unref(call);
    if (reply) {
      dbus_int32_t status = 0;
      dbus_message_get_args(reply, nullptr, DBUS_TYPE_INT32, &status, DBUS_TYPE_INVALID);
      answer = "status " + std::to_string(status);
      dbus_message_unref(reply);
    } else {
      answer = std::string(error.name) + ": " + std::string(error.message).substr(0, 120);
      dbus_error_free(&error);
    }
  }
  std::sort(ms.begin(), ms.end());
  std::printf("4 values of %zu bytes: median %.2f ms over %d (%s)\n", bytes, ms[ms.size() / 2],
              times, answer.c_str());
  dbus_connection_close(connection);
  dbus_connection_unref(connection);
  return 0;
}
