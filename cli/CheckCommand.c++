// tamblin-cli check IDB [--sbase DIR] [--spec SPEC] [-o OUT] [-v]: the
// checks the program makes before building, for packaging scripts.  Prints
// one line per problem and a summary.
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/CliCommand.h"
#include "cli/CliInput.h"
#include "cli/Subcommands.h"
#include "pkg/BuildInput.h"

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

}  // namespace

int checkCommand(int argc, char** argv) {
  CliCommand command(kSpec);
  if (std::optional<int> status = command.parse(argc, argv)) return *status;
  const std::string& idbFile = command.operands()[0];
  BuildInput input(&command.reporter());
  if (Outcome status = input.setSourceRoot(command.option("--sbase").value_or("")); !status.ok()) {
    std::fprintf(stderr, "tamblin-cli check: %s\n", status.message().c_str());
    return kCliTrouble;
  }
  if (Outcome status = input.loadIdb(idbFile); !status.ok()) {
    std::fprintf(stderr, "%s\n", status.message().c_str());
    return CliCommand::inputFailure(idbFile);
  }
  command.note("Read idb '" + idbFile + "'.");
  if (std::optional<std::string> spec = command.option("--spec")) {
    if (std::optional<int> status =
            loadSpec(input.spec(), *spec, [&]() { return input.loadSpec(*spec); }))
      return *status;
    command.note("Read spec '" + *spec + "'.");
  }
  InstallCheck check = input.installCheck();
  const std::vector<std::string> findings = check.run();
  const int written = command.writeResult("report", [&](std::FILE* out) {
    for (const std::string& line : findings) std::fprintf(out, "%s\n", line.c_str());
    std::fprintf(out, "%s\n", check.summary().c_str());
  });
  if (written != kCliOk) return written;
  return findings.empty() ? kCliOk : kCliBad;
}
