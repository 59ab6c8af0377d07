// Loading the inputs of tamblin-cli subcommands the way the program opens
// them, with the exit status of the convention (cli/CliCommand.h) when a
// file cannot be used.  The model's own messages go to its reporter.
#ifndef TAMBLIN_CLI_CLIINPUT_H
#define TAMBLIN_CLI_CLIINPUT_H

#include <functional>
#include <optional>
#include <string>

class Idb;
class SpecGraphModel;

/// Opens the spec file path into graph.  Empty when it was read whole and
/// without error; else kCliBad for errors in what was read, kCliTrouble
/// when the file or one of its includes cannot be read.
std::optional<int> loadSpec(SpecGraphModel& graph, const std::string& path);
/// The same for a spec that open reads into graph (a model owned elsewhere):
/// open returns whether the model took the file.
std::optional<int> loadSpec(const SpecGraphModel& graph, const std::string& path,
                            const std::function<bool()>& open);
/// Opens the idb file path into db; the message goes to standard error.
/// Empty on success; else kCliBad for a bad line, kCliTrouble when the
/// file cannot be read.
std::optional<int> loadIdb(Idb& db, const std::string& path);

#endif
