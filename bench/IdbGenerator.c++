// idbgen SEED LINES: writes a synthetic idb of LINES records to standard
// output, the same bytes for the same seed on every machine.  Lines are in
// the writer's canonical form (single blanks, "%04o" modes), destinations
// are unique and come in no particular order, so sorting the file with any
// byte-order sort on field 5 must give what `tamblin-cli sort` writes.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unordered_set>
#include <vector>

namespace {

// splitmix64: tiny, portable and fully determined by the seed (the standard
// library's distributions are not the same everywhere).
class Random {
 public:
  explicit Random(std::uint64_t seed) : _state(seed) {}
  std::uint64_t next() {
    std::uint64_t z = (_state += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
  }
  std::size_t below(std::size_t n) { return static_cast<std::size_t>(next() % n); }
  template <typename T, std::size_t N>
  const T& pick(const T (&items)[N]) {
    return items[below(N)];
  }

 private:
  std::uint64_t _state;
};

const char* const kSyllables[] = {"al", "ba", "cor", "de", "ex", "fin", "gra", "hu", "io",
                                  "jet", "ka", "lum", "mo", "nex", "or", "pi", "qua", "ru",
                                  "sta", "tor", "ul", "vex", "win", "xy", "zen"};
const char* const kTops[] = {"usr/bin", "usr/sbin", "usr/lib", "usr/lib32", "usr/share/doc",
                             "usr/share/man/man1", "usr/share/man/man3", "usr/include",
                             "usr/share/locale", "etc", "var/lib", "opt/tamblin", "usr/share/data"};
const char* const kSuffixes[] = {"", "", "", ".so", ".so.1", ".h", ".1", ".3", ".conf", ".txt",
                                 ".html", ".png", ".mo", ".a", ".dat"};
const char* const kOwners[] = {"root", "root", "root", "bin", "sys", "lp", "daemon"};
const char* const kGroups[] = {"sys", "sys", "bin", "root", "sys", "lp", "daemon"};
const char* const kSubsystems[] = {"sw.base", "sw.lib", "sw.hdr", "man.pages", "man.relnotes",
                                   "sw.data", "sw.dev", "opt.demo"};
const char* const kAttrs[] = {"config(noupdate)", "config(suggest)", "nostrip",
                              "mach(CPU=R4000)", "mach(MODE=64bit)",
                              "preop('chmod 4755 $rbase/usr/bin/x')",
                              "exitop(\"echo installed a b\")", "norqs", "noshare"};

std::string word(Random& r, int syllables) {
  std::string w;
  for (int i = 0; i < syllables; ++i) w += r.pick(kSyllables);
  return w;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: idbgen SEED LINES\n");
    return 2;
  }
  Random r(std::strtoull(argv[1], nullptr, 10));
  long lines = std::atol(argv[2]);

  // A few thousand directories of one to three levels below the usual tops.
  std::vector<std::string> dirs;
  for (int i = 0; i < 4000; ++i) {
    std::string d = r.pick(kTops);
    for (int depth = 1 + static_cast<int>(r.below(2)); depth > 0; --depth)
      d += "/" + word(r, 1 + static_cast<int>(r.below(3)));
    dirs.push_back(d);
  }
  const std::string product = "tamblin";

  std::unordered_set<std::string> used;
  used.reserve(static_cast<std::size_t>(lines) * 2);
  std::string out;
  for (long n = 0; n < lines; ++n) {
    std::string dst;
    do {
      dst = dirs[r.below(dirs.size())] + "/" + word(r, 2 + static_cast<int>(r.below(3))) +
            r.pick(kSuffixes);
      if (r.below(4) == 0) dst += "." + std::to_string(r.below(100));
    } while (!used.insert(dst).second);

    std::size_t kind = r.below(100);
    char type = kind < 88 ? 'f' : kind < 94 ? 'l' : kind < 99 ? 'd' : 'c';
    unsigned mode = type == 'l' ? 0777 : type == 'd' ? 0755 : type == 'c' ? 0666
                    : r.below(3) == 0 ? 0755 : r.below(20) == 0 ? 04755 : 0644;
    std::string src = "build/" + dst.substr(dst.find('/') + 1);
    std::string tag = product + "." + r.pick(kSubsystems);

    out.clear();
    out += type;
    char modeText[16];
    std::snprintf(modeText, sizeof modeText, " %04o ", mode);
    out += modeText;
    out += r.pick(kOwners);
    out += ' ';
    out += r.pick(kGroups);
    out += ' ' + dst + ' ' + src + ' ' + tag;
    if (type == 'l') out += " symval(" + word(r, 3) + ".so." + std::to_string(r.below(9)) + ")";
    if (type == 'c') out += " dev(" + std::to_string(r.below(64)) + "," + std::to_string(r.below(256)) + ")";
    for (std::size_t a = r.below(8) < 5 ? 0 : 1 + r.below(2); a > 0; --a) out += " " + std::string(r.pick(kAttrs));
    out += '\n';
    std::fwrite(out.data(), 1, out.size(), stdout);
  }
  return std::fflush(stdout) == 0 ? 0 : 1;
}
