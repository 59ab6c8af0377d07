#include "pkg/ForgesetCommand.h"

#include <map>
#include <set>

#include "build/DistDirCheck.h"
#include "pkg/AptRepository.h"
#include "pkg/BuildInput.h"
#include "pkg/DebWriter.h"
#include "pkg/PackagePlan.h"
#include "spec/SpecGraphModel.h"
#include "util/Reporter.h"
#include "util/Utils.h"

namespace {

const char kUsage[] =
    "usage: forgeset [-rbase DIR] [-sbase DIR] -idb FILE -spec FILE [-dist DIR]\n"
    "                [-verbose] [-nocompress] [-nostrip] [-maintainer \"Name <mail>\"]\n"
    "                [-product NAME] -all|-dryrun\n"
    "       forgeset -help\n"
    "\n"
    "Builds Debian packages and a flat apt repository from a spec and an idb.\n"
    "\n"
    "  -rbase DIR     files install at DIR/dstpath (default /)\n"
    "  -sbase DIR     files are read from DIR/srcpath (default $SBASE, else .)\n"
    "  -idb FILE      the installation database\n"
    "  -spec FILE     the product specification\n"
    "  -dist DIR      where the packages and the repository index go (needed by -all)\n"
    "  -verbose       also report attributes that mean nothing on Linux\n"
    "  -nocompress    write uncompressed archive members\n"
    "  -nostrip       strip no executable or shared object\n"
    "  -maintainer M  the Maintainer field (default from DEBFULLNAME and DEBEMAIL)\n"
    "  -product NAME  build only this product of the spec\n"
    "  -all           check, plan and build\n"
    "  -dryrun        check and print the plan; write nothing\n"
    "  -help          show this text\n"
    "\n"
    "Exit status: 0 clean, 1 problems (each a line FILE:LINE: message), 2 usage\n"
    "or unreadable input.  See forgeset(8).\n";

// Spec reader messages become output lines.
class SinkReporter : public Reporter {
 public:
  explicit SinkReporter(const ForgesetCommand::Sink& out) : _out(out) {}
  void logMessage(const std::string& line) override { _out(line); }
  void showMessages() override {}
  void error(const std::string& text) override { _out(text); }
  void warning(const std::string& text) override { _out(text); }
  bool question(const std::string&) override { return false; }
  void bell() override {}

 private:
  const ForgesetCommand::Sink& _out;
};

std::string human(std::uint64_t bytes) {
  return std::to_string(bytes) + " bytes";
}

}  // namespace

const char* ForgesetCommand::usage() { return kUsage; }

Outcome ForgesetCommand::parse(const std::vector<std::string>& args, ForgesetArgs* out) {
  BuildOptions& b = out->build;
  b.action.clear();
  const std::map<std::string, std::string*> valued = {
      {"-rbase", &b.destRoot},       {"-sbase", &b.sourceRoot}, {"-idb", &b.idbName},
      {"-spec", &b.specName},        {"-dist", &b.distDir},     {"-maintainer", &out->maintainer},
      {"-product", &out->product}};
  const std::map<std::string, bool*> flags = {
      {"-verbose", &b.verbose}, {"-nocompress", &b.noCompress}, {"-nostrip", &b.noStrip},
      {"-help", &out->help}};
  for (size_t i = 0; i < args.size(); i++) {
    const std::string& a = args[i];
    if (auto v = valued.find(a); v != valued.end()) {
      if (i + 1 >= args.size()) return Outcome::error("forgeset: " + a + " needs a value");
      *v->second = args[++i];
    } else if (auto f = flags.find(a); f != flags.end()) {
      *f->second = true;
    } else if (a == kBuildAll || a == kBuildDryrun) {
      if (!b.action.empty() && b.action != a)
        return Outcome::error("forgeset: give -all or -dryrun, not both");
      b.action = a;
    } else {
      return Outcome::error("forgeset: unknown argument '" + a + "'");
    }
  }
  if (out->help) return Outcome::success();
  if (b.action.empty()) return Outcome::error("forgeset: give -all or -dryrun");
  if (b.idbName.empty() || b.specName.empty())
    return Outcome::error("forgeset: -idb and -spec are needed");
  if (b.action == kBuildAll && b.distDir.empty())
    return Outcome::error("forgeset: -all needs -dist");
  return Outcome::success();
}

