// Fuzz target: arbitrary bytes read as a spec file, includes resolved in a
// scratch directory, then written and read back.  What the writer writes
// must read cleanly, and rewriting must settle after one round.
#include <stdlib.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <set>
#include <string>

#include "spec/SpecGraphModel.h"
#include "spec/SpecLexer.h"
#include "util/Reporter.h"

extern char** environ;

namespace {

class QuietReporter : public Reporter {
 public:
  void logMessage(const std::string&) override {}
  void showMessages() override {}
  void error(const std::string&) override {}
  void warning(const std::string&) override {}
  bool question(const std::string&) override { return true; }
  void bell() override {}
};

std::set<std::string> initialEnvironment;

void setUp() {
  char dir[] = "/tmp/tamblin-spec-fuzz-XXXXXX";
  if (!mkdtemp(dir) || chdir(dir) != 0) abort();
  std::ofstream("inc.spec") << "product q id \"Q\" image i id i version 1\n"
                               "subsys s id s exp q.i.s endsubsys endimage endproduct\n";
  for (char** e = environ; *e; ++e) initialEnvironment.insert(*e);
}

// setenv directives in one input must not leak into the next.
void restoreEnvironment() {
  std::set<std::string> now;
  for (char** e = environ; *e; ++e) now.insert(*e);
  for (const std::string& entry : now) {
    if (initialEnvironment.count(entry)) continue;
    unsetenv(entry.substr(0, entry.find('=')).c_str());
  }
  for (const std::string& entry : initialEnvironment) {
    if (now.count(entry)) continue;
    std::string::size_type eq = entry.find('=');
    setenv(entry.substr(0, eq).c_str(), entry.c_str() + eq + 1, 1);
  }
}

std::string writeAll(const SpecGraphModel& graph) {
  char* buf = nullptr;
  size_t len = 0;
  std::FILE* fp = open_memstream(&buf, &len);
  graph.writeAll(fp);
  std::fclose(fp);
  std::string text(buf, len);
  free(buf);
  return text;
}

// Reads text as a spec file and writes it again; aborts if it does not read
// cleanly.
std::string reread(const std::string& text) {
  std::ofstream("round.spec", std::ios::binary | std::ios::trunc) << text;
  QuietReporter reporter;
  SpecGraphModel graph(&reporter);
  graph.open("round.spec");
  unlink("round.spec");
  if (!graph.lastReadReport().clean()) {
    std::fprintf(stderr, "written text does not read cleanly:\n%s\n", text.c_str());
    abort();
  }
  return writeAll(graph);
}

bool contains(const std::string& text, const char* what) {
  return text.find(what) != std::string::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static bool ready = (setUp(), true);
  (void)ready;
  // A longer input could hold a token over the limit, which ends the
  // program on purpose.  System trees are no place for includes to wander.
  if (size >= static_cast<size_t>(kSpecMaxToken)) return 0;
  std::string input(reinterpret_cast<const char*>(data), size);
  if (contains(input, "/proc") || contains(input, "/sys") || contains(input, "/dev")) return 0;
  std::ofstream("main.spec", std::ios::binary | std::ios::trunc) << input;

  QuietReporter reporter;
  SpecGraphModel graph(&reporter);
  graph.open("main.spec");
  std::string first = writeAll(graph);
  (void)graph.getTags();

  // Multi-line mappings come back as one line, so the first rewrite may
  // differ from the input's first writing; from then on the text is fixed.
  bool stable = graph.lastReadReport().clean() && !contains(input, "$") &&
                !contains(input, "setenv");
  if (stable) {
    std::string second = reread(first);
    std::string third = reread(second);
    if (second != third) {
      std::fprintf(stderr, "rewriting is not stable:\n%s\n----\n%s\n", second.c_str(),
                   third.c_str());
      abort();
    }
  }
  restoreEnvironment();
  return 0;
}
