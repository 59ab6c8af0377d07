#include "spec/SpecRules.h"

#include <cstring>

namespace {

struct Token {
  std::string text;
  int line;
};

// Words are runs of anything but white space and the group's parentheses,
// which are tokens of their own (as the spec lexer returns them).
std::vector<Token> tokenize(const std::string& text) {
  std::vector<Token> tokens;
  int line = 1;
  size_t i = 0;
  while (i < text.size()) {
    char c = text[i];
    if (c == '\n') {
      line++;
      i++;
    } else if (c == ' ' || c == '\t' || c == '\r') {
      i++;
    } else if (c == '(' || c == ')') {
      tokens.push_back({std::string(1, c), line});
      i++;
    } else {
      size_t end = text.find_first_of(" \t\r\n()", i);
      if (end == std::string::npos) end = text.size();
      tokens.push_back({text.substr(i, end - i), line});
      i = end;
    }
  }
  return tokens;
}

const char* const kKeywords[] = {"replaces", "incompat", "prereq", "follows", "updates"};

int keywordKind(const std::string& word) {
  for (int k = 0; k < 5; k++)
    if (word == kKeywords[k]) return k;
  return -1;
}

}  // namespace

const char* SpecRules::keyword(SpecRule::Kind kind) { return kKeywords[kind]; }

bool SpecRules::parseBound(const std::string& word, SpecBound* bound) {
  if (word == "maxint") {
    *bound = {SpecBound::MaxInt, word};
  } else if (word == "oldvers") {
    *bound = {SpecBound::OldVers, word};
  } else if (!word.empty() && word.find_first_not_of("0123456789") == std::string::npos) {
    *bound = {SpecBound::Number, word};
  } else {
    return false;
  }
  return true;
}

SpecRules::SpecRules(const std::string& text) {
  const std::vector<Token> tokens = tokenize(text);
  size_t i = 0;
  auto error = [this](int line, std::string message) {
    _errors.push_back({line, std::move(message)});
  };
  while (i < tokens.size()) {
    const Token& head = tokens[i];
    int kind = keywordKind(head.text);
    if (kind < 0) {
      error(head.line, "expected a relation (replaces, incompat, prereq, follows, updates) at '" +
                           head.text + "'");
      while (i < tokens.size() && keywordKind(tokens[i].text) < 0) i++;
      continue;
    }
    i++;
    SpecRule rule;
    rule.kind = static_cast<SpecRule::Kind>(kind);
    rule.line = head.line;
    bool good = true;
    if (rule.kind == SpecRule::Prereq) {
      if (i >= tokens.size() || tokens[i].text != "(") {
        error(head.line, "prereq without '('");
        while (i < tokens.size() && keywordKind(tokens[i].text) < 0) i++;
        continue;
      }
      i++;
      std::vector<std::string> words;
      int line = head.line;
      while (i < tokens.size() && tokens[i].text != ")" && keywordKind(tokens[i].text) < 0) {
        words.push_back(tokens[i].text);
        line = tokens[i].line;
        i++;
      }
      if (i >= tokens.size() || tokens[i].text != ")") {
        error(line, "prereq group without ')'");
        good = false;
      } else {
        i++;
      }
      if (words.empty()) {
        error(head.line, "empty prereq group");
        good = false;
      } else if (words.size() % 3 != 0) {
        error(head.line, "prereq group of " + std::to_string(words.size()) +
                             " words: each subsystem needs two version bounds");
        good = false;
      }
      for (size_t w = 0; good && w + 2 < words.size(); w += 3) {
        SpecTarget target;
        target.name = words[w];
        if (!parseBound(words[w + 1], &target.low) || !parseBound(words[w + 2], &target.high)) {
          error(head.line, "bad version bounds '" + words[w + 1] + " " + words[w + 2] + "' of " +
                               words[w] + " (a number, maxint or oldvers)");
          good = false;
          break;
        }
        rule.targets.push_back(std::move(target));
      }
    } else {
      while (i < tokens.size() && keywordKind(tokens[i].text) < 0) {
        const std::string& word = tokens[i].text;
        if (word == "(" || word == ")") {
          error(tokens[i].line, std::string("unexpected '") + word + "' in " + kKeywords[kind]);
          good = false;
          i++;
          continue;
        }
        SpecTarget target;
        target.name = word;
        i++;
        SpecBound low, high;
        if (i + 1 < tokens.size() && parseBound(tokens[i].text, &low) &&
            parseBound(tokens[i + 1].text, &high)) {
          target.low = low;
          target.high = high;
          i += 2;
        }
        rule.targets.push_back(std::move(target));
      }
      if (rule.targets.empty()) {
        error(head.line, std::string(kKeywords[kind]) + " names no subsystem");
        good = false;
      }
    }
    if (good) _rules.push_back(std::move(rule));
  }
}
