#include "pkg/RecordAttrs.h"

#include <cstdlib>

#include "idb/Idb.h"

namespace {

// How far parentheses stay open after text (quotes and backslashes respected).
int depthAfter(const std::string& text, int depth) {
  char quote = 0;
  for (size_t i = 0; i < text.size(); i++) {
    char c = text[i];
    if (c == '\\') {
      i++;
    } else if (quote) {
      if (c == quote) quote = 0;
    } else if (c == '\'' || c == '"') {
      quote = c;
    } else if (c == '(') {
      depth++;
    } else if (c == ')') {
      depth--;
    }
  }
  return depth;
}

std::string trim(const std::string& s) {
  size_t b = s.find_first_not_of(" \t\n");
  if (b == std::string::npos) return "";
  size_t e = s.find_last_not_of(" \t\n");
  return s.substr(b, e - b + 1);
}

// The text between the first "(" and the last ")", or the rest when no ")".
bool argument(const std::string& attr, std::string* keyword, std::string* arg) {
  size_t open = attr.find('(');
  if (open == std::string::npos) {
    *keyword = attr;
    arg->clear();
    return false;
  }
  *keyword = attr.substr(0, open);
  size_t close = attr.rfind(')');
  if (close == std::string::npos || close < open) close = attr.size();
  *arg = attr.substr(open + 1, close - open - 1);
  return true;
}

}  // namespace

std::vector<std::string> RecordAttrs::join(const std::vector<std::string>& attrs) {
  std::vector<std::string> out;
  int depth = 0;
  for (const std::string& a : attrs) {
    if (depth > 0 && !out.empty())
      out.back() += " " + a;
    else
      out.push_back(a);
    depth = depthAfter(out.back(), 0);
  }
  return out;
}

std::vector<std::string> RecordAttrs::commands(const std::string& text) {
  std::string command = trim(text);
  // One pair of quotes around the whole command is the idb's way of keeping
  // its blanks together, not part of the command.
  if (command.size() >= 2 && (command[0] == '\'' || command[0] == '"') &&
      command.back() == command[0] && command.find(command[0], 1) == command.size() - 1)
    command = command.substr(1, command.size() - 2);
  std::vector<std::string> out;
  std::string current;
  char quote = 0;
  for (size_t i = 0; i < command.size(); i++) {
    char c = command[i];
    if (c == '\\' && i + 1 < command.size()) {
      current += c;
      current += command[++i];
      continue;
    }
    if (quote) {
      if (c == quote) quote = 0;
    } else if (c == '\'' || c == '"') {
      quote = c;
    } else if (c == ';' || c == '\n') {
      if (!trim(current).empty()) out.push_back(trim(current));
      current.clear();
      continue;
    }
    current += c;
  }
  if (!trim(current).empty()) out.push_back(trim(current));
  return out;
}

RecordAttrs RecordAttrs::of(const idb& r) { return read(r.attrs()); }

RecordAttrs RecordAttrs::read(const std::vector<std::string>& attrs) {
  RecordAttrs out;
  for (const std::string& attr : join(attrs)) {
    std::string keyword, arg;
    const bool hasArg = argument(attr, &keyword, &arg);
    if (hasArg && depthAfter(attr, 0) > 0) {
      out.problems.push_back("unclosed '(' in attribute '" + attr + "'");
      continue;
    }
    if (keyword == "preop" || keyword == "postop" || keyword == "exitop" ||
        keyword == "removeop") {
      std::vector<std::string>& list = keyword == "preop"    ? out.preop
                                       : keyword == "postop" ? out.postop
                                       : keyword == "exitop" ? out.exitop
                                                             : out.removeop;
      for (std::string& c : commands(arg)) list.push_back(std::move(c));
    } else if (keyword == "config") {
      if (arg == "update")
        out.config = Update;
      else if (arg == "noupdate")
        out.config = NoUpdate;
      else if (arg == "suggest")
        out.config = Suggest;
      else
        out.problems.push_back("unknown config '" + arg + "' (update, noupdate or suggest)");
    } else if (keyword == "nostrip" && !hasArg) {
      out.nostrip = true;
    } else if (keyword == "stripdso" && !hasArg) {
      out.stripdso = true;
    } else if (keyword == "symval" && hasArg) {
      out.hasSymval = true;
      out.symval = arg;
    } else if (keyword == "dev" && hasArg) {
      char* end = nullptr;
      unsigned long major = std::strtoul(arg.c_str(), &end, 10);
      if (end && *end == ',') {
        const char* minorText = end + 1;
        unsigned long minor = std::strtoul(minorText, &end, 10);
        if (end != minorText && *end == '\0') {
          out.hasDev = true;
          out.major = static_cast<unsigned>(major);
          out.minor = static_cast<unsigned>(minor);
          continue;
        }
      }
      out.problems.push_back("bad device numbers in '" + attr + "' (dev(MAJOR,MINOR))");
    } else if (keyword == "mach" || keyword == "noshare" || keyword == "norqs" ||
               keyword == "shadow") {
      out.ignored.push_back(attr);
    } else {
      out.problems.push_back("unknown attribute '" + attr + "'");
    }
  }
  return out;
}
