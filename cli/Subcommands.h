// The subcommands of tamblin-cli.  Each takes the arguments after its name
// (argv[0] is the subcommand's name) and returns the process exit status.
#ifndef TAMBLIN_CLI_SUBCOMMANDS_H
#define TAMBLIN_CLI_SUBCOMMANDS_H

struct Subcommand {
  const char* name;
  const char* usage;    // arguments, for --help
  const char* summary;  // one line, for --help
  int (*run)(int argc, char** argv);
};

int formatCommand(int argc, char** argv);
int sortCommand(int argc, char** argv);
int checkCommand(int argc, char** argv);

#endif
