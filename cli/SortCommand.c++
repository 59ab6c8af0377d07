// tamblin-cli sort IDB [-o OUT]: opens an idb as the program's Open does and
// saves it as Save does, sorted by destination path.
#include <cstdio>
#include <cstring>
#include <string>

#include "cli/Subcommands.h"
#include "idb/IdbFileSorter.h"

namespace {

int usage() {
  std::fprintf(stderr, "usage: tamblin-cli sort IDB [-o OUT]\n");
  return 2;
}

}  // namespace

int sortCommand(int argc, char** argv) {
  std::string in;
  std::string out;
  for (int i = 1; i < argc; ++i) {
    if (!std::strcmp(argv[i], "-o")) {
      if (++i == argc || !out.empty()) return usage();
      out = argv[i];
    } else if (!std::strcmp(argv[i], "--help") || !std::strcmp(argv[i], "-h")) {
      std::printf("usage: tamblin-cli sort IDB [-o OUT]\n"
                  "Sorts an idb by destination path, into OUT or back into IDB.\n");
      return 0;
    } else if (argv[i][0] == '-' && argv[i][1] != '\0') {
      std::fprintf(stderr, "tamblin-cli sort: unknown option '%s'\n", argv[i]);
      return usage();
    } else if (in.empty()) {
      in = argv[i];
    } else {
      return usage();
    }
  }
  if (in.empty()) return usage();

  std::string target = out.empty() ? in : out;
  IdbFileSorter::Result result = IdbFileSorter::sortFile(in, target);
  if (result.readMessage) {
    std::fprintf(stderr, "%s\n", result.readMessage->c_str());
    return 1;
  }
  if (int err = result.saveError) {
    std::fprintf(stderr, "Couldn't save idb '%s' (%s).\n", target.c_str(), std::strerror(err));
    return 1;
  }
  return 0;
}
