#include "util/AtomicFile.h"

#include <dirent.h>
#include <errno.h>
#include <signal.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

std::string dirOf(const std::string& path) {
  std::string::size_type slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  if (slash == 0) return "/";
  return path.substr(0, slash);
}

std::string baseOf(const std::string& path) {
  std::string::size_type slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

// Follows a chain of symbolic links at path (also dangling ones, so that
// saving through a link to a file not yet created creates that file).  Gives
// up after a bounded number of steps and then writes to path itself.
std::string followLinks(const std::string& path, bool* viaLink) {
  std::string cur = path;
  *viaLink = false;
  for (int i = 0; i < 40; ++i) {
    struct stat st;
    if (lstat(cur.c_str(), &st) != 0 || !S_ISLNK(st.st_mode)) return cur;
    std::vector<char> buf(PATH_MAX + 1);
    ssize_t n = readlink(cur.c_str(), buf.data(), buf.size() - 1);
    if (n <= 0) return cur;
    std::string text(buf.data(), static_cast<size_t>(n));
    cur = text[0] == '/' ? text : dirOf(cur) + "/" + text;
    *viaLink = true;
  }
  return path;
}

int retryOpen(const char* path, int flags, mode_t mode = 0) {
  int fd;
  do fd = ::open(path, flags | O_CLOEXEC, mode);
  while (fd < 0 && errno == EINTR);
  return fd;
}

// An unnamed file in dir, or -1 with errno.
int unnamedIn(const std::string& dir, mode_t mode) {
  return retryOpen(dir.c_str(), O_TMPFILE | O_RDWR, mode);
}

bool noUnnamedFiles(int err) { return err == EOPNOTSUPP || err == EISDIR || err == EINVAL; }

// A temporary file for text that is never linked anywhere: unnamed where the
// file system allows it, else named and unlinked at once.  In dir first, else
// in the temporary directory.
int scratchFile(const std::string& dir) {
  const char* tmp = std::getenv("TMPDIR");
  for (const std::string& where : {dir, std::string(tmp && *tmp ? tmp : "/tmp")}) {
    int fd = unnamedIn(where, 0600);
    if (fd >= 0) return fd;
    std::string pattern = where + "/.tamblin.XXXXXX";
    fd = mkostemp(&pattern[0], O_CLOEXEC);
    if (fd >= 0) {
      unlink(pattern.c_str());
      return fd;
    }
  }
  return -1;
}

// Whether renaming a new file over target (in dir) is allowed: the user may
// write the directory, and a sticky directory lets this user replace it.
bool renameAllowed(const std::string& dir, const struct stat& target) {
  struct stat ds;
  if (stat(dir.c_str(), &ds) != 0) return false;
  if (faccessat(AT_FDCWD, dir.c_str(), W_OK | X_OK, AT_EACCESS) != 0) return false;
  uid_t me = geteuid();
  if ((ds.st_mode & S_ISVTX) && me != 0 && target.st_uid != me && ds.st_uid != me) return false;
  return true;
}

// Gives fd the owner, group and mode of target; false when that is not
// allowed (the file would change hands on rename).
bool takeOver(int fd, const struct stat& target) {
  mode_t mode = target.st_mode & 07777;
  if (fchown(fd, target.st_uid, target.st_gid) != 0) { /* checked below */ }
  if (fchmod(fd, mode) != 0) return false;
  struct stat now;
  return fstat(fd, &now) == 0 && now.st_uid == target.st_uid && now.st_gid == target.st_gid &&
         (now.st_mode & 07777) == mode;
}

// Links the unnamed file fd in at path (which must not exist).
int linkUnnamed(int fd, const std::string& path) {
  std::string proc = "/proc/self/fd/" + std::to_string(fd);
  if (linkat(AT_FDCWD, proc.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0) return 0;
  int err = errno;
  if (err != ENOENT) return err;
  // No /proc: this way needs more privilege, but may work.
  return linkat(fd, "", AT_FDCWD, path.c_str(), AT_EMPTY_PATH) == 0 ? 0 : err;
}

void syncDirectory(const std::string& dir) {
  int fd = retryOpen(dir.c_str(), O_RDONLY | O_DIRECTORY);
  if (fd < 0) return;
  if (fsync(fd) != 0) { /* the rename itself has happened */ }
  close(fd);
}

// ---- Copying (also run in a forked child: async-signal-safe calls only)

int copyRange(int from, int to, off_t length, char* buf, size_t room) {
  off_t at = 0;
  while (at < length) {
    size_t want = static_cast<size_t>(length - at) < room ? static_cast<size_t>(length - at) : room;
    ssize_t got = pread(from, buf, want, at);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return errno;
    if (got == 0) return EIO;  // the source shrank under us
    for (ssize_t done = 0; done < got;) {
      ssize_t put = pwrite(to, buf + done, static_cast<size_t>(got - done), at + done);
      if (put < 0 && errno == EINTR) continue;
      if (put < 0) return errno;
      done += put;
    }
    at += got;
  }
  return 0;
}

int copyWhole(int from, int to, off_t length, char* buf, size_t room) {
  if (int err = copyRange(from, to, length, buf, room)) return err;
  if (ftruncate(to, length) != 0) return errno;
  if (fsync(to) != 0) return errno;
  return 0;
}

// The new text over the target; on failure the old text back.  Returns the
// first error, 0 when the new text is in place.
int copyOver(int newFd, off_t newSize, int oldFd, off_t oldSize, int target, char* buf,
             size_t room) {
  int err = copyWhole(newFd, target, newSize, buf, room);
  if (err) {
    // Restoring needs no more room than the file held before.
    for (int tries = 0; tries < 3 && copyWhole(oldFd, target, oldSize, buf, room) != 0; ++tries) {
    }
  }
  return err;
}

off_t sizeOf(int fd) {
  struct stat st;
  return fstat(fd, &st) == 0 ? st.st_size : -1;
}

// The name a replacing save gives its text for the moment between linking
// it and renaming it over the target: ".BASE.PID.N".
std::string linkName(const std::string& dir, const std::string& base, long pid, int n) {
  return dir + "/." + base + "." + std::to_string(pid) + "." + std::to_string(n);
}

// A save killed between those two calls leaves that name behind; the next
// save of the same file removes it once its process is gone.
void removeStaleLinks(const std::string& dir, const std::string& base) {
  DIR* d = opendir(dir.c_str());
  if (!d) return;
  const std::string prefix = "." + base + ".";
  while (dirent* e = readdir(d)) {
    const char* name = e->d_name;
    if (std::strncmp(name, prefix.c_str(), prefix.size()) != 0) continue;
    const char* p = name + prefix.size();
    char* end = nullptr;
    long pid = std::strtol(p, &end, 10);
    if (end == p || *end != '.' || pid <= 0) continue;
    const char* n = end + 1;
    std::strtol(n, &end, 10);
    if (end == n || *end != '\0') continue;
    if (kill(static_cast<pid_t>(pid), 0) == 0 || errno != ESRCH) continue;
    unlinkat(dirfd(d), name, 0);
  }
  closedir(d);
}

}  // namespace

std::string AtomicFile::describe(int err) {
  return err == kNotRegular ? std::string("Not a regular file") : std::string(std::strerror(err));
}

Outcome AtomicFile::failure(int err) {
  return err ? Outcome::error(describe(err), err) : Outcome();
}

bool AtomicFile::existsButNotRegular(const std::string& path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0 && !S_ISREG(st.st_mode);
}

AtomicFile::AtomicFile(std::string target) : _target(std::move(target)) {}

AtomicFile::~AtomicFile() { discard(); }

Outcome AtomicFile::open() { return failure(openTarget()); }

int AtomicFile::openTarget() {
  discard();
  _writeError = 0;
  _inPlace = false;
  bool viaLink = false;
  _resolved = followLinks(_target, &viaLink);
  struct stat st;
  _exists = stat(_resolved.c_str(), &st) == 0;
  if (!_exists && errno != ENOENT) return errno;
  // Looked at before opening: opening a device or a FIFO can have effects.
  if (_exists && !S_ISREG(st.st_mode)) return kNotRegular;

  struct sigaction ignore = {};
  ignore.sa_handler = SIG_IGN;
  _signalSaved = sigaction(SIGXFSZ, &ignore, &_oldXfsz) == 0;

  if (_exists) {
    // Refused exactly when fopen("w") would refuse; nothing is truncated.
    _targetFd = retryOpen(_resolved.c_str(), O_WRONLY | O_NOCTTY | O_NONBLOCK);
    if (_targetFd < 0 || fstat(_targetFd, &st) != 0) {
      int err = errno;
      discard();
      return err;
    }
    if (!S_ISREG(st.st_mode)) {
      discard();
      return kNotRegular;
    }
    _inPlace = viaLink || st.st_nlink > 1 || !renameAllowed(dirOf(_resolved), st) ||
               flistxattr(_targetFd, nullptr, 0) > 0;
  }
  if (int err = createTemporary(_exists, st)) {
    discard();
    return err;
  }
  static const cookie_io_functions_t io = {nullptr, &AtomicFile::cookieWrite, nullptr, nullptr};
  _stream = fopencookie(this, "w", io);
  if (!_stream) {
    int err = errno ? errno : ENOMEM;
    discard();
    return err;
  }
  setvbuf(_stream, nullptr, _IOFBF, 1 << 16);
  return 0;
}

int AtomicFile::createTemporary(bool exists, const struct stat& target) {
  const std::string dir = dirOf(_resolved);
  if (!_inPlace) {
    mode_t mask = umask(0);
    umask(mask);
    _tempFd = unnamedIn(dir, exists ? 0600 : 0666 & ~mask);
    if (_tempFd < 0 && noUnnamedFiles(errno)) {
      // This file system has no unnamed files: a named temporary, which a
      // killed save leaves behind.
      std::string pattern = dir + "/." + baseOf(_resolved) + ".XXXXXX";
      _tempFd = mkostemp(&pattern[0], O_CLOEXEC);
      if (_tempFd >= 0) {
        _tempPath = pattern;
        if (!exists && fchmod(_tempFd, 0666 & ~mask) != 0) return errno;
      }
    }
    if (_tempFd < 0) {
      if (!exists) return errno;  // as fopen("w") fails to create it
      _inPlace = true;
    } else if (exists && !takeOver(_tempFd, target)) {
      _inPlace = true;
    }
  }
  if (_inPlace && !_tempPath.empty()) {
    unlink(_tempPath.c_str());  // only a scratch copy from here on
    _tempPath.clear();
  }
  if (_inPlace && _tempFd < 0) {
    _tempFd = scratchFile(dir);
    if (_tempFd < 0) return errno;
  }
  return 0;
}

ssize_t AtomicFile::cookieWrite(void* cookie, const char* data, size_t size) {
  auto* self = static_cast<AtomicFile*>(cookie);
  size_t done = 0;
  while (done < size) {
    ssize_t n = ::write(self->_tempFd, data + done, size - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      if (!self->_writeError) self->_writeError = n < 0 ? errno : EIO;
      return -1;
    }
    done += static_cast<size_t>(n);
  }
  return static_cast<ssize_t>(size);
}

Outcome AtomicFile::commit() { return failure(commitTarget()); }

int AtomicFile::commitTarget() {
  if (!_stream) return EBADF;
  int err = 0;
  if (std::fflush(_stream) != 0 || std::ferror(_stream)) err = _writeError ? _writeError : EIO;
  std::fclose(_stream);
  _stream = nullptr;
  if (!err) err = _inPlace ? writeInPlace() : replace();
  if (err == 0) _tempPath.clear();  // it is the target now
  discard();
  return err;
}

int AtomicFile::replace() {
  if (fsync(_tempFd) != 0) return errno;
  const std::string dir = dirOf(_resolved);
  if (!_tempPath.empty()) {
    if (std::rename(_tempPath.c_str(), _resolved.c_str()) != 0) return errno;
    syncDirectory(dir);
    return 0;
  }
  if (!_exists) {
    if (int err = linkUnnamed(_tempFd, _resolved)) return err;
    syncDirectory(dir);
    return 0;
  }
  // A name is needed for rename; it exists only between these two calls.
  removeStaleLinks(dir, baseOf(_resolved));
  std::string name;
  int err = EEXIST;
  for (int tries = 0; tries < 100 && err == EEXIST; ++tries) {
    name = linkName(dir, baseOf(_resolved), getpid(), std::rand() % 100000);
    err = linkUnnamed(_tempFd, name);
  }
  if (err) return writeInPlace();
  if (std::rename(name.c_str(), _resolved.c_str()) != 0) {
    err = errno;
    unlink(name.c_str());
    // The target cannot be replaced after all (a mount point, say).
    return err == EBUSY || err == EPERM || err == EACCES || err == EXDEV ? writeInPlace() : err;
  }
  syncDirectory(dir);
  return 0;
}

int AtomicFile::writeInPlace() {
  off_t newSize = sizeOf(_tempFd);
  if (newSize < 0) return errno;
  int readFd = retryOpen(_resolved.c_str(), O_RDONLY | O_NOCTTY | O_NONBLOCK);
  if (readFd < 0) return errno;  // no way to keep the old text safe
  struct stat st;
  if (fstat(readFd, &st) != 0) {
    int err = errno;
    close(readFd);
    return err;
  }
  if (!S_ISREG(st.st_mode)) {
    close(readFd);
    return kNotRegular;
  }
  off_t oldSize = st.st_size;
  std::vector<char> buf(1 << 20);
  int oldFd = scratchFile(dirOf(_resolved));
  int err = oldFd < 0 ? errno : copyRange(readFd, oldFd, oldSize, buf.data(), buf.size());
  close(readFd);
  // Room for the new text is taken before the first byte of the target
  // changes, so that a full disk refuses the save here.
  if (!err && newSize > oldSize) {
    int r = fallocate(_targetFd, FALLOC_FL_KEEP_SIZE, 0, newSize);
    if (r != 0 && errno != EOPNOTSUPP && errno != ENOSYS && errno != EINVAL) err = errno;
  }
  if (err) {
    if (oldFd >= 0) close(oldFd);
    return err;
  }

  // The copy runs in a child of its own session, so that killing this
  // process (or its process group) cannot stop it half way.
  int result[2];
  pid_t pid = -1;
  if (pipe2(result, O_CLOEXEC) == 0) {
    pid = fork();
    if (pid == 0) {
      setsid();
      signal(SIGPIPE, SIG_IGN);
      signal(SIGHUP, SIG_IGN);
      signal(SIGINT, SIG_IGN);
      signal(SIGTERM, SIG_IGN);
      int e = copyOver(_tempFd, newSize, oldFd, oldSize, _targetFd, buf.data(), buf.size());
      if (::write(result[1], &e, sizeof e) < 0) { /* nobody is waiting */ }
      _exit(0);
    }
    close(result[1]);
    if (pid < 0) close(result[0]);
  }
  if (pid < 0) {
    err = copyOver(_tempFd, newSize, oldFd, oldSize, _targetFd, buf.data(), buf.size());
  } else {
    ssize_t n;
    do n = ::read(result[0], &err, sizeof err);
    while (n < 0 && errno == EINTR);
    if (n != static_cast<ssize_t>(sizeof err)) err = EIO;
    close(result[0]);
    int status;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
  }
  close(oldFd);
  return err;
}

void AtomicFile::closeAll() {
  if (_stream) {
    std::fclose(_stream);
    _stream = nullptr;
  }
  if (_tempFd >= 0) close(_tempFd);
  if (_targetFd >= 0) close(_targetFd);
  _tempFd = _targetFd = -1;
}

void AtomicFile::discard() {
  closeAll();
  if (!_tempPath.empty()) {
    unlink(_tempPath.c_str());
    _tempPath.clear();
  }
  if (_signalSaved) {
    sigaction(SIGXFSZ, &_oldXfsz, nullptr);
    _signalSaved = false;
  }
}
