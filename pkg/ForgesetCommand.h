// ForgesetCommand: the distribution builder's command line and its run.
//
//   forgeset [-rbase DIR] [-sbase DIR] -idb FILE -spec FILE [-dist DIR]
//            [-verbose] [-nocompress] [-nostrip] [-maintainer "Name <mail>"]
//            [-product NAME] -all|-dryrun
//   forgeset -help
//
// The options are those BuildCommand composes (same names, a value each for
// the five valued ones), in any order, plus -maintainer, -product and -help.
// The run writes one line per event as it happens; problems are lines
// "FILE:LINE: message".  Exit status: 0 clean, 1 problems, 2 usage or
// unreadable input.
#ifndef TAMBLIN_PKG_FORGESETCOMMAND_H
#define TAMBLIN_PKG_FORGESETCOMMAND_H

#include <functional>
#include <string>
#include <vector>

#include "build/BuildCommand.h"
#include "util/Outcome.h"

struct ForgesetArgs {
  BuildOptions build;      // program unused; action kBuildAll or kBuildDryrun
  std::string maintainer;  // "" : DEBFULLNAME and DEBEMAIL
  std::string product;     // "" : every product
  bool help = false;
};

class ForgesetCommand {
 public:
  using Sink = std::function<void(const std::string& line)>;

  /// Reads the arguments after the program name into out; fails with the
  /// usage error.
  static Outcome parse(const std::vector<std::string>& args, ForgesetArgs* out);
  /// The text of -help.
  static const char* usage();
  /// Runs the build; every line goes to out as it happens.  Returns the exit
  /// status.
  static int run(const ForgesetArgs& args, const Sink& out);
};

#endif
