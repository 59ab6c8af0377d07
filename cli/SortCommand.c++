// tamblin-cli sort IDB [-o OUT] [-v]: opens an idb as the program's Open
// does and writes it as Save does, sorted by destination path.
#include <cstdio>
#include <string>

#include "cli/CliCommand.h"
#include "cli/CliInput.h"
#include "cli/Subcommands.h"
#include "idb/Idb.h"

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

// The records in save order, one line each.
void writeSorted(Idb& db, std::FILE* out) {
  db.sort();
  std::string text, line;
  for (int i = 0; i < db.count(); ++i) {
    db.write(line, static_cast<unsigned>(i));
    text += line;
    text += '\n';
    if (text.size() >= (1u << 16)) {
      std::fwrite(text.data(), 1, text.size(), out);
      text.clear();
    }
  }
  std::fwrite(text.data(), 1, text.size(), out);
}

}  // namespace

int sortCommand(int argc, char** argv) {
  CliCommand command(kSpec);
  if (std::optional<int> status = command.parse(argc, argv)) return *status;
  Idb db;
  if (std::optional<int> status = loadIdb(db, command.operands()[0])) return *status;
  return command.writeResult("idb", [&db](std::FILE* out) { writeSorted(db, out); });
}
