// tamblin-cli: the Tamblin core for scripts and packaging jobs.
#include <cstdio>
#include <cstring>

#include "cli/Subcommands.h"

namespace {

const Subcommand kSubcommands[] = {
    {"format", "SPEC [-o OUT]", "reads a spec file and writes it as the program saves it",
     formatCommand},
    {"sort", "IDB [-o OUT]", "sorts an idb by destination path (into OUT, or in place)", sortCommand},
    {"check", "IDB [--sbase DIR] [--spec SPEC]",
     "reports sources missing under the source root, tags no subsystem maps and empty subsystems",
     checkCommand},
    {nullptr, nullptr, nullptr, nullptr},
};

void usage(std::FILE* out) {
  std::fprintf(out, "usage: tamblin-cli SUBCOMMAND [ARGS...]\n\nSubcommands:\n");
  for (const Subcommand& s : kSubcommands)
    if (s.name) std::fprintf(out, "  %s %s\n      %s\n", s.name, s.usage, s.summary);
  std::fprintf(out, "\n  --help   shows this text\n");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    usage(stderr);
    return 2;
  }
  if (!std::strcmp(argv[1], "--help") || !std::strcmp(argv[1], "-h")) {
    usage(stdout);
    return 0;
  }
  for (const Subcommand& s : kSubcommands)
    if (s.name && !std::strcmp(s.name, argv[1])) return s.run(argc - 1, argv + 1);
  std::fprintf(stderr, "tamblin-cli: unknown subcommand '%s'\n", argv[1]);
  usage(stderr);
  return 2;
}
