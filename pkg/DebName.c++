#include "pkg/DebName.h"

#include <cctype>

namespace {

bool lowerAlnum(char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'); }
bool alnum(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; }

}  // namespace

std::string DebName::package(const std::string& tag) {
  std::string name;
  name.reserve(tag.size());
  for (char c : tag) {
    char l = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    name += lowerAlnum(l) || l == '+' || l == '-' || l == '.' ? l : '-';
  }
  return name;
}

Outcome DebName::packageProblem(const std::string& name) {
  if (name.size() < 2)
    return Outcome::error("package name '" + name + "' is shorter than two characters");
  if (!lowerAlnum(name[0]))
    return Outcome::error("package name '" + name + "' does not start with a letter or digit");
  for (char c : name)
    if (!lowerAlnum(c) && c != '+' && c != '-' && c != '.')
      return Outcome::error("package name '" + name + "' holds '" + std::string(1, c) + "'");
  return Outcome::success();
}

Outcome DebName::versionProblem(const std::string& version) {
  const std::string bad = "version '" + version + "' ";
  if (version.empty()) return Outcome::error(bad + "is empty");
  std::string upstream = version;
  size_t colon = version.find(':');
  if (colon != std::string::npos) {
    const std::string epoch = version.substr(0, colon);
    if (epoch.empty() || epoch.find_first_not_of("0123456789") != std::string::npos)
      return Outcome::error(bad + "has an epoch that is not a number");
    upstream = version.substr(colon + 1);
  }
  size_t dash = upstream.rfind('-');
  std::string revision;
  if (dash != std::string::npos) {
    revision = upstream.substr(dash + 1);
    upstream = upstream.substr(0, dash);
    if (revision.empty()) return Outcome::error(bad + "ends with '-'");
    for (char c : revision)
      if (!alnum(c) && c != '+' && c != '.' && c != '~')
        return Outcome::error(bad + "holds '" + std::string(1, c) + "' in its revision");
  }
  if (upstream.empty() || !std::isdigit(static_cast<unsigned char>(upstream[0])))
    return Outcome::error(bad + "does not start with a digit");
  for (char c : upstream)
    if (!alnum(c) && c != '.' && c != '+' && c != '~' && c != '-' && c != ':')
      return Outcome::error(bad + "holds '" + std::string(1, c) + "'");
  if (colon == std::string::npos && upstream.find(':') != std::string::npos)
    return Outcome::error(bad + "holds ':' without an epoch");
  return Outcome::success();
}
