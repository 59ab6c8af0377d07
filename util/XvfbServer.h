// XvfbServer: a private virtual X server for interface tests.
//
// Starts Xvfb on a display number it picks itself (-displayfd), points
// DISPLAY at it, and stops it on destruction.
#ifndef TAMBLIN_UTIL_XVFBSERVER_H
#define TAMBLIN_UTIL_XVFBSERVER_H

#include <sys/types.h>

#include <string>

class XvfbServer {
 public:
  /// xvfb is the server program; geometry as Xvfb's -screen argument.
  explicit XvfbServer(const std::string& xvfb, const std::string& geometry = "1280x1024x24");
  ~XvfbServer();
  XvfbServer(const XvfbServer&) = delete;
  XvfbServer& operator=(const XvfbServer&) = delete;

  /// ":N", or "" when the server could not be started.
  const std::string& display() const { return _display; }

 private:
  pid_t _pid = -1;
  std::string _display;
};

#endif
