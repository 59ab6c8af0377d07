// HelpRequest: the one-line request that the help client sends to the
// desktop's help server.
//
// The format is the server's:
//   client="C" command="view" separator="S" book="B" keyvalue="K"
//   user_data="U" title="T" subsys="Y"
// where the first three are always present and the others only when not
// empty, in that order.  Values are sent as they are: no quoting or
// escaping, so a value holding a double quote breaks the request (the
// server's format offers no way around that).
#ifndef TAMBLIN_HELP_HELPREQUEST_H
#define TAMBLIN_HELP_HELPREQUEST_H

#include <string>

/// The server's selection and request property names.
extern const char* const kHelpServerSelection;
extern const char* const kHelpRequestProperty;

struct HelpRequest {
  std::string client = ".";
  std::string command;  // "view" (a topic) or "list" (an index); empty means "view"
  std::string separator;
  std::string book;
  std::string key;
  std::string userData;
  std::string title;
  std::string subsys;

  /// The request line.
  std::string text() const;
};

/// The locale part of the server's name: the locale name unless it is
/// unset, empty or "C".
std::string helpLocaleName(const char* locale);

/// The selection that the server for that locale name owns:
/// "ORVEX_HELP_SERVER", plus "_" and the locale name when there is one.
std::string helpServerSelection(const std::string& localeName);

#endif
