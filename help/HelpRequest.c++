#include "help/HelpRequest.h"

#include <cstring>
#include <utility>

const char* const kHelpServerSelection = "ORVEX_HELP_SERVER";
const char* const kHelpRequestProperty = "ORVEX_HELP_REQUEST";

std::string HelpRequest::text() const {
  std::string line = "client=\"" + client + "\" command=\"" + (command.empty() ? "view" : command) +
                     "\" separator=\"" + separator + "\"";
  const std::pair<const char*, const std::string*> optional[] = {
      {"book", &book},   {"keyvalue", &key}, {"user_data", &userData},
      {"title", &title}, {"subsys", &subsys},
  };
  for (const auto& [name, value] : optional) {
    if (value->empty()) continue;
    line += ' ';
    line += name;
    line += "=\"";
    line += *value;
    line += '"';
  }
  return line;
}

std::string helpLocaleName(const char* locale) {
  if (!locale || !*locale || std::strcmp(locale, "C") == 0) return "";
  return locale;
}

std::string helpServerSelection(const std::string& localeName) {
  return localeName.empty() ? kHelpServerSelection : kHelpServerSelection + ("_" + localeName);
}
