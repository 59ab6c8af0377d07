// PermsPartner: what the file list needs from the "Edit Permissions &
// Destinations" panel, which also shows both tree roots.  Optional.
#ifndef TAMBLIN_FILELIST_PERMSPARTNER_H
#define TAMBLIN_FILELIST_PERMSPARTNER_H

#include <string>

class PermsPartner {
 public:
  virtual ~PermsPartner() = default;

  virtual void setSourceRoot(const std::string& root) = 0;
  virtual void setDestRoot(const std::string& root) = 0;
  /// Load one entry's values (double click on that entry).
  virtual void setCurrent(const std::string& srcpath, const std::string& dstpath,
                          unsigned long mode, const std::string& owner,
                          const std::string& group) = 0;
};

#endif
