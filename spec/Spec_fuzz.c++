// Fuzz target: arbitrary bytes read as a spec file, includes resolved in a
// scratch directory, then written and read back.  What the writer writes
// must read cleanly and, from the first write on, read back to the same
// text.
//
// The scratch directory is named after the process; a run that ends
// normally removes its own, and each run removes those of earlier runs
// that were killed (a timeout or a crash ends the process at once).
#include <dirent.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
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

const char kPrefix[] = "tamblin-spec-fuzz-";
const char* const kFiles[] = {"inc.spec", "main.spec", "round.spec"};
std::set<std::string> initialEnvironment;

std::string tempRoot() {
  const char* t = std::getenv("TMPDIR");
  return t && *t ? t : "/tmp";
}

void removeScratch(const std::string& dir) {
  for (const char* f : kFiles) unlink((dir + "/" + f).c_str());
  rmdir(dir.c_str());
}

// Scratch directories of processes that no longer run.
void removeStaleScratch() {
  std::string root = tempRoot();
  DIR* d = opendir(root.c_str());
  if (!d) return;
  while (dirent* e = readdir(d)) {
    if (std::strncmp(e->d_name, kPrefix, sizeof kPrefix - 1) != 0) continue;
    long pid = std::strtol(e->d_name + sizeof kPrefix - 1, nullptr, 10);
    if (pid > 0 && kill(static_cast<pid_t>(pid), 0) != 0 && errno == ESRCH)
      removeScratch(root + "/" + e->d_name);
  }
  closedir(d);
}

std::string scratch;

void removeOwnScratch() { removeScratch(scratch); }

// A file of the scratch directory.  The working directory stays where it
// is: libFuzzer reads its inputs and writes its findings by relative names.
std::string at(const char* name) { return scratch + "/" + name; }

void setUp() {
  removeStaleScratch();
  scratch = tempRoot() + "/" + kPrefix + std::to_string(getpid());
  if (mkdir(scratch.c_str(), 0700) != 0 && errno != EEXIST) abort();
  std::atexit(removeOwnScratch);
  // Includes name it relative to the file that includes it.
  std::ofstream(at("inc.spec")) << "product q id \"Q\" image i id i version 1\n"
                               "subsys s id s exp q.i.s endsubsys endimage endproduct\n";
  for (char** e = environ; *e; ++e) initialEnvironment.insert(*e);
  // Includes of large files elsewhere would only measure reading speed.
  specReadLimits().maxBytes = 1 << 20;
  specReadLimits().maxFiles = 100;
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
  std::ofstream(at("round.spec"), std::ios::binary | std::ios::trunc) << text;
  QuietReporter reporter;
  SpecGraphModel graph(&reporter);
  (void)graph.open(at("round.spec"));
  unlink(at("round.spec").c_str());
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
  std::ofstream(at("main.spec"), std::ios::binary | std::ios::trunc) << input;

  QuietReporter reporter;
  SpecGraphModel graph(&reporter);
  (void)graph.open(at("main.spec"));
  unlink(at("main.spec").c_str());
  std::string first = writeAll(graph);
  (void)graph.getTags();

  // Environment references may read differently once written out.
  bool comparable = graph.lastReadReport().clean() && !contains(input, "$") &&
                    !contains(input, "setenv");
  if (comparable) {
    std::string second = reread(first);
    if (second != first) {
      std::fprintf(stderr, "rewriting is not stable:\n%s\n----\n%s\n", first.c_str(),
                   second.c_str());
      abort();
    }
  }
  restoreEnvironment();
  return 0;
}
