#include "app/AppDefaultsPath.h"

#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <vector>

const char kXtDefaultFileSearchPath[] =
    "/usr/lib/X11/%L/%T/%N%S:/usr/lib/X11/%l/%T/%N%S:/usr/lib/X11/%T/%N%S:"
    "/etc/X11/%L/%T/%N%C%S:/etc/X11/%l/%T/%N%C%S:/etc/X11/%T/%N%C%S:"
    "/etc/X11/%L/%T/%N%S:/etc/X11/%l/%T/%N%S:/etc/X11/%T/%N%S";

namespace {

// A directory as a path entry: '%' and ':' would be read as substitutions
// and separators.
std::string entry(const std::string& dir) {
  std::string text;
  for (char c : dir) {
    if (c == '%' || c == ':') text += '%';
    text += c;
  }
  return text + "/%T/%N%C%S:" + text + "/%T/%N%S";
}

std::string dirOf(const std::string& path) {
  std::string::size_type slash = path.rfind('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

}  // namespace

std::string appDefaultsSearchPath(const std::string& exe, const char* current) {
  const std::string bin = dirOf(exe);
  if (bin.size() < 4 || bin.compare(bin.size() - 4, 4, "/bin") != 0) return std::string();
  const std::string prefix = dirOf(bin);
  std::string ours = entry(prefix + "/" TAMBLIN_DATADIR "/X11");
  const std::string usr = "/usr";
  if (prefix.size() >= usr.size() &&
      prefix.compare(prefix.size() - usr.size(), usr.size(), usr) == 0)
    ours = entry(prefix.substr(0, prefix.size() - usr.size()) + "/etc/X11") + ":" + ours;
  if (current && *current) return std::string(current) + ":" + ours;
  return ours + ":" + kXtDefaultFileSearchPath;
}

void useInstalledAppDefaults() {
  std::vector<char> buf(PATH_MAX + 1);
  ssize_t n = ::readlink("/proc/self/exe", buf.data(), buf.size() - 1);
  if (n <= 0) return;
  const std::string exe(buf.data(), static_cast<size_t>(n));
  const std::string path = appDefaultsSearchPath(exe, std::getenv("XFILESEARCHPATH"));
  if (!path.empty()) ::setenv("XFILESEARCHPATH", path.c_str(), 1);
}
