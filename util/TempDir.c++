#include "util/TempDir.h"

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

TempDir::TempDir() {
  std::string pattern = (fs::temp_directory_path() / "tamblin-test-XXXXXX").string();
  if (!mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp failed");
  _path = fs::canonical(pattern).string();
}

TempDir::~TempDir() {
  std::error_code ec;
  // Tests may leave read-only directories behind; make them writable first.
  for (auto it = fs::recursive_directory_iterator(_path, ec); !ec && it != fs::end(it);
       it.increment(ec)) {
    if (it->is_directory(ec) && !it->is_symlink(ec))
      fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, ec);
  }
  fs::remove_all(_path, ec);
}

std::string TempDir::file(const std::string& rel) const { return _path + "/" + rel; }

std::string TempDir::write(const std::string& rel, const std::string& text) const {
  std::string full = file(rel);
  fs::create_directories(fs::path(full).parent_path());
  std::ofstream(full, std::ios::binary) << text;
  return full;
}

std::string TempDir::mkdir(const std::string& rel) const {
  std::string full = file(rel);
  fs::create_directories(full);
  return full;
}

std::string TempDir::read(const std::string& rel) const {
  std::ifstream in(file(rel), std::ios::binary);
  if (!in) return "<missing>";
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}
