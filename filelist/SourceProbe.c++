#include "filelist/SourceProbe.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace {

// A path split at its last "/", the leading slashes dropped ("/x" below the
// root is "x" below it).  Names that a directory listing cannot answer
// ("", ".", "..") are left to a lookup of their own.
struct Split {
  std::string_view dir;  // "" for the root itself
  std::string_view name;
  bool listable;
};

Split split(std::string_view path) {
  while (!path.empty() && path.front() == '/') path.remove_prefix(1);
  size_t slash = path.rfind('/');
  Split s;
  s.dir = slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
  s.name = slash == std::string_view::npos ? path : path.substr(slash + 1);
  s.listable = !s.name.empty() && s.name != "." && s.name != "..";
  return s;
}

// The entries of one directory.  The set's views point into storage.
struct Listing {
  std::vector<std::string> storage;
  std::unordered_set<std::string_view> names;
};

// The names in the directory dir below rootFd; false when it cannot be read
// or its entries could not be looked up (no search permission), in which case
// every name is looked up on its own.
bool readNames(int rootFd, std::string_view dir, Listing* listing) {
  const std::string rel = dir.empty() ? std::string(".") : std::string(dir);
  if (::faccessat(rootFd, rel.c_str(), X_OK, AT_EACCESS) != 0) return false;
  int fd = ::openat(rootFd, rel.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return false;
  DIR* d = ::fdopendir(fd);
  if (!d) {
    ::close(fd);
    return false;
  }
  while (struct dirent* e = ::readdir(d)) listing->storage.emplace_back(e->d_name);
  ::closedir(d);
  listing->names.reserve(listing->storage.size());
  for (const std::string& name : listing->storage) listing->names.insert(name);
  return true;
}

}  // namespace

SourceProbe::SourceProbe(std::string root) : _root(std::move(root)) {}

std::vector<char> SourceProbe::exists(const std::vector<std::string_view>& paths) const {
  std::vector<char> found(paths.size(), 0);
  const int rootFd = ::open(_root.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
  if (rootFd < 0) {
    // Not a directory we can hold: look every joined path up.
    std::string path;
    struct stat st;
    for (size_t i = 0; i < paths.size(); i++) {
      path = _root == "/" ? "/" : _root + "/";
      path += paths[i];
      found[i] = ::lstat(path.c_str(), &st) == 0 && st.st_mode != 0;
    }
    return found;
  }

  // Each path's directory as a number, and how many paths each one holds.
  std::vector<Split> splits;
  std::vector<int> dirOf(paths.size(), -1);
  std::vector<std::string_view> dirs;
  std::vector<int> perDir;
  splits.reserve(paths.size());
  std::unordered_map<std::string_view, int> dirNumbers;
  for (size_t i = 0; i < paths.size(); i++) {
    splits.push_back(split(paths[i]));
    if (!splits.back().listable) continue;
    auto known = dirNumbers.emplace(splits.back().dir, static_cast<int>(dirs.size()));
    if (known.second) {
      dirs.push_back(splits.back().dir);
      perDir.push_back(0);
    }
    dirOf[i] = known.first->second;
    perDir[dirOf[i]]++;
  }
  // Listings of the directories worth reading; a failed read leaves none.
  std::vector<std::unique_ptr<Listing>> listings(dirs.size());
  for (size_t d = 0; d < dirs.size(); d++) {
    if (perDir[d] < kListingThreshold) continue;
    auto listing = std::make_unique<Listing>();
    if (readNames(rootFd, dirs[d], listing.get())) listings[d] = std::move(listing);
  }

  std::string rel;
  struct stat st;
  for (size_t i = 0; i < paths.size(); i++) {
    const Split& s = splits[i];
    if (dirOf[i] >= 0 && listings[dirOf[i]]) {
      found[i] = listings[dirOf[i]]->names.count(s.name) != 0;
      continue;
    }
    rel.assign(s.dir);
    if (!s.dir.empty()) rel += '/';
    rel += s.name;
    if (rel.empty()) rel = ".";
    found[i] = ::fstatat(rootFd, rel.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0 && st.st_mode != 0;
  }
  ::close(rootFd);
  return found;
}
