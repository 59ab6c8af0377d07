// SourceProbe: which source paths exist below a root.
//
// A path "exists" exactly when lstat of root + "/" + path succeeds (a
// dangling symbolic link exists; a link in the last component is not
// followed).  Many paths are checked at once: a directory that holds many of
// them is read once instead of looking each name up from the root, so that
// checking a million records costs about what walking the tree costs.
#ifndef TAMBLIN_FILELIST_SOURCEPROBE_H
#define TAMBLIN_FILELIST_SOURCEPROBE_H

#include <string>
#include <string_view>
#include <vector>

class SourceProbe {
 public:
  /// Directories with at least this many paths are read as a whole.
  static constexpr int kListingThreshold = 16;

  explicit SourceProbe(std::string root);
  /// One flag per path, in order: 1 when it exists below the root.
  std::vector<char> exists(const std::vector<std::string_view>& paths) const;

 private:
  std::string _root;
};

#endif
