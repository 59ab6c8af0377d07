#include "build/DistDirCheck.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include "util/Utils.h"

namespace {

std::string format(const char* fmt, const std::vector<std::string>& args) {
  std::string out;
  size_t next = 0;
  for (const char* p = fmt; *p; ++p) {
    if (p[0] == '%' && p[1] == 's' && next < args.size()) {
      out += args[next++];
      ++p;
    } else {
      out += *p;
    }
  }
  return out;
}

}  // namespace

Outcome checkDistDir(DistDirUse use, const std::string& file, const std::string& distDir) {
  if (use == DistDirUse::Save) {
    if (!distDir.empty() && samePath(mypathdirname(file), distDir))
      return Outcome::error(
          "Save target directory matches Distribution Directory.\n"
          "The build operation creates a binary version of the idb file in\n"
          "the distribution directory.  Pick another directory to save your\n"
          "ascii files into.");
    return Outcome::success();
  }
  const std::string dist = normalize(distDir);
  if (samePath(dist, mypathdirname(normalize(file))))
    return Outcome::error(format(
        "Illegal Distribution Directory.  The build operation creates\n"
        "a binary version of the idb file in the distribution directory.\n"
        "Pick another directory to avoid overwriting '%s'.",
        {file}));
  struct stat st;
  if (::stat(dist.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) {
    if (::mkdir(dist.c_str(), 0777) != 0) {
      const int err = errno;
      const std::string why = std::strerror(err);
      return Outcome::error(format(
          "Distrubution Directory '%s' does not exist. An attempt to\n"
          "create yielded '%s'.\n"
          "Enter the following in a shell window,\n"
          "and try again:\n"
          "su\n"
          "mkdir -p %s\n"
          "chmod 777 %s",
          {dist, why, dist, dist}),
          err);
    }
  }
  return Outcome::success();
}
