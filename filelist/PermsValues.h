// PermsValues: what the permissions panel makes of the texts typed into it.
//
// Octal modes with their ls-style symbolic echo, owner and group names
// checked against the user and group databases with the numeric id shown
// beside them, and the split of a destination path into the directory and
// file fields.  No widgets: the panel reads its fields, calls these and
// writes the results back.
#ifndef TAMBLIN_FILELIST_PERMSVALUES_H
#define TAMBLIN_FILELIST_PERMSVALUES_H

#include <string>

class PermsValues {
 public:
  /// The nine-character symbolic form of mode ("rwxr-xr-x").  Set-user-id
  /// shows as s or S, set-group-id as s or, without group execute, l
  /// (mandatory locking), the sticky bit as t or T.
  static std::string pmode(unsigned long mode);

  /// The text read as an octal number the way strtoul does with base 8:
  /// leading blanks and a sign accepted, conversion stops at the first
  /// non-octal character, no digits at all give 0.
  static unsigned long parseMode(const std::string& text);
  /// The mode as the field shows it after Return: always a leading 0.
  static std::string formatMode(unsigned long mode);

  /// An owner or group after Return: the id the text stands for and the
  /// name shown for that id.
  struct Identity {
    long id = 0;
    std::string name;
  };
  /// A user name gives its uid; anything else is read as a decimal id (not
  /// a number: 0).  The name is that id's user, or "unknown".  So "0" turns
  /// into the name of user 0, and so does a name nobody has.
  static Identity lookUpOwner(const std::string& text);
  /// The same with the group database.
  static Identity lookUpGroup(const std::string& text);

  /// A destination path split for the directory and file fields; a path
  /// without a directory part gives an empty directory.
  struct Destination {
    std::string dir;
    std::string file;
  };
  static Destination splitDestination(const std::string& dstpath);

  /// The refusal of a destination directory that begins with "/", or ""
  /// when dir is acceptable.
  static std::string checkDestDir(const std::string& dir);
};

#endif
