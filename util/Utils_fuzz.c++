// Feeds arbitrary absolute paths to dcanon and the path splitters and checks
// the shape of what comes back.  dcanon reads links on this machine's file
// system as it goes; it must end and stay canonical whatever it finds.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "util/Utils.h"

namespace {

bool canonical(const std::string& p) {
  if (p.empty() || p[0] != '/') return false;
  if (p == "/") return true;
  if (p.back() == '/' || p.find("//") != std::string::npos) return false;
  std::string padded = p + "/";
  return padded.find("/./") == std::string::npos && padded.find("/../") == std::string::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string text(reinterpret_cast<const char*>(data), size);
  // A NUL would end the path for the system calls but not for std::string.
  text = text.substr(0, text.find('\0'));
  std::string path = "/" + text;
  std::string c = dcanon(path);
  if (!canonical(c) || dcanon(c) != c) std::abort();
  std::size_t start = size % (path.size() + 1);
  dcanon(path, start);

  std::string base = mypathbasename(text);
  std::string dir = mypathdirname(text);
  if (base.find('/') != std::string::npos) std::abort();
  if (dir.size() > text.size() && dir != "." && dir != "/") std::abort();
  isShellPattern(text.c_str());
  return 0;
}
