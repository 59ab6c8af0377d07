// BuildInput: what a build reads (the idb, the spec and the source root),
// loaded the one way that the distribution builder and `tamblin-cli check`
// share, and the pre-build check over it.
//
// Records keep the line of the idb file they were read from, and spec nodes
// the file and line of their name, so that every problem found later can be
// reported as "FILE:LINE: message".
#ifndef TAMBLIN_PKG_BUILDINPUT_H
#define TAMBLIN_PKG_BUILDINPUT_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "filelist/InstallCheck.h"
#include "idb/Idb.h"
#include "util/Outcome.h"

class Reporter;
class SpecGraphModel;

class BuildInput {
 public:
  /// Spec reading messages go to reporter, which must outlive this object.
  explicit BuildInput(Reporter* reporter);
  ~BuildInput();
  BuildInput(const BuildInput&) = delete;
  BuildInput& operator=(const BuildInput&) = delete;

  /// The source root: given, else "SBASE", else the current directory,
  /// normalized.  Fails when it is not a directory:
  /// "Source Root '%s' is not a directory."
  Outcome setSourceRoot(const std::string& given);
  const std::string& sourceRoot() const { return _sourceRoot; }

  /// Reads the idb file; the messages are those of Idb::open ("Couldn't
  /// open idb '%s' (%s)." and "Couldn't read idb '%s' (%s on line %d).").
  Outcome loadIdb(const std::string& file);
  /// Reads the spec file; false when it could not be read whole (the reader
  /// has said why through the reporter).
  bool loadSpec(const std::string& file);

  const Idb& idb() const { return _idb; }
  const std::string& idbFile() const { return _idbFile; }
  /// Line of the idb file that record i (zero-based) was read from.
  int recordLine(int i) const { return _lines[i]; }
  /// "FILE:LINE" of record i.
  std::string recordWhere(int i) const;
  bool hasSpec() const { return _haveSpec; }
  const SpecGraphModel& spec() const { return *_spec; }
  const std::string& specFile() const { return _specFile; }

  /// The subsystems of the spec as the install check takes them.
  std::vector<InstallCheck::Subsystem> subsystems() const;
  /// The install check over the loaded input (with the spec's subsystems
  /// when a spec was loaded).
  InstallCheck installCheck() const;

 private:
  std::unique_ptr<SpecGraphModel> _spec;
  bool _haveSpec = false;
  std::string _specFile;
  Idb _idb;
  std::string _idbFile;
  std::vector<int> _lines;
  std::string _sourceRoot;
};

#endif
