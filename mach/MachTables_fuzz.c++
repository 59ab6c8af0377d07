// Feeds arbitrary bytes to the machine file reader and the table builder
// and checks what every load must guarantee.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "mach/MachTables.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string text(reinterpret_cast<const char*>(data), size);
  std::vector<std::string> lines = splitMachText(text);
  for (const std::string& line : lines) {
    if (line.size() > 255 || line.find('\0') != std::string::npos) std::abort();
    if (!line.empty() && line[0] == '#') std::abort();
  }
  std::vector<Subgr_Map> subgr;
  std::vector<Mach_Map> mach;
  std::vector<Arch_Map> arch;
  int status = buildMachTables(lines, subgr, mach, arch);
  if (status != 0 && status != -1) std::abort();
  if (subgr.size() + mach.size() + arch.size() > lines.size()) std::abort();
  // Each line on its own through every parser: none may fail other than by -1.
  for (const std::string& line : lines) {
    Mach_Map m;
    Subgr_Map s;
    Arch_Map a;
    if (parse_mach(line, m) < -1 || parse_subgr(line, s) < -1 || parse_arch(line, a) < -1)
      std::abort();
  }
  return 0;
}
