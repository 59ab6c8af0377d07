// tamblin-cli format SPEC [-o OUT] [-v]: reads a spec file as the program's
// Open does and writes the hierarchy as Save does.
#include <cstdio>

#include "cli/CliCommand.h"
#include "cli/CliInput.h"
#include "cli/Subcommands.h"
#include "spec/SpecGraphModel.h"

namespace {

const CliCommand::Spec kSpec = {
    "format", "SPEC [-o OUT] [-v]",
    "Reads the spec file SPEC (with its includes) and writes the product hierarchy\n"
    "as the program saves it.  Nothing is written unless SPEC was read without error.\n"
    "\n"
    "  -o OUT   write to OUT (replaced all at once) instead of standard output;\n"
    "           -o - is standard output\n"
    "  -v       report the save on standard error\n"
    "\n"
    "Exit status: 0 written; 1 SPEC holds errors, or OUT is not a regular file;\n"
    "2 usage error, or a file that cannot be read or written.\n",
    1, 1, {"-o"}};

}  // namespace

int formatCommand(int argc, char** argv) {
  CliCommand command(kSpec);
  if (std::optional<int> status = command.parse(argc, argv)) return *status;
  const std::string& spec = command.operands()[0];

  SpecGraphModel graph(&command.reporter());
  // A file that was read only in part is not written: the output would
  // silently lose what the errors skipped.
  if (std::optional<int> status = loadSpec(graph, spec)) return *status;
  return command.writeResult("spec", [&graph](std::FILE* out) { graph.writeAll(out); });
}
