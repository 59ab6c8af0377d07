#include "filelist/DirectorySearch.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "idb/StringSet.h"
#include "util/ChildProcess.h"

namespace {

// The child's end of things: the pipe as standard output, nothing open but
// standard input, output and error (the program's X and bus connections
// are none of the command's business), then the command.  Only
// async-signal-safe calls between fork and exec.
[[noreturn]] void runChild(int writeEnd, char* const* argv) {
  if (writeEnd != STDOUT_FILENO) {
    dup2(writeEnd, STDOUT_FILENO);
    close(writeEnd);
  }
  keepOnlyStandardDescriptors();
  execv(argv[0], argv);
  _exit(127);
}

class Child {
 public:
  Child(const std::vector<std::string>& args) {
    std::vector<char*> argv;
    for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    int fds[2];
    if (argv.size() < 2 || pipe2(fds, O_CLOEXEC) != 0) return;
    _pid = fork();
    if (_pid == 0) {
      close(fds[0]);
      // dup2 clears close-on-exec on the copy.
      runChild(fds[1], argv.data());
    }
    close(fds[1]);
    if (_pid < 0) {
      close(fds[0]);
      return;
    }
    _out = fdopen(fds[0], "r");
    if (!_out) close(fds[0]);
  }
  ~Child() { finish(false); }
  FILE* output() const { return _out; }
  void finish(bool stop) {
    if (_out) {
      std::fclose(_out);
      _out = nullptr;
    }
    if (_pid > 0) {
      if (stop) kill(_pid, SIGTERM);
      int status;
      while (waitpid(_pid, &status, 0) < 0 && errno == EINTR) {
      }
      _pid = -1;
    }
  }

 private:
  pid_t _pid = -1;
  FILE* _out = nullptr;
};

}  // namespace

const std::vector<std::string>& DirectorySearch::findCommand() {
  static const std::vector<std::string> command = {"/bin/find", "%s", "-follow", "-print0"};
  return command;
}

bool DirectorySearch::addByCommand(const std::vector<std::string>& command, const std::string& dir,
                                   int& count, StringSet& set, bool prefix, const Poll& poll) {
  std::vector<std::string> args = command;
  for (std::string& a : args)
    if (a == "%s") a = dir;
  Child child(args);
  FILE* out = child.output();
  if (!out) return true;
  char* line = nullptr;
  size_t capacity = 0;
  ssize_t length;
  std::string path;
  // Names end in a NUL, the one byte no file name holds: a name with a
  // newline in it stays one name.
  while ((length = getdelim(&line, &capacity, '\0', out)) > 0) {
    if (line[length - 1] == '\0') --length;
    if (length == 0) continue;
    path = std::string(line, static_cast<size_t>(length));
    if (prefix) path = dir + "/" + path;
    // Dangling links and names that vanished meanwhile are left out.
    struct stat st;
    if (stat(path.c_str(), &st) == 0 && st.st_mode != 0) set.add(path);
    ++count;
    if (count % 100 == 0 && poll && poll(count)) {
      std::free(line);
      child.finish(true);
      return false;
    }
  }
  std::free(line);
  child.finish(false);
  return true;
}

bool DirectorySearch::addDir(const std::string& dir, StringSet& set, int& count, const Poll& poll) {
  set.add(dir);
  return addByCommand(findCommand(), dir, count, set, false, poll);
}
