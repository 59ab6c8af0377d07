#include "pkg/BuildInput.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "spec/SpecGraphModel.h"
#include "util/Utils.h"

BuildInput::BuildInput(Reporter* reporter) : _spec(std::make_unique<SpecGraphModel>(reporter)) {}

BuildInput::~BuildInput() = default;

Outcome BuildInput::setSourceRoot(const std::string& given) {
  const char* sbase = std::getenv("SBASE");
  const std::string root = normalize(!given.empty() ? given : sbase ? sbase : "");
  struct stat st;
  if (::stat(root.c_str(), &st) != 0 || !S_ISDIR(st.st_mode))
    return Outcome::error("Source Root '" + root + "' is not a directory.");
  _sourceRoot = root;
  return Outcome::success();
}

// Line by line through the idb's own reader, so that each record knows the
// line it came from.
Outcome BuildInput::loadIdb(const std::string& file) {
  _idb.clear();
  _lines.clear();
  _idbFile = file;
  std::FILE* f = std::fopen(file.c_str(), "r");
  auto cannotOpen = [&file](int err) {
    return Outcome::error("Couldn't open idb '" + file + "' (" + std::strerror(err) + ").", err);
  };
  if (!f) return cannotOpen(errno);
  std::string text;
  char chunk[65536];
  for (size_t n; (n = std::fread(chunk, 1, sizeof chunk, f)) > 0;) text.append(chunk, n);
  const int err = std::ferror(f) ? errno : 0;
  std::fclose(f);
  if (err) return cannotOpen(err);
  _idb.setName(file);
  size_t pos = 0;
  int line = 0;
  while (pos < text.size()) {
    size_t end = text.find('\n', pos);
    end = end == std::string::npos ? text.size() : end + 1;
    line++;
    const int before = _idb.count();
    Outcome status = _idb.readLine(std::string_view(text).substr(pos, end - pos));
    if (!status.ok())
      return Outcome::error("Couldn't read idb '" + file + "' (" + status.message() + " on line " +
                            std::to_string(line) + ").");
    if (_idb.count() > before) _lines.push_back(line);
    pos = end;
  }
  return Outcome::success();
}

bool BuildInput::loadSpec(const std::string& file) {
  _specFile = file;
  _haveSpec = _spec->open(file).ok() && _spec->lastReadReport().clean();
  return _haveSpec;
}

std::string BuildInput::recordWhere(int i) const {
  return _idbFile + ":" + std::to_string(_lines[i]);
}

std::vector<InstallCheck::Subsystem> BuildInput::subsystems() const {
  std::vector<InstallCheck::Subsystem> out;
  for (const SpecNode* node : _spec->nodes())
    if (node->level() == 3) out.push_back({node->getTag(), node->mapping()});
  return out;
}

InstallCheck BuildInput::installCheck() const {
  InstallCheck check(_idb, _sourceRoot);
  if (_haveSpec) check.setSubsystems(subsystems());
  return check;
}
