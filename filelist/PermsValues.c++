#include "filelist/PermsValues.h"

#include <grp.h>
#include <pwd.h>
#include <sys/types.h>

#include <cstdio>
#include <cstdlib>

#include "util/Utils.h"

namespace {

struct Symbol {
  unsigned long mask;
  char c;
};

// One position of the symbolic form: the first pair whose bits are all set
// wins, else the default.  The special bits come first so that they take
// the place of x.
struct Position {
  Symbol pairs[3];
  int count;
  char otherwise;
};

const Position kPositions[9] = {
    {{{0400, 'r'}}, 1, '-'},
    {{{0200, 'w'}}, 1, '-'},
    {{{04100, 's'}, {0100, 'x'}, {04000, 'S'}}, 3, '-'},
    {{{040, 'r'}}, 1, '-'},
    {{{020, 'w'}}, 1, '-'},
    {{{02010, 's'}, {010, 'x'}, {02000, 'l'}}, 3, '-'},
    {{{04, 'r'}}, 1, '-'},
    {{{02, 'w'}}, 1, '-'},
    {{{01001, 't'}, {01, 'x'}, {01000, 'T'}}, 3, '-'},
};

}  // namespace

std::string PermsValues::pmode(unsigned long mode) {
  std::string out;
  for (const Position& p : kPositions) {
    char c = p.otherwise;
    for (int i = 0; i < p.count; i++) {
      if ((mode & p.pairs[i].mask) == p.pairs[i].mask) {
        c = p.pairs[i].c;
        break;
      }
    }
    out += c;
  }
  return out;
}

unsigned long PermsValues::parseMode(const std::string& text) {
  return std::strtoul(text.c_str(), nullptr, 8);
}

std::string PermsValues::formatMode(unsigned long mode) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "0%lo", mode);
  return buf;
}

PermsValues::Identity PermsValues::lookUpOwner(const std::string& text) {
  Identity out;
  if (struct passwd* pw = getpwnam(text.c_str()))
    out.id = static_cast<long>(pw->pw_uid);
  else
    out.id = std::strtol(text.c_str(), nullptr, 10);
  struct passwd* byId = getpwuid(static_cast<uid_t>(out.id));
  out.name = byId && byId->pw_name ? byId->pw_name : "unknown";
  return out;
}

PermsValues::Identity PermsValues::lookUpGroup(const std::string& text) {
  Identity out;
  if (struct group* gr = getgrnam(text.c_str()))
    out.id = static_cast<long>(gr->gr_gid);
  else
    out.id = std::strtol(text.c_str(), nullptr, 10);
  struct group* byId = getgrgid(static_cast<gid_t>(out.id));
  out.name = byId && byId->gr_name ? byId->gr_name : "unknown";
  return out;
}

PermsValues::Destination PermsValues::splitDestination(const std::string& dstpath) {
  Destination out;
  out.dir = mypathdirname(dstpath);
  if (out.dir == ".") out.dir.clear();
  out.file = mypathbasename(dstpath);
  return out;
}

std::string PermsValues::checkDestDir(const std::string& dir) {
  if (dir.empty() || dir[0] != '/') return std::string();
  return "Destinination Directory '" + dir +
         "' is fully qualified.\nStrip the leading slash at least.  The Destination Tree Root\n"
         "will be prepended at install time.";
}
