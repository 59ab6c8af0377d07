// PackagePlan: which Debian packages a build makes from the spec and the idb,
// and every problem that stops it.
//
// One binary package per subsystem (the records whose tags its `exp`
// mapping matches) and, per product, one package named after the product
// that depends on its required and default subsystems and suggests the
// others.  Names follow DebName; versions are the images' versions.
//
// Relations come from the subsystems' rules (SpecRules):
//   prereq (a group)  Depends, the group's subsystems as alternatives
//   incompat          Conflicts
//   replaces X        Replaces and Breaks ("replaces self" says nothing)
//   follows           Depends on the patched subsystem within its bounds
//   updates           Replaces (the updated subsystem's files may be taken over)
// A lower bound n (not 0) is ">= n", an upper bound n "<= n", an upper
// oldvers "<< " the image's version; 0 and maxint bound nothing.  Debian gives
// an alternative, a Conflicts, Replaces or Breaks entry only one version, so
// where two would be needed one is kept and a warning says which was dropped.
//
// Problems and warnings are lines "FILE:LINE: message" naming the idb record
// or the spec node (its name's line) that causes them; warnings read
// "FILE:LINE: warning: ...".  The plan never reads the files' contents (the
// writer does): it checks that sources exist and takes their sizes.
#ifndef TAMBLIN_PKG_PACKAGEPLAN_H
#define TAMBLIN_PKG_PACKAGEPLAN_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "pkg/RecordAttrs.h"

class BuildInput;
class SpecNode;

struct PlanOptions {
  std::string destRoot = "/";  // files install at destRoot + "/" + dstpath
  std::string product;         // build only this product ("" all)
  std::string maintainer;      // "Name <mail>"
  bool verbose = false;        // report attributes ignored on Linux
  bool noStrip = false;        // strip nothing
};

struct PlannedFile {
  std::string path;  // in the archive: "./usr/bin/x"
  char type = 'f';   // f d l b c p
  std::uint32_t mode = 0;
  std::string owner, group;
  std::string source;      // f: the file to read
  std::string linkTarget;  // l
  unsigned major = 0, minor = 0;
  std::uint64_t size = 0;  // f: the source's size
  bool conffile = false;
  enum Strip { Keep, StripExecutable, StripShared } strip = Keep;  // if the content is ELF
  bool stripDso = false;  // the record allows stripping a shared object
  int record = -1;        // the idb record, -1 for directories and documents made here
  std::string content;    // files made here (changelog, ...): the bytes
  bool generated = false;
};

struct PlannedPackage {
  std::string name, version, tag;  // tag: the subsystem's, or the product's name
  bool product = false;
  std::string section = "misc", priority = "optional";
  std::string description;               // one line
  std::vector<std::string> longDescription;  // lines, without the leading blank
  std::vector<std::string> depends, conflicts, replaces, breaks, suggests;
  std::vector<PlannedFile> files;        // sorted by path, parents before children
  std::vector<std::string> preops, postops, exitops, removeops;  // commands, record order
  std::string preinst, postinst, postrm;  // scripts made of them, "" when none
  std::string where;                      // "FILE:LINE" of its spec node

  /// Files that come from idb records.
  int recordFiles() const;
  /// Their bytes (sources' sizes).
  std::uint64_t recordBytes() const;
};

class PackagePlan {
 public:
  /// Plans the build of what input holds.  REQUIRES: input has a spec.
  PackagePlan(const BuildInput& input, const PlanOptions& options);
  ~PackagePlan();
  PackagePlan(const PackagePlan&) = delete;
  PackagePlan& operator=(const PackagePlan&) = delete;

  const std::vector<PlannedPackage>& packages() const { return _packages; }
  std::vector<PlannedPackage>& packages() { return _packages; }
  /// Lines that make the build fail, in the order found.
  const std::vector<std::string>& problems() const { return _problems; }
  /// Lines that do not (dropped bounds, ignored attributes with verbose).
  const std::vector<std::string>& warnings() const { return _warnings; }
  /// Set when the options name no product of the spec (a usage error).
  const std::string& usageError() const { return _usageError; }

  /// The plan as -dryrun prints it: per package a line with name, version,
  /// file count and size, then its relations.
  std::vector<std::string> describe() const;

  /// The maintainer as Debian's tools default it: DEBFULLNAME and DEBEMAIL
  /// ("Name <mail>"), DEBEMAIL alone when it holds both, else the user.
  static std::string defaultMaintainer();

 private:
  struct Subsystem;
  void planSubsystems();
  void assignRecords();
  void planRecord(int i, PlannedPackage& package);
  void planRelations(Subsystem& s, PlannedPackage& package);
  void planProducts();
  void finish(PlannedPackage& package);
  std::string resolve(const Subsystem& s, const std::string& name, bool* known) const;
  void problem(const std::string& where, const std::string& message);
  void warning(const std::string& where, const std::string& message);

  const BuildInput& _input;
  PlanOptions _options;
  std::string _root;  // "./" + destRoot's relative part
  std::vector<Subsystem*> _subsystems;
  std::vector<std::unique_ptr<Subsystem>> _owned;
  std::vector<PlannedPackage> _packages;
  std::vector<std::string> _problems, _warnings;
  std::string _usageError;
  std::string _copyright;  // the product's copyright file, "" when it ships none
};

#endif
