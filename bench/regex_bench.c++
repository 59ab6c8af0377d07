// Compares the two candidate engines for selection by expression: RE2 and
// POSIX extended expressions, each matching unanchored over every line of a
// generated 1,000,000-line file list, as the "Tag Files" view shows it.
//   regex_bench [lines]
#include <chrono>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <re2/re2.h>
#include <regex.h>

namespace {

std::vector<std::string> makeLines(int n) {
  static const char* const kTags[] = {"tool.sw.base", "tool.sw.lib", "tool.man.pages",
                                      "tool.sw.dev", "tool.books.help"};
  static const char* const kDirs[] = {"build/bin", "build/lib", "src/include/tool", "man/man1",
                                      "share/tool/data", "lib/locale/C"};
  std::vector<std::string> lines;
  lines.reserve(n);
  unsigned seed = 12345;
  char buf[256];
  for (int i = 0; i < n; i++) {
    seed = seed * 1103515245 + 12345;
    std::snprintf(buf, sizeof buf, "%s %s/d%03u/file%07d%s", kTags[(seed >> 8) % 5],
                  kDirs[(seed >> 12) % 6], (seed >> 16) % 1000, i,
                  (seed >> 20) % 3 ? ".o" : ".so.1");
    lines.emplace_back(buf);
  }
  return lines;
}

double seconds(std::chrono::steady_clock::time_point t0) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
}

}  // namespace

int main(int argc, char** argv) {
  if (const char* loc = std::getenv("BENCH_LOCALE")) std::setlocale(LC_ALL, loc);
  int n = argc > 1 ? std::atoi(argv[1]) : 1000000;
  std::vector<std::string> lines = makeLines(n);
  const char* const patterns[] = {".*", "^$", "file0012", "tool\\.sw\\.lib",
                                  "[0-9]+\\.so", "d00[0-4]/", "^tool.man.*\\.o$", "(.*/)*[a-z]*q"};
  std::printf("%-18s %10s %10s %10s\n", "expression", "matches", "RE2 s", "POSIX s");
  for (const char* p : patterns) {
    RE2::Options opts;
    opts.set_encoding(RE2::Options::EncodingLatin1);
    opts.set_posix_syntax(true);
    opts.set_never_capture(true);
    opts.set_log_errors(false);
    RE2 re(p, opts);
    auto t0 = std::chrono::steady_clock::now();
    long hitsRe2 = 0;
    for (const std::string& l : lines) hitsRe2 += RE2::PartialMatch(l, re);
    double tRe2 = seconds(t0);

    regex_t rx;
    if (regcomp(&rx, p, REG_EXTENDED | REG_NOSUB) != 0) return 1;
    t0 = std::chrono::steady_clock::now();
    long hitsPosix = 0;
    for (const std::string& l : lines) hitsPosix += regexec(&rx, l.c_str(), 0, nullptr, 0) == 0;
    double tPosix = seconds(t0);
    regfree(&rx);
    std::printf("%-18s %10ld %10.3f %10.3f%s\n", p, hitsRe2, tRe2, tPosix,
                hitsRe2 == hitsPosix ? "" : "  (engines disagree)");
  }
  return 0;
}
