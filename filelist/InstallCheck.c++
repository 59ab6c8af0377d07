#include "filelist/InstallCheck.h"

#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "filelist/SourceProbe.h"
#include "idb/Idb.h"

InstallCheck::InstallCheck(const Idb& idb, std::string sourceRoot)
    : _idb(idb), _sourceRoot(std::move(sourceRoot)) {}

void InstallCheck::setSubsystems(std::vector<Subsystem> subsystems) {
  _subsystems = std::move(subsystems);
  _withSpec = true;
}

std::vector<std::string> InstallCheck::mappedTags(const std::string& mapping) {
  static const std::string_view kSeparators = " \t\n()!&|";
  std::vector<std::string> words;
  size_t i = 0;
  while (i < mapping.size()) {
    i = mapping.find_first_not_of(kSeparators, i);
    if (i == std::string::npos) break;
    size_t end = mapping.find_first_of(kSeparators, i);
    if (end == std::string::npos) end = mapping.size();
    words.push_back(mapping.substr(i, end - i));
    i = end;
  }
  return words;
}

std::vector<std::string> InstallCheck::run() {
  std::vector<std::string> findings;
  const int n = _idb.count();

  std::vector<std::string_view> sources;
  sources.reserve(n);
  for (int i = 0; i < n; i++) sources.push_back(_idb[i]->srcpath());
  const std::vector<char> found = SourceProbe(_sourceRoot).exists(sources);
  int missing = 0;
  for (int i = 0; i < n; i++) {
    if (found[i]) continue;
    missing++;
    findings.push_back("not found: " + std::string(_idb[i]->srcpath()) + " (installs as " +
                       std::string(_idb[i]->dstpath()) + ")");
  }
  _summary = std::to_string(n) + " entries, " + std::to_string(missing) +
             " not found under " + _sourceRoot;
  // A record that would come back different once saved and read again
  // (a tab in a path, an attribute split in two) loses data on every save.
  int unreadable = 0;
  for (int i = 0; i < n; i++) {
    Outcome problem = _idb.storageProblem(i);
    if (problem.ok()) continue;
    unreadable++;
    findings.push_back("does not read back: " + std::string(_idb[i]->dstpath()) + " (" +
                       problem.message() + ")");
  }
  if (unreadable) _summary += ", " + std::to_string(unreadable) + " not read back the same";
  if (!_withSpec) return findings;

  std::unordered_set<std::string> mapped;
  for (const Subsystem& s : _subsystems)
    for (std::string& word : mappedTags(s.mapping)) mapped.insert(std::move(word));
  std::unordered_set<std::string_view> used;
  int unmapped = 0;
  for (int i = 0; i < n; i++) {
    std::string_view tag = _idb[i]->tag();
    if (!used.insert(tag).second || mapped.count(std::string(tag))) continue;
    unmapped++;
    findings.push_back("tag not mapped by any subsystem: " + std::string(tag));
  }
  int empty = 0;
  for (const Subsystem& s : _subsystems) {
    bool receives = false;
    for (const std::string& word : mappedTags(s.mapping)) receives = receives || used.count(word);
    if (receives) continue;
    empty++;
    findings.push_back("subsystem without files: " + s.tag);
  }
  _summary += ", " + std::to_string(unmapped) + " tags not in the spec, " + std::to_string(empty) +
              " subsystems without files";
  return findings;
}
