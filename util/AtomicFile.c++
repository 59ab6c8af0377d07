#include "util/AtomicFile.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <vector>

namespace {

std::string dirOf(const std::string& path) {
  std::string::size_type slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  if (slash == 0) return "/";
  return path.substr(0, slash);
}

// Follows a chain of symbolic links at path (also dangling ones, so that
// saving through a link to a file not yet created creates that file).  Gives
// up after a bounded number of steps and then writes to path itself.
std::string followLinks(const std::string& path) {
  std::string cur = path;
  for (int i = 0; i < 40; ++i) {
    struct stat st;
    if (lstat(cur.c_str(), &st) != 0 || !S_ISLNK(st.st_mode)) return cur;
    std::vector<char> buf(PATH_MAX + 1);
    ssize_t n = readlink(cur.c_str(), buf.data(), buf.size() - 1);
    if (n <= 0) return cur;
    std::string text(buf.data(), static_cast<size_t>(n));
    cur = text[0] == '/' ? text : dirOf(cur) + "/" + text;
  }
  return path;
}

}  // namespace

AtomicFile::AtomicFile(std::string target) : _target(std::move(target)) {}

AtomicFile::~AtomicFile() { discard(); }

int AtomicFile::open() {
  discard();
  _resolved = followLinks(_target);
  std::string dir = dirOf(_resolved);
  std::string::size_type slash = _resolved.rfind('/');
  std::string base = slash == std::string::npos ? _resolved : _resolved.substr(slash + 1);
  std::string pattern = dir + "/." + base + ".XXXXXX";
  int fd = mkstemp(pattern.data());
  if (fd < 0) return errno;

  // New files get the usual 0666 less the umask; replaced ones keep their bits.
  struct stat st;
  mode_t mode;
  if (stat(_resolved.c_str(), &st) == 0) {
    mode = st.st_mode & 07777;
    if (fchown(fd, st.st_uid, st.st_gid) != 0) { /* not ours to give away: keep ours */ }
  } else {
    mode_t mask = umask(0);
    umask(mask);
    mode = 0666 & ~mask;
  }
  if (fchmod(fd, mode) != 0) {
    int err = errno;
    close(fd);
    unlink(pattern.c_str());
    return err;
  }
  _stream = fdopen(fd, "w");
  if (!_stream) {
    int err = errno;
    close(fd);
    unlink(pattern.c_str());
    return err;
  }
  _tempPath = pattern;
  return 0;
}

int AtomicFile::commit() {
  if (!_stream) return EBADF;
  int err = 0;
  if (std::ferror(_stream)) err = EIO;
  if (!err && std::fflush(_stream) != 0) err = errno;
  if (!err && fsync(fileno(_stream)) != 0) err = errno;
  if (std::fclose(_stream) != 0 && !err) err = errno;
  _stream = nullptr;
  if (!err && std::rename(_tempPath.c_str(), _resolved.c_str()) != 0) err = errno;
  if (err) {
    unlink(_tempPath.c_str());
  }
  _tempPath.clear();
  return err;
}

void AtomicFile::discard() {
  if (_stream) {
    std::fclose(_stream);
    _stream = nullptr;
  }
  if (!_tempPath.empty()) {
    unlink(_tempPath.c_str());
    _tempPath.clear();
  }
}
