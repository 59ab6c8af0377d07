#include "filelist/AttrsText.h"

const char* const AttrsText::kOpKeywords[AttrsState::kOps] = {"preop", "postop", "exitop",
                                                              "removeop"};
const char* const AttrsText::kFlagKeywords[AttrsState::kFlags] = {"shadow", "noshare", "nostrip",
                                                                  "norqs", "stripdso"};

namespace {

const char* const kConfigs[] = {"config(update)", "config(noupdate)", "config(suggest)"};

// KEY=NAME pairs after "mach(": a key ends at a blank, "=" or ")", a name
// at "," or ")".
void readMachPairs(const std::string& rest, AttrsState& state) {
  size_t i = 0;
  while (i < rest.size() && rest[i] != ')') {
    size_t keyEnd = rest.find_first_of(" =)", i);
    if (keyEnd == std::string::npos) return;
    std::string key = rest.substr(i, keyEnd - i);
    if (rest[keyEnd] != '=') return;
    size_t nameEnd = rest.find_first_of(",)", keyEnd + 1);
    if (nameEnd == std::string::npos) nameEnd = rest.size();
    state.mach.emplace_back(key, rest.substr(keyEnd + 1, nameEnd - keyEnd - 1));
    if (nameEnd >= rest.size() || rest[nameEnd] == ')') return;
    i = nameEnd + 1;
  }
}

}  // namespace

std::string AttrsText::opAttr(const char* keyword, const std::string& text) {
  std::string out = std::string(keyword) + "(";
  for (char c : text) out += c == '\n' ? ';' : c;
  return out + ")";
}

std::string AttrsText::prepareOpText(const std::string& command) {
  std::string out;
  for (size_t i = 0; i < command.size(); i++) {
    char c = command[i];
    if (c == '\\' && i + 1 < command.size()) {
      out += c;
      out += command[++i];
    } else {
      out += c == ';' ? '\n' : c;
    }
  }
  return out;
}

std::string AttrsText::machAttr(const std::vector<std::pair<std::string, std::string>>& pairs) {
  if (pairs.empty()) return std::string();
  std::string out = "mach";
  char separator = '(';
  for (const auto& p : pairs) {
    out += separator;
    out += p.first + "=" + p.second;
    separator = ',';
  }
  return out + ")";
}

std::vector<std::string> AttrsText::compose(const AttrsState& s) {
  std::vector<std::string> out;
  for (int op = 0; op < AttrsState::kOps; op++)
    if (s.opOn[op]) out.push_back(opAttr(kOpKeywords[op], s.opText[op]));
  if (s.configOn) out.push_back(kConfigs[s.config]);
  for (int f = 0; f < AttrsState::kFlags; f++)
    if (s.flags[f]) out.push_back(kFlagKeywords[f]);
  if (s.machOn) {
    std::string mach = machAttr(s.mach);
    if (!mach.empty()) out.push_back(mach);
  }
  return out;
}

AttrsState AttrsText::read(const std::vector<std::string>& attrs) {
  AttrsState s;
  for (const std::string& attr : attrs) {
    const size_t paren = attr.find('(');
    const std::string keyword = attr.substr(0, paren);
    const std::string rest = paren == std::string::npos ? std::string() : attr.substr(paren + 1);
    bool known = false;
    // removeop is written by the panel but deliberately not shown again.
    for (int op = 0; op < AttrsState::RemoveOp && !known; op++) {
      if (keyword != kOpKeywords[op]) continue;
      known = true;
      s.opText[op] = prepareOpText(rest.empty() ? rest : rest.substr(0, rest.size() - 1));
      s.opOn[op] = !s.opText[op].empty();
    }
    for (int f = 0; f < AttrsState::kFlags && !known; f++) {
      if (keyword != kFlagKeywords[f]) continue;
      known = true;
      s.flags[f] = true;
    }
    if (known) continue;
    if (keyword == "config") {
      const std::string word = rest.substr(0, rest.find(')'));
      s.config = word == "suggest"    ? AttrsState::Suggest
                 : word == "noupdate" ? AttrsState::NoUpdate
                                      : AttrsState::Update;
      s.configOn = true;
    } else if (keyword == "mach") {
      readMachPairs(rest, s);
    }
  }
  return s;
}
