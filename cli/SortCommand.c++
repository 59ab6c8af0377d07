// tamblin-cli sort IDB [-o OUT] [-v]: opens an idb as the program's Open
// does and writes it as Save does, sorted by destination path.
#include <cstdio>
#include <string>

#include "cli/CliCommand.h"
#include "cli/Subcommands.h"
#include "idb/IdbFileSorter.h"

namespace {

const CliCommand::Spec kSpec = {
    "sort", "IDB [-o OUT] [-v]",
    "Reads the idb file IDB and writes its records sorted by destination path, as\n"
    "the program saves an idb.  Comment lines (\"#...\") and empty lines are dropped,\n"
    "as the program drops them when it reads an idb.  Nothing is written unless IDB\n"
    "was read without error.  To sort a file in place: tamblin-cli sort F -o F.\n"
    "\n"
    "  -o OUT   write to OUT (replaced all at once) instead of standard output;\n"
    "           -o - is standard output\n"
    "  -v       report the save on standard error\n"
    "\n"
    "Exit status: 0 written; 1 IDB holds a bad line, or OUT is not a regular file;\n"
    "2 usage error, or a file that cannot be read or written.\n",
    1, 1, {"-o"}};

}  // namespace

int sortCommand(int argc, char** argv) {
  CliCommand command(kSpec);
  if (std::optional<int> status = command.parse(argc, argv)) return *status;
  const std::string& in = command.operands()[0];
  IdbFileSorter sorter;
  if (Outcome status = sorter.read(in); !status.ok()) {
    std::fprintf(stderr, "%s\n", status.message().c_str());
    return CliCommand::inputFailure(in);
  }
  // A failed write leaves the stream in error, which writeResult reports.
  return command.writeResult("idb", [&sorter](std::FILE* out) { (void)sorter.write(out); });
}
