#include "util/Utils.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

// Enough for any sane chain of links; a loop stops resolving here instead
// of growing the path for ever.
constexpr int kMaxLinkSubstitutions = 40;

std::string currentDirectory() {
  std::vector<char> buf(4096);
  for (;;) {
    if (getcwd(buf.data(), buf.size())) return buf.data();
    if (errno != ERANGE) break;
    buf.resize(buf.size() * 2);
  }
  // The directory we are in has gone away; the root is the only safe anchor.
  return "/";
}

// The text of the symbolic link path, or false when path is not a link.
bool readLink(const std::string& path, std::string& text) {
  std::vector<char> buf(4096);
  for (;;) {
    ssize_t n = readlink(path.c_str(), buf.data(), buf.size());
    if (n < 0) return false;
    if (static_cast<std::size_t>(n) < buf.size()) {
      text.assign(buf.data(), static_cast<std::size_t>(n));
      return true;
    }
    buf.resize(buf.size() * 2);
  }
}

void dropLastComponent(std::string& done) {
  std::size_t slash = done.rfind('/');
  done.erase(slash == std::string::npos ? 0 : slash);
}

std::string withTrailingSlash(const std::string& dir) { return dir == "/" ? dir : dir + "/"; }

bool startsWith(const std::string& s, const std::string& prefix) {
  return s.compare(0, prefix.size(), prefix) == 0;
}

}  // namespace

std::string normalize(const std::string& path) {
  std::string abs;
  if (path.empty()) {
    abs = currentDirectory();
  } else if (path[0] == '~') {
    abs = mypathexpandtilde(path);
  } else {
    abs = path;
  }
  // An expansion may still leave a relative text (unknown user, unset
  // variable or home); it is taken from the current directory like any
  // other relative path rather than refused.
  if (abs.empty() || abs[0] != '/') abs = currentDirectory() + "/" + abs;
  return dcanon(abs);
}

std::string dcanon(const std::string& path, std::size_t start) {
  if (path.empty() || path[0] != '/') {
    std::fprintf(stderr, "Utils.c++: dcanon of a relative path \"%s\"\n", path.c_str());
    std::abort();
  }
  if (start > path.size()) start = path.size();

  // done: the canonical part so far, without a trailing slash ("" is the
  // root).  rest: what is still to walk, from pos.
  std::string done = path.substr(0, start);
  while (!done.empty() && done.back() == '/') done.pop_back();
  std::string rest = path.substr(start);
  std::size_t pos = 0;
  int substitutionsLeft = kMaxLinkSubstitutions;

  while (pos < rest.size()) {
    if (rest[pos] == '/') {
      ++pos;
      continue;
    }
    std::size_t end = rest.find('/', pos);
    if (end == std::string::npos) end = rest.size();
    std::size_t len = end - pos;
    if (len == 1 && rest[pos] == '.') {
      pos = end;
    } else if (len == 2 && rest.compare(pos, 2, "..") == 0) {
      std::string target;
      if (!done.empty() && substitutionsLeft > 0 && readLink(done, target)) {
        // Put the link's text in place of the last component and walk it
        // again, so that the ".." applies to where the link leads.
        --substitutionsLeft;
        if (!target.empty() && target[0] == '/')
          done.clear();
        else
          dropLastComponent(done);
        rest = target + "/" + rest.substr(pos);
        pos = 0;
      } else {
        dropLastComponent(done);
        pos = end;
      }
    } else {
      done += '/';
      done.append(rest, pos, len);
      pos = end;
    }
  }
  return done.empty() ? "/" : done;
}

bool samePath(const std::string& path1, const std::string& path2) {
  if (path1 == path2) return true;
  struct stat st1, st2;
  if (stat(path1.c_str(), &st1) != 0 || stat(path2.c_str(), &st2) != 0) return false;
  // Device numbers are left out on purpose: the checks built on this (a
  // save target against the distribution directory) have always compared
  // inodes alone, and their answers must not change.
  return st1.st_mode != 0 && st2.st_mode != 0 && st1.st_ino == st2.st_ino;
}

std::string trimCurrent(const std::string& path) {
  if (const char* pwd = std::getenv("PWD")) {
    std::string prefix = withTrailingSlash(pwd);
    if (startsWith(path, prefix)) return path.substr(prefix.size());
  }
  std::string prefix = withTrailingSlash(currentDirectory());
  if (startsWith(path, prefix)) return path.substr(prefix.size());
  return path;
}

std::size_t utf8Prefix(std::string_view text, std::size_t limit) {
  if (text.size() <= limit) return text.size();
  std::size_t end = limit;
  // Continuation bytes are 10xxxxxx: back to the first byte of the character.
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  return end;
}

bool isShellPattern(const char* s) {
  return s && *s && std::strpbrk(s, "*?[]~$") != nullptr;
}

bool isShellPattern(const std::string& s) {
  return s.find_first_of("*?[]~$") != std::string::npos;
}

std::string mypathbasename(const std::string& path) {
  std::size_t end = path.find_last_not_of('/');
  if (end == std::string::npos) return "";
  std::size_t slash = path.rfind('/', end);
  std::size_t begin = slash == std::string::npos ? 0 : slash + 1;
  return path.substr(begin, end + 1 - begin);
}

std::string mypathdirname(const std::string& path) {
  std::size_t end = path.find_last_not_of('/');
  std::size_t slash = end == std::string::npos ? std::string::npos : path.rfind('/', end);
  if (slash == std::string::npos) return !path.empty() && path[0] == '/' ? "/" : ".";
  std::size_t runStart = path.find_last_not_of('/', slash);
  // A separator that starts the path leaves nothing before it: "/usr" -> "".
  return runStart == std::string::npos ? "" : path.substr(0, runStart + 1);
}

std::string mypathexpandtilde(const std::string& path) {
  std::string result = path;
  if (!path.empty() && path[0] == '~') {
    std::size_t nameEnd = path.find('/');
    if (nameEnd == std::string::npos) nameEnd = path.size();
    std::string home;
    if (nameEnd == 1) {
      const char* env = std::getenv("HOME");
      home = env ? env : "";
    } else {
      std::string user = path.substr(1, nameEnd - 1);
      struct passwd* pw = getpwnam(user.c_str());
      if (!pw) return path;
      home = pw->pw_dir ? pw->pw_dir : "";
    }
    result = home + path.substr(nameEnd);
  }
  if (!result.empty() && result[0] == '$') {
    std::size_t nameEnd = result.find('/');
    if (nameEnd == std::string::npos) nameEnd = result.size();
    std::string name = result.substr(1, nameEnd - 1);
    if (const char* value = std::getenv(name.c_str())) result = value + result.substr(nameEnd);
  }
  return result;
}

void outOfMemory() {
  std::fputs("Malloc failed\n", stderr);
  std::exit(-1);
}

std::string notRegularFileMessage(const std::string& path) {
  struct stat st;
  if (::stat(path.c_str(), &st) != 0 || S_ISREG(st.st_mode)) return std::string();
  return "'" + path + "' is not a regular file.\nTry again.";
}
