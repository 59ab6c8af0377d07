// AttrsPartner: what the file list needs from the "Add Attributes" panel.
// Optional.
#ifndef TAMBLIN_FILELIST_ATTRSPARTNER_H
#define TAMBLIN_FILELIST_ATTRSPARTNER_H

#include <string>
#include <vector>

class AttrsPartner {
 public:
  virtual ~AttrsPartner() = default;

  /// Load one entry's attributes (double click on that entry), in order and
  /// exactly as they stand in the idb.
  virtual void setCurrent(const std::vector<std::string>& attrs) = 0;
};

#endif
