// BuildCommand: the command line of the distribution-build program.
//
// The Build panel gathers the roots, the file names and the toggles, and
// this class turns them into the program's arguments and the line that the
// message log shows.  The option names and their order are fixed by the
// build program: "-rbase", "-sbase", "-idb", "-spec", "-dist" (each left out
// when its value is empty), then "-verbose", "-nocompress", "-nostrip" (each
// only when set), then the action.
#ifndef TAMBLIN_BUILD_BUILDCOMMAND_H
#define TAMBLIN_BUILD_BUILDCOMMAND_H

#include <string>
#include <vector>

/// The distribution-build program.
extern const char* const kBuildProgram;
/// The two actions: a full build and a test build.
extern const char* const kBuildAll;
extern const char* const kBuildDryrun;

struct BuildOptions {
  std::string destRoot;    // "-rbase"
  std::string sourceRoot;  // "-sbase"
  std::string idbName;     // "-idb"
  std::string specName;    // "-spec"
  std::string distDir;     // "-dist"
  bool verbose = false;
  bool noCompress = false;
  bool noStrip = false;
  std::string action = kBuildAll;  // kBuildAll or kBuildDryrun
};

class BuildCommand {
 public:
  explicit BuildCommand(const BuildOptions& options);

  /// The program and its arguments, one value per element: a value with
  /// blanks in it stays one argument.
  const std::vector<std::string>& argv() const { return _argv; }
  /// The command as the message log shows it: the arguments joined by one
  /// blank, without any quoting.
  std::string text() const;

 private:
  std::vector<std::string> _argv;
};

#endif
