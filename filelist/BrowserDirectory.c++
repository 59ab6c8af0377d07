#include "filelist/BrowserDirectory.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "idb/StringSet.h"
#include "util/Reporter.h"

namespace {

std::string currentDirectory() {
  std::string buf(PATH_MAX, '\0');
  while (!getcwd(&buf[0], buf.size())) {
    if (errno != ERANGE) return "/";
    buf.resize(buf.size() * 2);
  }
  buf.resize(std::strlen(buf.c_str()));
  return buf;
}

bool resolve(const std::string& path, std::string& out) {
  char* real = realpath(path.c_str(), nullptr);
  if (!real) return false;
  out = real;
  std::free(real);
  return true;
}

// The first leading part of path that does not resolve, for telling the
// user where a link leads nowhere.
std::string failingPrefix(const std::string& path) {
  std::string dummy;
  for (size_t slash = path.find('/', 1); slash != std::string::npos;
       slash = path.find('/', slash + 1)) {
    std::string prefix = path.substr(0, slash);
    if (!resolve(prefix, dummy)) return prefix;
  }
  return path;
}

}  // namespace

std::string BrowserDirectory::typedPath(const std::string& text) {
  if (!text.empty() && text[0] == '/') return text;
  if (text == "~") return currentDirectory();
  return currentDirectory() + "/" + text;
}

bool BrowserDirectory::isReadableDirectory(const std::string& path) {
  struct stat st;
  if (stat(path.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) return false;
  DIR* d = opendir(path.c_str());
  if (!d) return false;
  closedir(d);
  return true;
}

bool BrowserDirectory::isSubdir(const std::string& root, const std::string& dir, Reporter& log) {
  if (root == "/") return true;
  std::string realRoot, realDir;
  if (!resolve(root, realRoot)) {
    log.logMessage("Unable to resolve links for " + root + ": " + std::strerror(errno) + "\n");
    return false;
  }
  if (!resolve(dir, realDir)) {
    log.logMessage("Unable to resolve links for " + dir + ": " + std::strerror(errno));
    log.logMessage("   (at '" + failingPrefix(dir) + "' in '" + dir + "')");
    return false;
  }
  if (realRoot == "/") return true;
  if (realDir.compare(0, realRoot.size(), realRoot) != 0) return false;
  return realDir.size() == realRoot.size() || realDir[realRoot.size()] == '/';
}

bool BrowserDirectory::isUnder(const std::string& root, const std::string& path) {
  if (root == "/") return !path.empty() && path[0] == '/';
  return path.compare(0, root.size(), root) == 0 &&
         (path.size() == root.size() || path[root.size()] == '/');
}

std::unique_ptr<StringSet> BrowserDirectory::readEntries(const std::string& dir) {
  auto items = std::make_unique<StringSet>("items");
  DIR* d = opendir(dir.c_str());
  if (!d) return items;
  std::string path = dir == "/" ? "/" : dir + "/";
  const size_t base = path.size();
  while (struct dirent* e = readdir(d)) {
    path.resize(base);
    path += e->d_name;
    struct stat st;
    bool isDir = stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
    items->add(isDir ? std::string(e->d_name) + "/" : std::string(e->d_name));
  }
  closedir(d);
  items->sort();
  return items;
}

std::string BrowserDirectory::entryPath(const std::string& directory, const std::string& entry) {
  return directory == "/" ? "/" + entry : directory + "/" + entry;
}