int ForgesetCommand::run(const ForgesetArgs& args, const Sink& out) {
  const BuildOptions& b = args.build;
  const bool build = b.action == kBuildAll;
  SinkReporter reporter(out);
  BuildInput input(&reporter);
  if (Outcome why = input.setSourceRoot(b.sourceRoot); !why.ok()) {
    out("forgeset: " + why.message());
    return 2;
  }
  out("checking " + b.idbName + " against " + b.specName + " (source root " +
      input.sourceRoot() + ")");
  if (Outcome why = input.loadIdb(b.idbName); !why.ok()) {
    out("forgeset: " + why.message());
    return 2;
  }
  if (!input.loadSpec(b.specName)) {
    out("forgeset: cannot read the spec " + b.specName);
    return 2;
  }
  std::string dist;
  if (build) {
    if (Outcome why = checkDistDir(DistDirUse::Build, b.idbName, b.distDir); !why.ok()) {
      out("forgeset: " + why.message());
      return 2;
    }
    dist = normalize(b.distDir);
  }

  PlanOptions options;
  options.destRoot = b.destRoot.empty() ? "/" : b.destRoot;
  options.product = args.product;
  options.maintainer = args.maintainer;
  options.verbose = b.verbose;
  options.noStrip = b.noStrip;
  PackagePlan plan(input, options);
  if (!plan.usageError().empty()) {
    out("forgeset: " + plan.usageError());
    return 2;
  }
  for (const std::string& line : plan.warnings()) out(line);
  for (const std::string& line : plan.problems()) out(line);
  if (!build || b.verbose)
    for (const std::string& line : plan.describe()) out(line);
  const size_t packages = plan.packages().size();
  if (!plan.problems().empty()) {
    out("forgeset: " + std::to_string(plan.problems().size()) + " problems in " +
        std::to_string(input.idb().count()) + " records; " +
        (build ? "nothing written" : "the build would fail"));
    return 1;
  }
  if (!build) {
    out("forgeset: check clean: " + std::to_string(packages) + " packages from " +
        std::to_string(input.idb().count()) + " records");
    return 0;
  }

  DebOptions deb;
  deb.compress = !b.noCompress;
  deb.architecture = DebWriter::buildArchitecture();
  deb.maintainer = args.maintainer.empty() ? PackagePlan::defaultMaintainer() : args.maintainer;
  deb.mtime = DebWriter::buildTime();
  deb.tempDir = dist;
  std::set<std::string> libraryDirs;
  for (const PlannedPackage& p : plan.packages())
    for (const PlannedFile& f : p.files)
      if (f.record >= 0 && f.type == 'f' && f.path.find(".so") != std::string::npos)
        libraryDirs.insert(f.source.substr(0, f.source.rfind('/')));
  deb.libraryDirs.assign(libraryDirs.begin(), libraryDirs.end());
  std::vector<DebResult> written;
  for (const PlannedPackage& p : plan.packages()) {
    DebResult result;
    if (Outcome why = DebWriter::write(p, dist, deb, &result); !why.ok()) {
      out(p.where + ": cannot build " + p.name + ": " + why.message());
      out("forgeset: the build failed");
      return 1;
    }
    out("wrote " + result.file + " (" + std::to_string(p.recordFiles()) + " files, " +
        human(result.size) + ")");
    written.push_back(std::move(result));
  }
  if (Outcome why = AptRepository::write(dist, written, deb.mtime); !why.ok()) {
    out("forgeset: " + why.message());
    return 1;
  }
  out("wrote " + dist + "/Packages, Packages.gz and Release");
  out("forgeset: built " + std::to_string(packages) + " packages in " + dist);
  return 0;
}
