// tamblin-cli check IDB [--sbase DIR] [--spec SPEC]: the checks the program
// makes before building, for packaging scripts.  Prints one line per problem
// and a summary; exit 0 when clean, 1 when something was reported, 2 when
// the input cannot be read.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/Subcommands.h"
#include "pkg/BuildInput.h"
#include "util/Reporter.h"

namespace {

const char kUsage[] = "usage: tamblin-cli check IDB [--sbase DIR] [--spec SPEC]\n";

struct Arguments {
  std::string idb;
  std::optional<std::string> sbase;
  std::optional<std::string> spec;
};

bool parse(int argc, char** argv, Arguments* args) {
  bool haveIdb = false;
  for (int i = 1; i < argc; i++) {
    std::optional<std::string>* option = nullptr;
    if (!std::strcmp(argv[i], "--sbase"))
      option = &args->sbase;
    else if (!std::strcmp(argv[i], "--spec"))
      option = &args->spec;
    if (option) {
      if (i + 1 >= argc || *option) return false;
      *option = argv[++i];
    } else if (!haveIdb && argv[i][0] != '-') {
      args->idb = argv[i];
      haveIdb = true;
    } else {
      return false;
    }
  }
  return haveIdb;
}

}  // namespace

int checkCommand(int argc, char** argv) {
  Arguments args;
  if (!parse(argc, argv, &args)) {
    std::fputs(kUsage, stderr);
    return 2;
  }
  StreamReporter reporter(stderr);
  BuildInput input(&reporter);
  if (std::optional<std::string> message = input.setSourceRoot(args.sbase.value_or(""))) {
    std::fprintf(stderr, "tamblin-cli check: %s\n", message->c_str());
    return 2;
  }
  if (std::optional<std::string> message = input.loadIdb(args.idb)) {
    std::fprintf(stderr, "%s\n", message->c_str());
    return 2;
  }
  if (args.spec && !input.loadSpec(*args.spec)) return 2;
  InstallCheck check = input.installCheck();
  const std::vector<std::string> findings = check.run();
  for (const std::string& line : findings) std::printf("%s\n", line.c_str());
  std::printf("%s\n", check.summary().c_str());
  if (std::fflush(stdout) != 0 || std::ferror(stdout)) return 2;
  return findings.empty() ? 0 : 1;
}
