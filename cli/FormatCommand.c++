// tamblin-cli format SPEC [-o OUT]: reads a spec file as the program's Open
// does and writes the hierarchy as Save does.
#include <cstdio>
#include <cstring>
#include <string>

#include "cli/Subcommands.h"
#include "spec/SpecGraphModel.h"
#include "util/Reporter.h"

int formatCommand(int argc, char** argv) {
  const char* spec = nullptr;
  const char* out = nullptr;
  for (int i = 1; i < argc; ++i) {
    if (!std::strcmp(argv[i], "-o") && i + 1 < argc) {
      out = argv[++i];
    } else if (!spec && std::strcmp(argv[i], "-o") != 0) {
      spec = argv[i];
    } else {
      spec = nullptr;
      break;
    }
  }
  if (!spec) {
    std::fprintf(stderr, "usage: tamblin-cli format SPEC [-o OUT]\n");
    return 2;
  }

  // Every line the program would log goes to standard error.
  StreamReporter reporter(stderr);
  SpecGraphModel graph(&reporter);
  // A file that was read only in part is not written: the output would
  // silently lose what the errors skipped.
  if (!graph.open(spec) || !graph.lastReadReport().clean()) return 1;
  if (out) return graph.save(out) ? 0 : 1;
  graph.writeAll(stdout);
  return std::fflush(stdout) == 0 && !std::ferror(stdout) ? 0 : 1;
}
