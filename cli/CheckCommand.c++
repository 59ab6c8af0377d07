// tamblin-cli check IDB [--sbase DIR] [--spec SPEC] [-o OUT] [-v]: the
// checks the program makes before building, for packaging scripts.  Prints
// one line per problem and a summary.
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/CliCommand.h"
#include "cli/CliInput.h"
#include "cli/Subcommands.h"
#include "filelist/InstallCheck.h"
#include "idb/Idb.h"
#include "spec/SpecGraphModel.h"
#include "util/Utils.h"

namespace {

const CliCommand::Spec kSpec = {
    "check", "IDB [--sbase DIR] [--spec SPEC] [-o OUT] [-v]",
    "Checks the idb file IDB as the program does before a build: one line for each\n"
    "source file missing under the source root, then a summary line.  With --spec,\n"
    "also the tags no subsystem of SPEC maps and the subsystems no file lands in.\n"
    "\n"
    "  --sbase DIR  the source root (default: $SBASE, else the current directory)\n"
    "  --spec SPEC  the spec file to hold the tags against\n"
    "  -o OUT       write the report to OUT instead of standard output; -o - is\n"
    "               standard output\n"
    "  -v           report what was read on standard error\n"
    "\n"
    "Exit status: 0 nothing found; 1 problems found, IDB or SPEC holds errors, or\n"
    "OUT is not a regular file; 2 usage error, or a file or directory that cannot\n"
    "be read or written.\n",
    1, 1, {"--sbase", "--spec", "-o"}};

// The source root as the program takes it: the option, else "SBASE", else
// the current directory.
std::optional<std::string> sourceRoot(const CliCommand& command) {
  const char* sbase = std::getenv("SBASE");
  const std::optional<std::string> given = command.option("--sbase");
  const std::string root = normalize(given ? *given : sbase ? sbase : "");
  struct stat st;
  if (::stat(root.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) {
    std::fprintf(stderr, "tamblin-cli check: Source Root '%s' is not a directory.\n", root.c_str());
    return std::nullopt;
  }
  return root;
}

// The subsystems of the spec with their mappings.
std::vector<InstallCheck::Subsystem> subsystems(const SpecGraphModel& graph) {
  std::vector<InstallCheck::Subsystem> out;
  for (const SpecNode* node : graph.nodes())
    if (node->level() == 3) out.push_back({node->getTag(), node->mapping()});
  return out;
}

}  // namespace

int checkCommand(int argc, char** argv) {
  CliCommand command(kSpec);
  if (std::optional<int> status = command.parse(argc, argv)) return *status;
  const std::string& idbFile = command.operands()[0];
  std::optional<std::string> root = sourceRoot(command);
  if (!root) return kCliTrouble;
  Idb idb;
  if (std::optional<int> status = loadIdb(idb, idbFile)) return *status;
  command.note("Read idb '" + idbFile + "'.");
  InstallCheck check(idb, *root);
  if (std::optional<std::string> spec = command.option("--spec")) {
    SpecGraphModel graph(&command.reporter());
    if (std::optional<int> status = loadSpec(graph, *spec)) return *status;
    command.note("Read spec '" + *spec + "'.");
    check.setSubsystems(subsystems(graph));
  }
  const std::vector<std::string> findings = check.run();
  const int written = command.writeResult("report", [&](std::FILE* out) {
    for (const std::string& line : findings) std::fprintf(out, "%s\n", line.c_str());
    std::fprintf(out, "%s\n", check.summary().c_str());
  });
  if (written != kCliOk) return written;
  return findings.empty() ? kCliOk : kCliBad;
}
