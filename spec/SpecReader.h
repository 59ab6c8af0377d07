// Reading spec text into a SpecGraphModel, and whether a field value would
// survive being written and read back.
#ifndef TAMBLIN_SPEC_SPECREADER_H
#define TAMBLIN_SPEC_SPECREADER_H

#include <string>

class Reporter;
class SpecGraphModel;
#include "util/Outcome.h"

struct SpecReadReport;

/// Parses the spec file at path (with its includes) and appends its
/// products to graph.  Fails with the message it logged when the file
/// cannot be read at all; otherwise succeeds, also after syntax errors (what
/// was read before an error stays in the graph).  report, if given, says
/// what went wrong.
Outcome readSpecFile(SpecGraphModel& graph, Reporter& reporter, const std::string& path,
                  SpecReadReport* report);

/// Parses text as a spec file named name in messages, appending its products
/// to graph.  include and setenv are errors here: nothing outside the text
/// is read or changed.
void readSpecText(SpecGraphModel& graph, Reporter& reporter, const std::string& name,
                  const std::string& text, SpecReadReport* report);

/// The node fields that are written to spec files as text.
enum class SpecField { kName, kId, kVersion, kRules, kMapping };

/// What checkSpecField found.
struct SpecFieldCheck {
  bool ok = false;
  /// ok: the value to store: the given one, or the same words as the reader
  /// lays them out (blanks, line breaks and prereq groups).
  std::string value;
  /// Not ok: why the value cannot be saved, as a phrase for the user.
  std::string reason;
};

/// Whether value, stored in field of a node at level (1 product, 2 image, 3
/// subsystem), is written to spec text that reads back to the same value.
/// Decided by writing it with the spec writer and reading it back with the
/// spec reader (no file, no include, no environment change).  Not
/// re-entrant: never call it while a spec is being read.
SpecFieldCheck checkSpecField(SpecField field, int level, const std::string& value);
/// The field's label in messages: "Name", "Description", "Version", "Rules",
/// "Mapping".
const char* specFieldLabel(SpecField field);

/// Name of a token number for traces: "WORD", "'('", or "-unknown-".
const char* specTokenName(int token);
/// Text of a grammar rule for traces ("-no such reduction-" for 0 and any
/// number that is not a rule).
const char* specRuleText(int rule);

#endif
