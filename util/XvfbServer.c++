#include "util/XvfbServer.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <string>

XvfbServer::XvfbServer(const std::string& xvfb, const std::string& geometry) {
  int fds[2];
  if (pipe(fds) != 0) return;
  _pid = fork();
  if (_pid == 0) {
    close(fds[0]);
    // The server must not outlive the tests, even when they exit() from an
    // Xt error handler, nor hold their output pipes open.
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    int devnull = open("/dev/null", O_RDWR);
    if (devnull >= 0) {
      dup2(devnull, 0);
      dup2(devnull, 1);
      dup2(devnull, 2);
    }
    std::string fd = std::to_string(fds[1]);
    execl(xvfb.c_str(), xvfb.c_str(), "-displayfd", fd.c_str(), "-screen", "0",
          geometry.c_str(), "-nolisten", "tcp", "-noreset", static_cast<char*>(nullptr));
    _exit(127);
  }
  close(fds[1]);
  if (_pid < 0) {
    close(fds[0]);
    return;
  }
  // Xvfb writes the display number once it accepts connections; a server
  // that dies first closes the pipe and we read nothing.
  std::string number;
  char c;
  while (read(fds[0], &c, 1) == 1 && c != '\n') number += c;
  close(fds[0]);
  if (number.empty()) {
    std::fprintf(stderr, "XvfbServer: %s did not start\n", xvfb.c_str());
    return;
  }
  _display = ":" + number;
  setenv("DISPLAY", _display.c_str(), 1);
}

XvfbServer::~XvfbServer() {
  if (_pid > 0) {
    kill(_pid, SIGTERM);
    int status;
    waitpid(_pid, &status, 0);
  }
}
