#include "spec/SpecMapping.h"

#include <fnmatch.h>

#include <utility>

struct SpecMapping::Node {
  enum Kind { Word, Not, And, Or };
  Kind kind;
  std::string word;
  bool pattern = false;
  std::unique_ptr<Node> left, right;
};

namespace {

using Node = SpecMapping::Node;

struct Token {
  enum Kind { Word, Not, And, Or, Open, Close, End } kind;
  std::string text;
};

std::vector<Token> tokenize(const std::string& text) {
  static const char kSeparators[] = " \t\r\n()!&|";
  std::vector<Token> tokens;
  size_t i = 0;
  while (i < text.size()) {
    char c = text[i];
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
      i++;
    } else if (c == '(' || c == ')' || c == '!') {
      tokens.push_back({c == '(' ? Token::Open : c == ')' ? Token::Close : Token::Not, {c}});
      i++;
    } else if (c == '&' || c == '|') {
      size_t n = i + 1 < text.size() && text[i + 1] == c ? 2 : 1;
      tokens.push_back({c == '&' ? Token::And : Token::Or, text.substr(i, n)});
      i += n;
    } else {
      size_t end = text.find_first_of(kSeparators, i);
      if (end == std::string::npos) end = text.size();
      tokens.push_back({Token::Word, text.substr(i, end - i)});
      i = end;
    }
  }
  tokens.push_back({Token::End, ""});
  return tokens;
}

class Parser {
 public:
  Parser(std::vector<Token> tokens, std::vector<std::string>* words)
      : _tokens(std::move(tokens)), _words(words) {}

  std::unique_ptr<Node> parse(std::string* error) {
    std::unique_ptr<Node> root;
    while (_error.empty() && peek() != Token::End) {
      if (peek() == Token::Close) {
        _error = "unbalanced ')'";
        break;
      }
      std::unique_ptr<Node> e = expr();
      root = root ? join(Node::Or, std::move(root), std::move(e)) : std::move(e);
    }
    *error = _error;
    return _error.empty() ? std::move(root) : nullptr;
  }

 private:
  Token::Kind peek() const { return _tokens[_pos].kind; }

  static std::unique_ptr<Node> join(Node::Kind kind, std::unique_ptr<Node> l,
                                    std::unique_ptr<Node> r) {
    auto n = std::make_unique<Node>();
    n->kind = kind;
    n->left = std::move(l);
    n->right = std::move(r);
    return n;
  }

  std::unique_ptr<Node> expr() {
    std::unique_ptr<Node> n = term();
    while (_error.empty() && peek() == Token::Or) {
      _pos++;
      n = join(Node::Or, std::move(n), term());
    }
    return n;
  }

  std::unique_ptr<Node> term() {
    std::unique_ptr<Node> n = factor();
    while (_error.empty() && peek() == Token::And) {
      _pos++;
      n = join(Node::And, std::move(n), factor());
    }
    return n;
  }

  std::unique_ptr<Node> factor() {
    if (!_error.empty()) return nullptr;
    const Token& t = _tokens[_pos];
    switch (t.kind) {
      case Token::Not: {
        _pos++;
        auto n = std::make_unique<Node>();
        n->kind = Node::Not;
        n->left = factor();
        return n;
      }
      case Token::Open: {
        _pos++;
        std::unique_ptr<Node> n = expr();
        if (_error.empty() && peek() != Token::Close) _error = "unbalanced '('";
        _pos++;
        return n;
      }
      case Token::Word: {
        _pos++;
        auto n = std::make_unique<Node>();
        n->kind = Node::Word;
        n->word = t.text;
        n->pattern = t.text.find_first_of("*?[") != std::string::npos;
        _words->push_back(t.text);
        return n;
      }
      case Token::End:
        _error = "expression ends after an operator";
        return nullptr;
      default:
        _error = "'" + t.text + "' where a tag was expected";
        return nullptr;
    }
  }

  std::vector<Token> _tokens;
  size_t _pos = 0;
  std::vector<std::string>* _words;
  std::string _error;
};

bool eval(const Node* n, std::string_view tag) {
  switch (n->kind) {
    case Node::Word:
      if (n->pattern) return fnmatch(n->word.c_str(), std::string(tag).c_str(), 0) == 0;
      return n->word == tag;
    case Node::Not:
      return !eval(n->left.get(), tag);
    case Node::And:
      return eval(n->left.get(), tag) && eval(n->right.get(), tag);
    case Node::Or:
      return eval(n->left.get(), tag) || eval(n->right.get(), tag);
  }
  return false;
}

std::string dumpNode(const Node* n) {
  switch (n->kind) {
    case Node::Word:
      return n->word;
    case Node::Not:
      return "!" + dumpNode(n->left.get());
    case Node::And:
      return "(" + dumpNode(n->left.get()) + " & " + dumpNode(n->right.get()) + ")";
    case Node::Or:
      return "(" + dumpNode(n->left.get()) + " | " + dumpNode(n->right.get()) + ")";
  }
  return "";
}

}  // namespace

SpecMapping::SpecMapping(const std::string& text) {
  Parser parser(tokenize(text), &_words);
  _root = parser.parse(&_error);
  if (!_error.empty()) _words.clear();
}

SpecMapping::~SpecMapping() = default;
SpecMapping::SpecMapping(SpecMapping&&) noexcept = default;
SpecMapping& SpecMapping::operator=(SpecMapping&&) noexcept = default;

bool SpecMapping::matches(std::string_view tag) const { return _root && eval(_root.get(), tag); }

std::string SpecMapping::dump() const { return _root ? dumpNode(_root.get()) : std::string(); }
