// YrProgram: a child process whose output comes back through the event
// loop.
//
// The command line is split at blanks and executed directly (no shell, so
// no quoting, globbing or redirection).  Each complete line of standard
// output or standard error is handed to the matching callback without its
// newline, however the child's writes were cut up; a last line without a
// newline is delivered at end of file.  When both streams have ended and the
// child has exited, the exit callback gets its status: the exit code, or 128
// plus the signal number when a signal ended it.
#ifndef TAMBLIN_YR_YRPROGRAM_H
#define TAMBLIN_YR_YRPROGRAM_H

#include <X11/Intrinsic.h>
#include <sys/types.h>

#include <string>
#include <vector>

#include "util/Outcome.h"

class YrProgram {
 public:
  using OutputCallback = void (*)(YrProgram* program, void* clientData, const char* line);
  using ExitCallback = void (*)(YrProgram* program, void* clientData, int status);

  explicit YrProgram(XtAppContext context);
  /// A running child is killed (SIGTERM) and reaped.
  ~YrProgram();
  YrProgram(const YrProgram&) = delete;
  YrProgram& operator=(const YrProgram&) = delete;

  void setOutputCallback(OutputCallback callback, void* clientData);
  void setErrorCallback(OutputCallback callback, void* clientData);
  void setExitCallback(ExitCallback callback, void* clientData);

  /// Starts commandLine.  Fails (for example "Couldn't start nosuch (No
  /// such file or directory)", with that error number) when nothing is
  /// running afterwards: an empty command, a program that cannot be
  /// executed, or a child already running.
  Outcome start(const std::string& commandLine);
  /// The same with the words given one by one (a word may hold blanks).
  Outcome start(std::vector<std::string> words);
  bool running() const { return _pid > 0; }
  pid_t pid() const { return _pid; }
  /// Sends a signal to the running child.
  void kill(int signal);

  /// The words start() executes for commandLine.
  static std::vector<std::string> splitCommandLine(const std::string& commandLine);

 private:
  struct Stream {
    YrProgram* owner = nullptr;
    int fd = -1;
    XtInputId input = 0;
    std::string pending;
    OutputCallback callback = nullptr;
    void* clientData = nullptr;
  };
  static void readCallback(XtPointer clientData, int* fd, XtInputId* id);
  static void reapCallback(XtPointer clientData, XtIntervalId* id);
  void readFrom(Stream& s);
  void closeStream(Stream& s);
  void tryReap();

  XtAppContext _context;
  pid_t _pid = -1;
  Stream _out;
  Stream _err;
  ExitCallback _exitCallback = nullptr;
  void* _exitClientData = nullptr;
  XtIntervalId _reapTimer = 0;
};

#endif
