// TagsPartner: what the file list needs from the Tags panel of the
// "Tag Files" tab.  Optional: the file list works without one.
#ifndef TAMBLIN_FILELIST_TAGSPARTNER_H
#define TAMBLIN_FILELIST_TAGSPARTNER_H

#include <string>

class TagsPartner {
 public:
  virtual ~TagsPartner() = default;

  /// The tags of the idb may have changed: rebuild the tag list.
  virtual void refresh() = 0;
  /// The tag that newly added files receive.
  virtual std::string getCurrent() = 0;
  /// Show the tag of the entry the user double-clicked.
  virtual void setCurrent(const std::string& tag) = 0;
};

#endif
