#include "build/BuildCommand.h"

#include <utility>

const char* const kBuildProgram = "/usr/sbin/forgeset";
const char* const kBuildAll = "-all";
const char* const kBuildDryrun = "-dryrun";

BuildCommand::BuildCommand(const BuildOptions& options) : _argv{kBuildProgram} {
  const std::pair<const char*, const std::string*> valued[] = {
      {"-rbase", &options.destRoot}, {"-sbase", &options.sourceRoot}, {"-idb", &options.idbName},
      {"-spec", &options.specName},  {"-dist", &options.distDir},
  };
  for (const auto& [option, value] : valued) {
    if (value->empty()) continue;
    _argv.push_back(option);
    _argv.push_back(*value);
  }
  const std::pair<const char*, bool> flags[] = {
      {"-verbose", options.verbose}, {"-nocompress", options.noCompress}, {"-nostrip", options.noStrip}};
  for (const auto& [flag, set] : flags)
    if (set) _argv.push_back(flag);
  if (!options.action.empty()) _argv.push_back(options.action);
}

std::string BuildCommand::text() const {
  std::string line;
  for (const std::string& arg : _argv) {
    if (!line.empty()) line += ' ';
    line += arg;
  }
  return line;
}
