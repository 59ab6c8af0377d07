// DebWriter: one planned package as a Debian binary package file.
//
// A .deb is an ar archive of "debian-binary" ("2.0\n"), "control.tar.xz"
// (control, md5sums, conffiles, maintainer scripts) and "data.tar.xz" (the
// files), or ".tar" members without compression.  The tar members are
// written with libarchive straight from the source files, carrying each
// record's owner, group and mode by name, so no root and no staging copy are
// needed.  Only an ELF file that is to be stripped goes through a temporary
// copy (strip -o).  Every time stamp is the build time, which with
// SOURCE_DATE_EPOCH set makes two builds byte for byte equal.
#ifndef TAMBLIN_PKG_DEBWRITER_H
#define TAMBLIN_PKG_DEBWRITER_H

#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

#include "util/Outcome.h"

struct PlannedPackage;

struct DebOptions {
  bool compress = true;      // xz; false: plain tar members
  std::string architecture;  // of the build machine, for packages with ELF files
  std::string maintainer;
  std::time_t mtime = 0;     // every time stamp in the archives
  std::string tempDir;       // where stripped copies go
  /// Where the build's own shared libraries lie (for dpkg-shlibdeps).
  std::vector<std::string> libraryDirs;
};

struct DebResult {
  std::string file;          // the .deb's path
  std::string fileName;      // its name in the distribution directory
  std::string control;       // the control file's text
  std::string architecture;  // as written in control
  std::uint64_t size = 0;    // bytes of the .deb
  std::string md5, sha256;   // of the .deb, lower-case hex
  int files = 0;             // archive entries of the data member
};

class DebWriter {
 public:
  /// Writes package into the directory dist; fails saying why (a partly
  /// written file is removed).
  static Outcome write(const PlannedPackage& package, const std::string& dist,
                       const DebOptions& options, DebResult* result);

  /// The control file of package.
  static std::string controlText(const PlannedPackage& package, const std::string& architecture,
                                 const std::string& maintainer, std::uint64_t installedKiB);

  /// The packages that the ELF files need at run time, as dpkg-shlibdeps
  /// says (none when it cannot tell).
  static std::vector<std::string> sharedLibraryDepends(const std::vector<std::string>& elfFiles,
                                                       const DebOptions& options);

  /// The build machine's architecture as dpkg names it ("amd64").
  static std::string buildArchitecture();
  /// The build time: SOURCE_DATE_EPOCH when set, else now.
  static std::time_t buildTime();
  /// text gzip-compressed at the best level, with no name and no time in
  /// the header (the same text gives the same bytes).
  static std::string gzip(const std::string& text);
  /// Lower-case hexadecimal of n bytes.
  static std::string hex(const std::uint8_t* bytes, size_t n);

  /// What an ELF file is, from its header: 0 not ELF (or unreadable), 1 an
  /// executable (with an interpreter, PIE included), 2 a shared object, 3
  /// another ELF object.
  static int elfKind(const std::string& path);
};

#endif
