// tamblin-cli check IDB [--sbase DIR] [--spec SPEC]: the checks the program
// makes before building, for packaging scripts.  Prints one line per problem
// and a summary; exit 0 when clean, 1 when something was reported, 2 when
// the input cannot be read.
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/Subcommands.h"
#include "filelist/InstallCheck.h"
#include "idb/Idb.h"
#include "spec/SpecGraphModel.h"
#include "util/Reporter.h"
#include "util/Utils.h"

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

// The source root as the program takes it: the option, else "SBASE", else
// the current directory.
std::optional<std::string> sourceRoot(const Arguments& args) {
  const char* sbase = std::getenv("SBASE");
  const std::string root = normalize(args.sbase ? *args.sbase : sbase ? sbase : "");
  struct stat st;
  if (::stat(root.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) {
    std::fprintf(stderr, "tamblin-cli check: Source Root '%s' is not a directory.\n", root.c_str());
    return std::nullopt;
  }
  return root;
}

// The subsystems of the spec file with their mappings; nothing when the file
// cannot be read whole (the reader's messages go to standard error).
std::optional<std::vector<InstallCheck::Subsystem>> readSubsystems(const std::string& spec) {
  StreamReporter reporter(stderr);
  SpecGraphModel graph(&reporter);
  if (!graph.open(spec) || !graph.lastReadReport().clean()) return std::nullopt;
  std::vector<InstallCheck::Subsystem> subsystems;
  for (const SpecNode* node : graph.nodes())
    if (node->level() == 3) subsystems.push_back({node->getTag(), node->mapping()});
  return subsystems;
}

}  // namespace

int checkCommand(int argc, char** argv) {
  Arguments args;
  if (!parse(argc, argv, &args)) {
    std::fputs(kUsage, stderr);
    return 2;
  }
  std::optional<std::string> root = sourceRoot(args);
  if (!root) return 2;
  Idb idb;
  if (std::optional<std::string> message = idb.open(args.idb)) {
    std::fprintf(stderr, "%s\n", message->c_str());
    return 2;
  }
  InstallCheck check(idb, *root);
  if (args.spec) {
    std::optional<std::vector<InstallCheck::Subsystem>> subsystems = readSubsystems(*args.spec);
    if (!subsystems) return 2;
    check.setSubsystems(std::move(*subsystems));
  }
  const std::vector<std::string> findings = check.run();
  for (const std::string& line : findings) std::printf("%s\n", line.c_str());
  std::printf("%s\n", check.summary().c_str());
  if (std::fflush(stdout) != 0 || std::ferror(stdout)) return 2;
  return findings.empty() ? 0 : 1;
}
