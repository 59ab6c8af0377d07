#include "yr/YrProgram.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

#include "util/ChildProcess.h"
#include "util/Format.h"

YrProgram::YrProgram(XtAppContext context) : _context(context) {
  _out.owner = this;
  _err.owner = this;
}

YrProgram::~YrProgram() {
  closeStream(_out);
  closeStream(_err);
  if (_reapTimer) XtRemoveTimeOut(_reapTimer);
  if (_pid > 0) {
    ::kill(_pid, SIGTERM);
    int status;
    while (waitpid(_pid, &status, 0) < 0 && errno == EINTR) {
    }
  }
}

void YrProgram::setOutputCallback(OutputCallback callback, void* clientData) {
  _out.callback = callback;
  _out.clientData = clientData;
}

void YrProgram::setErrorCallback(OutputCallback callback, void* clientData) {
  _err.callback = callback;
  _err.clientData = clientData;
}

void YrProgram::setExitCallback(ExitCallback callback, void* clientData) {
  _exitCallback = callback;
  _exitClientData = clientData;
}

std::vector<std::string> YrProgram::splitCommandLine(const std::string& commandLine) {
  std::vector<std::string> words;
  std::string word;
  for (char c : commandLine) {
    if (c == ' ' || c == '\t' || c == '\n') {
      if (!word.empty()) words.push_back(word);
      word.clear();
    } else {
      word += c;
    }
  }
  if (!word.empty()) words.push_back(word);
  return words;
}

Outcome YrProgram::start(const std::string& commandLine) {
  return start(splitCommandLine(commandLine));
}

Outcome YrProgram::start(std::vector<std::string> words) {
  auto cannotStart = [&words](int err) {
    return Outcome::error(format("Couldn't start %s (%s)", words[0].c_str(), strerror(err)), err);
  };
  if (_pid > 0) return Outcome::error("A program is already running.");
  if (words.empty()) return Outcome::error("No program to start.");
  std::vector<char*> argv;
  for (std::string& w : words) argv.push_back(&w[0]);
  argv.push_back(nullptr);

  // Our ends never reach another child (a second build running beside this
  // one would otherwise hold this one's output open).
  int out[2] = {-1, -1}, err[2] = {-1, -1}, status[2] = {-1, -1};
  if (pipe2(out, O_CLOEXEC) < 0 || pipe2(err, O_CLOEXEC) < 0 || pipe2(status, O_CLOEXEC) < 0) {
    int e = errno;
    for (int fd : {out[0], out[1], err[0], err[1]})
      if (fd >= 0) close(fd);
    return cannotStart(e);
  }
  pid_t pid = fork();
  if (pid == 0) {
    // dup2 leaves the copies open across exec; everything else goes.
    dup2(out[1], 1);
    dup2(err[1], 2);
    keepOnlyStandardDescriptors();
    execvp(argv[0], argv.data());
    // Tell the parent why; the pipe closes on a successful exec instead.
    int e = errno;
    ssize_t ignored = write(status[1], &e, sizeof e);
    (void)ignored;
    _exit(127);
  }
  int forkErrno = errno;
  close(out[1]);
  close(err[1]);
  close(status[1]);
  if (pid < 0) {
    close(out[0]);
    close(err[0]);
    close(status[0]);
    return cannotStart(forkErrno);
  }
  int execErrno = 0;
  ssize_t got;
  while ((got = read(status[0], &execErrno, sizeof execErrno)) < 0 && errno == EINTR) {
  }
  close(status[0]);
  if (got == static_cast<ssize_t>(sizeof execErrno)) {
    close(out[0]);
    close(err[0]);
    int ignored;
    waitpid(pid, &ignored, 0);
    return cannotStart(execErrno);
  }
  _pid = pid;
  for (Stream* s : {&_out, &_err}) {
    s->fd = s == &_out ? out[0] : err[0];
    s->pending.clear();
    fcntl(s->fd, F_SETFL, fcntl(s->fd, F_GETFL) | O_NONBLOCK);
    s->input = XtAppAddInput(_context, s->fd, reinterpret_cast<XtPointer>(XtInputReadMask),
                             &YrProgram::readCallback, s);
  }
  return Outcome::success();
}

void YrProgram::kill(int signal) {
  if (_pid > 0) ::kill(_pid, signal);
}

void YrProgram::readCallback(XtPointer clientData, int*, XtInputId*) {
  Stream* s = static_cast<Stream*>(clientData);
  s->owner->readFrom(*s);
}

void YrProgram::readFrom(Stream& s) {
  char buffer[8192];
  ssize_t n = read(s.fd, buffer, sizeof buffer);
  if (n < 0 && (errno == EAGAIN || errno == EINTR)) return;
  if (n > 0) {
    s.pending.append(buffer, static_cast<size_t>(n));
    size_t start = 0, newline;
    // A callback may delete nothing here, but it may start reading others'
    // output; take each line out before handing it on.
    while ((newline = s.pending.find('\n', start)) != std::string::npos) {
      std::string line = s.pending.substr(start, newline - start);
      start = newline + 1;
      if (s.callback) s.callback(this, s.clientData, line.c_str());
    }
    s.pending.erase(0, start);
    return;
  }
  // End of file (or a read error, which ends the stream the same way).
  if (!s.pending.empty()) {
    std::string line;
    line.swap(s.pending);
    if (s.callback) s.callback(this, s.clientData, line.c_str());
  }
  closeStream(s);
  if (_out.fd < 0 && _err.fd < 0) tryReap();
}

void YrProgram::closeStream(Stream& s) {
  if (s.input) XtRemoveInput(s.input);
  s.input = 0;
  if (s.fd >= 0) close(s.fd);
  s.fd = -1;
}

void YrProgram::reapCallback(XtPointer clientData, XtIntervalId*) {
  auto* self = static_cast<YrProgram*>(clientData);
  self->_reapTimer = 0;
  self->tryReap();
}

void YrProgram::tryReap() {
  if (_pid <= 0) return;
  int status = 0;
  pid_t r;
  while ((r = waitpid(_pid, &status, WNOHANG)) < 0 && errno == EINTR) {
  }
  if (r == 0) {
    // Output closed but the child lives on (it may have closed its streams
    // itself): look again shortly, without blocking the loop.
    _reapTimer = XtAppAddTimeOut(_context, 20, &YrProgram::reapCallback, this);
    return;
  }
  _pid = -1;
  int code = r < 0 ? -1 : WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  if (_exitCallback) _exitCallback(this, _exitClientData, code);
}
