// Fuzzes the readers of a subsystem's rules and mapping texts, which come
// from spec files and from what the user types into the detail panel.
#include <cstddef>
#include <cstdint>
#include <string>

#include "spec/SpecMapping.h"
#include "spec/SpecRules.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  SpecRules rules(text);
  for (const SpecRule& rule : rules.rules())
    if (rule.targets.empty()) __builtin_trap();  // a kept rule always names something
  SpecMapping mapping(text);
  if (!mapping.error().empty() && !mapping.words().empty()) __builtin_trap();
  (void)mapping.matches(text);
  (void)SpecMapping(mapping.dump()).dump();
  return 0;
}
