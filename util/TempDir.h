// TempDir: a scratch directory for tests, removed with everything in it
// when the object goes away.
#ifndef TAMBLIN_UTIL_TEMPDIR_H
#define TAMBLIN_UTIL_TEMPDIR_H

#include <string>

class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  /// Absolute, canonical path of the directory (no symbolic links in it).
  const std::string& path() const { return _path; }
  /// path() + "/" + rel.
  std::string file(const std::string& rel) const;
  /// Writes text to rel (creating parent directories); returns the full path.
  std::string write(const std::string& rel, const std::string& text) const;
  /// Creates the directory rel and its parents; returns the full path.
  std::string mkdir(const std::string& rel) const;
  /// The whole content of rel, or "<missing>" when it cannot be read.
  std::string read(const std::string& rel) const;

 private:
  std::string _path;
};

#endif
