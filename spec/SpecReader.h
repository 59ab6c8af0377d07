// Reading a spec file into a SpecGraphModel.
#ifndef TAMBLIN_SPEC_SPECREADER_H
#define TAMBLIN_SPEC_SPECREADER_H

#include <string>

class Reporter;
class SpecGraphModel;
struct SpecReadReport;

/// Parses the spec file at path (with its includes) and appends its
/// products to graph.  Returns false, having logged why, when the file
/// cannot be read at all; otherwise true, also after syntax errors (what was
/// read before an error stays in the graph).  report, if given, says what
/// went wrong.
bool readSpecFile(SpecGraphModel& graph, Reporter& reporter, const std::string& path,
                  SpecReadReport* report);

/// Name of a token number for traces: "WORD", "'('", or "-unknown-".
const char* specTokenName(int token);
/// Text of a grammar rule for traces ("-no such reduction-" for 0 and any
/// number that is not a rule).
const char* specRuleText(int rule);

#endif
