// RecordAttrs: what a builder needs of one idb record's attributes.
//
// The idb splits attributes at blanks outside quotes, so a command written
// by hand with blanks, postop(echo one; echo two), arrives in pieces.  Here
// the pieces are joined back (with one blank) while a parenthesis is open,
// so that each operation attribute is one command again; one pair of quotes
// around the whole command is removed.  Within a command ";" separates the
// commands (the Attributes panel writes a newline as ";"); a ";" inside
// quotes or after a backslash does not.
#ifndef TAMBLIN_PKG_RECORDATTRS_H
#define TAMBLIN_PKG_RECORDATTRS_H

#include <string>
#include <vector>

class idb;

struct RecordAttrs {
  enum Config { NoConfig, Update, NoUpdate, Suggest };

  std::vector<std::string> preop, postop, exitop, removeop;  // commands, in order
  Config config = NoConfig;
  bool nostrip = false;
  bool stripdso = false;
  bool hasSymval = false;
  std::string symval;  // link target
  bool hasDev = false;
  unsigned major = 0, minor = 0;
  /// Attributes that mean nothing on Linux (mach, noshare, norqs, shadow).
  std::vector<std::string> ignored;
  /// Attributes that could not be read, with the reason ("unknown
  /// attribute 'x'", "unclosed '(' in ...").
  std::vector<std::string> problems;

  /// Reads the attributes of r.
  static RecordAttrs of(const idb& r);
  /// Reads attribute texts as the idb split them.
  static RecordAttrs read(const std::vector<std::string>& attrs);

  /// The attributes as written, joined back where a parenthesis was open.
  static std::vector<std::string> join(const std::vector<std::string>& attrs);
  /// The commands of an operation's text: split at ";" outside quotes and
  /// not after a backslash, blanks trimmed, empty ones dropped.
  static std::vector<std::string> commands(const std::string& text);
};

#endif
