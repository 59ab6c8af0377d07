// tamblin-cli: the Tamblin core for scripts and packaging jobs.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "cli/CliCommand.h"
#include "cli/Subcommands.h"

namespace {

// Each usage line is the subcommand's own "--help" first line.
const Subcommand kSubcommands[] = {
    {"format", "SPEC [-o OUT] [-v]", "reads a spec file and writes it as the program saves it",
     formatCommand},
    {"sort", "IDB [-o OUT] [-v]",
     "writes an idb sorted by destination path (comment lines are dropped)", sortCommand},
    {"check", "IDB [--sbase DIR] [--spec SPEC] [-o OUT] [-v]",
     "reports sources missing under the source root, tags no subsystem maps and empty subsystems",
     checkCommand},
    {"edit", "DIR SPEC IDB DIST [-v]",
     "asks the running program to enter DIR and open SPEC, IDB and DIST (\"\" leaves one as it is)",
     editCommand},
    {nullptr, nullptr, nullptr, nullptr},
};

const char kConvention[] =
    "\n"
    "Every subcommand:\n"
    "  -h, --help  prints its usage on standard output and exits 0\n"
    "  -o OUT      (format, sort, check) writes the result to OUT, replaced all at\n"
    "              once, instead of standard output; -o - is standard output\n"
    "  -v          reports on standard error what was done; without it success is\n"
    "              silent\n"
    "  --          ends the options\n"
    "Results go to standard output (or OUT), messages to standard error only.\n"
    "A save refused because OUT is not a regular file says so and exits 1.\n"
    "\n"
    "Exit status:\n"
    "  0  success\n"
    "  1  the input was read but is bad, or the check found problems\n"
    "  2  usage error, or a file that cannot be read or written (disk full,\n"
    "     standard output closed)\n";

void usage(std::FILE* out) {
  std::fprintf(out, "usage: tamblin-cli SUBCOMMAND [ARGS...]\n       tamblin-cli --help\n\n"
                    "Subcommands:\n");
  for (const Subcommand& s : kSubcommands)
    if (s.name) std::fprintf(out, "  %s %s\n      %s\n", s.name, s.usage, s.summary);
  std::fputs(kConvention, out);
}

// A descriptor 0-2 that was closed would be taken by the first file we
// open, and results or messages would land in it.  Held by /dev/null read
// only, writes to it fail and the failure is reported.
void holdStandardDescriptors() {
  for (int fd = 0; fd <= 2; ++fd) {
    if (::fcntl(fd, F_GETFD) != -1 || errno != EBADF) continue;
    int held = ::open("/dev/null", O_RDONLY);
    if (held >= 0 && held != fd) {
      ::dup2(held, fd);
      ::close(held);
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  holdStandardDescriptors();
  if (argc < 2) {
    usage(stderr);
    return kCliTrouble;
  }
  if (!std::strcmp(argv[1], "--help") || !std::strcmp(argv[1], "-h")) {
    errno = 0;
    usage(stdout);
    if (std::fflush(stdout) == 0 && !std::ferror(stdout)) return kCliOk;
    std::fprintf(stderr, "Couldn't write help to standard output (%s).\n",
                 std::strerror(errno ? errno : EIO));
    return kCliTrouble;
  }
  for (const Subcommand& s : kSubcommands)
    if (s.name && !std::strcmp(s.name, argv[1])) return s.run(argc - 1, argv + 1);
  std::fprintf(stderr, "tamblin-cli: unknown subcommand '%s'\n", argv[1]);
  usage(stderr);
  return kCliTrouble;
}
