// DebName: how the names and versions of a spec become Debian's.
//
// The mapping from a tag (or a product name) to a package name is fixed and
// documented in forgeset(8): letters are lower-cased, "_" becomes "-", and
// any other character that Debian does not allow in a name (anything but
// a-z 0-9 + - .) becomes "-" too.  So the subsystem My_Prod.sw.base is the
// package my-prod.sw.base and the product My_Prod the package my-prod.
// Debian then wants at least two characters, the first a letter or digit;
// two tags that map to one name are refused by the plan.
#ifndef TAMBLIN_PKG_DEBNAME_H
#define TAMBLIN_PKG_DEBNAME_H

#include <string>

#include "util/Outcome.h"

class DebName {
 public:
  /// The package name for a tag or product name.
  static std::string package(const std::string& tag);
  /// Fails saying why Debian refuses the package name.
  static Outcome packageProblem(const std::string& name);
  /// Fails saying why Debian refuses the version.  Versions are
  /// [epoch:]upstream[-revision]; the upstream part starts with a digit.
  static Outcome versionProblem(const std::string& version);
};

#endif
