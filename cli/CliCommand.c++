#include "cli/CliCommand.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "util/AtomicFile.h"
#include "util/Utils.h"

CliCommand::CliCommand(Spec spec) : _spec(std::move(spec)) {}

std::optional<int> CliCommand::parse(int argc, char** argv) {
  // The help wins over any mistake on the same line, so the first problem
  // is kept and reported only at the end.
  bool help = false;
  bool optionsEnded = false;
  std::string problem;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    const bool isOption = !optionsEnded && arg.size() > 1 && arg[0] == '-';
    if (!isOption) {
      _operands.push_back(arg);
    } else if (arg == "--") {
      optionsEnded = true;
    } else if (arg == "-h" || arg == "--help") {
      help = true;
    } else if (arg == "-v") {
      _verbose = true;
    } else if (std::find(_spec.valueOptions.begin(), _spec.valueOptions.end(), arg) !=
               _spec.valueOptions.end()) {
      if (i + 1 >= argc) {
        if (problem.empty()) problem = "option '" + arg + "' needs a value";
      } else if (!_options.emplace(arg, argv[++i]).second) {
        if (problem.empty()) problem = "option '" + arg + "' given twice";
      }
    } else if (problem.empty()) {
      problem = "unknown option '" + arg + "'";
    }
  }
  if (help) {
    errno = 0;
    std::printf("usage: tamblin-cli %s %s\n%s", _spec.name, _spec.arguments, _spec.help);
    if (std::fflush(stdout) == 0 && !std::ferror(stdout)) return kCliOk;
    std::fprintf(stderr, "Couldn't write help to standard output (%s).\n",
                 std::strerror(errno ? errno : EIO));
    return kCliTrouble;
  }
  if (!problem.empty()) return usageError(problem);
  const int n = static_cast<int>(_operands.size());
  if (n < _spec.minOperands) return usageError("too few arguments");
  if (n > _spec.maxOperands) return usageError("too many arguments");
  return std::nullopt;
}

int CliCommand::usageError(const std::string& why) {
  std::fprintf(stderr, "tamblin-cli %s: %s\nusage: tamblin-cli %s %s\n", _spec.name, why.c_str(),
               _spec.name, _spec.arguments);
  return kCliTrouble;
}

std::optional<std::string> CliCommand::option(const std::string& name) const {
  auto it = _options.find(name);
  if (it == _options.end()) return std::nullopt;
  return it->second;
}

void CliCommand::note(const std::string& line) const {
  if (_verbose) std::fprintf(stderr, "%s\n", line.c_str());
}

int CliCommand::inputFailure(const std::string& path) {
  struct stat st;
  if (::stat(path.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) return kCliTrouble;
  int fd = ::open(path.c_str(), O_RDONLY);
  if (fd < 0) return kCliTrouble;
  ::close(fd);
  return kCliBad;
}

int CliCommand::writeResult(const char* kind, const std::function<void(std::FILE*)>& write) {
  const std::optional<std::string> out = option("-o");
  if (!out || *out == "-") {
    errno = 0;
    write(stdout);
    int err = std::fflush(stdout) == 0 && !std::ferror(stdout) ? 0 : errno ? errno : EIO;
    if (err) {
      std::fprintf(stderr, "Couldn't write %s to standard output (%s).\n", kind,
                   std::strerror(err));
      return kCliTrouble;
    }
    note(std::string("Wrote ") + kind + " to standard output.");
    return kCliOk;
  }
  // Refused before anything is made: a save must never replace a device,
  // a pipe or a directory (-o /dev/stdout on a terminal or a pipe).
  const std::string refusal = notRegularFileMessage(*out);
  if (!refusal.empty()) {
    _reporter.warning(refusal);
    return kCliBad;
  }
  AtomicFile file(*out);
  if (Outcome opened = file.open(); !opened.ok()) {
    if (opened.code() == AtomicFile::kNotRegular) {  // became one since the check above
      _reporter.warning(notRegularFileMessage(*out));
      return kCliBad;
    }
    std::fprintf(stderr, "Couldn't open %s '%s' (%s).\n", kind, out->c_str(),
                 opened.message().c_str());
    return kCliTrouble;
  }
  write(file.stream());
  if (Outcome committed = file.commit(); !committed.ok()) {
    std::fprintf(stderr, "Couldn't write %s '%s' (%s).\n", kind, out->c_str(),
                 committed.message().c_str());
    return kCliTrouble;
  }
  note(std::string("Saved ") + kind + " '" + *out + "'.");
  return kCliOk;
}
