// forgeset: the distribution builder.  The command line, the checks, the
// plan and the writing live in the core (ForgesetCommand); this only hands
// it the arguments and prints its lines as they come.
#include <cstdio>
#include <string>
#include <vector>

#include "pkg/ForgesetCommand.h"

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  ForgesetArgs parsed;
  if (Outcome error = ForgesetCommand::parse(args, &parsed); !error.ok()) {
    std::fprintf(stderr, "%s\n%s", error.message().c_str(), ForgesetCommand::usage());
    return 2;
  }
  if (parsed.help) {
    std::fputs(ForgesetCommand::usage(), stdout);
    return 0;
  }
  // Line by line and flushed: the Build tab shows progress as it happens.
  return ForgesetCommand::run(parsed, [](const std::string& line) {
    std::fputs(line.c_str(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
  });
}
