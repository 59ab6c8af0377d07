// SpecMapping: a subsystem's `exp` expression, which says which idb tags
// belong to the subsystem.
//
// Grammar (one or more lines; lines and juxtaposed terms are alternatives):
//
//   mapping := expr { expr }
//   expr    := term { ("|" | "||") term }
//   term    := factor { ("&" | "&&") factor }
//   factor  := "!" factor | "(" expr ")" | WORD
//
// A WORD is a run of characters other than blanks, newlines and "()!&|"
// (the same words the install check reads).  A word matches a tag that is
// equal to it, or, when it holds "*", "?" or "[", that it matches as a shell
// pattern (fnmatch).  So "exp p.sw.base" takes the records tagged p.sw.base,
// and "exp p.sw.* & !p.sw.doc" every p.sw tag but one.  (The spec lexer
// returns "(" and ")" as tokens of their own, which its grammar allows only
// after prereq: a grouped expression comes from the program's Mapping field,
// not from a spec file.)
#ifndef TAMBLIN_SPEC_SPECMAPPING_H
#define TAMBLIN_SPEC_SPECMAPPING_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

class SpecMapping {
 public:
  /// Parses text; an expression that cannot be read matches nothing and
  /// error() says why.
  explicit SpecMapping(const std::string& text);
  ~SpecMapping();
  SpecMapping(SpecMapping&&) noexcept;
  SpecMapping& operator=(SpecMapping&&) noexcept;

  /// Whether a record with this tag belongs to the subsystem.
  bool matches(std::string_view tag) const;
  /// The words of the expression in order (duplicates kept).
  const std::vector<std::string>& words() const { return _words; }
  /// "" when the text was read, else the reason ("unbalanced '('", ...).
  const std::string& error() const { return _error; }
  /// No expression at all (empty text).
  bool empty() const { return _root == nullptr && _error.empty(); }
  /// The expression with full parentheses, for tests and traces.
  std::string dump() const;

  struct Node;

 private:
  std::unique_ptr<Node> _root;
  std::vector<std::string> _words;
  std::string _error;
};

#endif
