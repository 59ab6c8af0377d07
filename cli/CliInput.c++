#include "cli/CliInput.h"

#include <unistd.h>

#include <cstdio>

#include "cli/CliCommand.h"
#include "idb/Idb.h"
#include "spec/SpecGraphModel.h"

namespace {

// The spec lexer prints on standard output (a token over its limit, just
// before it ends the process), and standard output holds our results: while
// a spec is read, standard output is standard error.
class StdoutToStderr {
 public:
  StdoutToStderr() {
    std::fflush(stdout);
    _saved = ::dup(STDOUT_FILENO);
    if (_saved >= 0) ::dup2(STDERR_FILENO, STDOUT_FILENO);
  }
  ~StdoutToStderr() {
    if (_saved < 0) return;
    std::fflush(stdout);
    ::dup2(_saved, STDOUT_FILENO);
    ::close(_saved);
  }
  StdoutToStderr(const StdoutToStderr&) = delete;
  StdoutToStderr& operator=(const StdoutToStderr&) = delete;

 private:
  int _saved;
};

}  // namespace

std::optional<int> loadSpec(SpecGraphModel& graph, const std::string& path) {
  return loadSpec(graph, path, [&graph, &path]() { return graph.open(path).ok(); });
}

std::optional<int> loadSpec(const SpecGraphModel& graph, const std::string& path,
                            const std::function<bool()>& open) {
  bool opened;
  {
    StdoutToStderr redirect;
    opened = open();
  }
  const SpecReadReport& report = graph.lastReadReport();
  if (opened && report.clean()) return std::nullopt;
  if (!report.entered || report.includeFailures > 0) return kCliTrouble;
  return CliCommand::inputFailure(path);
}

std::optional<int> loadIdb(Idb& db, const std::string& path) {
  Outcome status = db.open(path);
  if (status.ok()) return std::nullopt;
  std::fprintf(stderr, "%s\n", status.message().c_str());
  return CliCommand::inputFailure(path);
}
