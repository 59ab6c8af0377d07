// CliCommand: the one convention every tamblin-cli subcommand follows, so
// that scripts can treat them alike.
//
// - "-h" or "--help" prints the subcommand's help on standard output and
//   exits 0, whatever else is on the line.
// - Exit status: kCliOk (0) done; kCliBad (1) the input was read but is bad,
//   the check found problems, or a save was refused because its target is
//   not a regular file; kCliTrouble (2) a usage error, or a file that cannot
//   be read or written (the disk full, standard output closed).
// - Results go to standard output, or to the file given with "-o FILE"
//   ("-o -" is standard output).  A file is replaced all at once and only
//   when everything was written.
// - Messages go to standard error, never to standard output; success prints
//   none unless "-v" was given.
// - Options may come before, between or after the operands; "--" ends them.
#ifndef TAMBLIN_CLI_CLICOMMAND_H
#define TAMBLIN_CLI_CLICOMMAND_H

#include <cstdio>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "cli/CliReporter.h"

enum CliStatus { kCliOk = 0, kCliBad = 1, kCliTrouble = 2 };

class CliCommand {
 public:
  struct Spec {
    const char* name;       // "format"
    const char* arguments;  // "SPEC [-o OUT] [-v]", after "tamblin-cli NAME "
    const char* help;       // what it does, its options and exit status
    int minOperands;
    int maxOperands;
    std::vector<const char*> valueOptions;  // options taking a value ("-o", "--spec")
  };

  explicit CliCommand(Spec spec);

  /// Reads the arguments after the subcommand's name (argv[0] is the
  /// name).  Empty: go on; else the status to exit with, after the help or
  /// the usage message was printed.
  std::optional<int> parse(int argc, char** argv);

  const std::vector<std::string>& operands() const { return _operands; }
  /// The value of a value option, when given.
  std::optional<std::string> option(const std::string& name) const;
  bool verbose() const { return _verbose; }
  /// Prints the core's messages on standard error.
  CliReporter& reporter() { return _reporter; }
  /// A line on standard error, with -v only.
  void note(const std::string& line) const;

  /// The status for an input file that failed to load: kCliBad when it is
  /// a regular file that can be read (what it holds is at fault), else
  /// kCliTrouble.
  static int inputFailure(const std::string& path);

  /// Hands write the stream of the result: standard output, or the -o
  /// file, which is replaced only when everything was written.  kind names
  /// the content in messages ("spec", "idb").  Returns the exit status;
  /// every failure is reported.
  int writeResult(const char* kind, const std::function<void(std::FILE*)>& write);

 private:
  int usageError(const std::string& why);

  Spec _spec;
  std::vector<std::string> _operands;
  std::map<std::string, std::string> _options;
  bool _verbose = false;
  CliReporter _reporter;
};

#endif
