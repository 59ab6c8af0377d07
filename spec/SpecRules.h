// SpecRules: the relation lines of a subsystem (its `rules` text) as values.
//
// The text is what the spec reader stores and the writer writes back: one
// entry per relation, each beginning with its keyword, for example
//
//   replaces self
//   incompat other 0 oldvers
//   prereq (
//       p.sw.base 1 maxint
//       p.sw.alt 0 maxint
//   )
//   follows p.sw.base 3 3
//
// A prereq group holds triples (a subsystem and two version bounds) that are
// alternatives of one another.  In the other relations a name may be followed
// by its two bounds; a name without them means any version.  A bound is a
// decimal number, "maxint" (no upper bound) or "oldvers" (older than the
// image that carries the rule); 0 as a lower bound means no lower bound.
//
// Line breaks carry no meaning (the reader may break a group anywhere); the
// keywords are the spec lexer's and cannot be names.
#ifndef TAMBLIN_SPEC_SPECRULES_H
#define TAMBLIN_SPEC_SPECRULES_H

#include <string>
#include <vector>

struct SpecBound {
  enum Kind { None, Number, MaxInt, OldVers };
  Kind kind = None;  // None: not written
  std::string text;  // as written
  /// No restriction: not written, a lower 0, or maxint.
  bool open() const { return kind == None || kind == MaxInt || (kind == Number && text == "0"); }
};

struct SpecTarget {
  std::string name;
  SpecBound low, high;
};

struct SpecRule {
  enum Kind { Replaces, Incompat, Prereq, Follows, Updates };
  Kind kind = Replaces;
  int line = 1;  // line of the keyword within the rules text, from 1
  /// prereq: the alternatives of the group; otherwise each name in turn.
  std::vector<SpecTarget> targets;
};

struct SpecRulesError {
  int line;  // within the rules text, from 1
  std::string message;
};

class SpecRules {
 public:
  /// Parses text; what cannot be read is left out and named in errors().
  explicit SpecRules(const std::string& text);

  const std::vector<SpecRule>& rules() const { return _rules; }
  const std::vector<SpecRulesError>& errors() const { return _errors; }

  /// The keyword of a kind: "replaces", "incompat", "prereq", ...
  static const char* keyword(SpecRule::Kind kind);
  /// Reads a bound word; false when it is none of the three forms.
  static bool parseBound(const std::string& word, SpecBound* bound);

 private:
  std::vector<SpecRule> _rules;
  std::vector<SpecRulesError> _errors;
};

#endif
