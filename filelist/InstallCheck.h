// InstallCheck: what must hold before a product can be built from an idb.
//
// Every record's source must be found under the source root (as the file
// list's not-found check finds it); with a spec, every tag in the idb must be
// named by some subsystem's mapping, and every subsystem must receive at
// least one record.  A mapping names the words of its expression: maximal
// runs of characters other than blanks, newlines and "()!&|".
//
// Every record must also read back the same once written: no field may hold
// a blank, tab or newline or be empty, and the attributes must split as they
// stand (Idb::storageProblem).
//
// Findings are lines meant for people and scripts alike, one per problem,
// in a fixed order: sources (record order), records that would not read
// back (record order), unmapped tags (order of first use), empty subsystems
// (order given).
#ifndef TAMBLIN_FILELIST_INSTALLCHECK_H
#define TAMBLIN_FILELIST_INSTALLCHECK_H

#include <string>
#include <vector>

class Idb;

class InstallCheck {
 public:
  struct Subsystem {
    std::string tag;      // product.image.subsys
    std::string mapping;  // its expression, possibly several lines
  };

  /// idb must outlive the check.
  InstallCheck(const Idb& idb, std::string sourceRoot);
  /// Checks tags against these subsystems too (no spec: not called).
  void setSubsystems(std::vector<Subsystem> subsystems);

  /// Runs the check; the findings, one line each.
  std::vector<std::string> run();
  /// The last line: counts of records and of each kind of finding.
  const std::string& summary() const { return _summary; }

  /// The words of a mapping expression.
  static std::vector<std::string> mappedTags(const std::string& mapping);

 private:
  const Idb& _idb;
  std::string _sourceRoot;
  bool _withSpec = false;
  std::vector<Subsystem> _subsystems;
  std::string _summary;
};

#endif
