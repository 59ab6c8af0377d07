// BuildPartner: what the file list needs from the "Build Product" panel:
// it shows the roots, and its distribution directory must never receive the
// text idb (the build writes its binary idb there).  Optional.
#ifndef TAMBLIN_FILELIST_BUILDPARTNER_H
#define TAMBLIN_FILELIST_BUILDPARTNER_H

#include <string>

class BuildPartner {
 public:
  virtual ~BuildPartner() = default;

  virtual void setSourceRoot(const std::string& root) = 0;
  virtual void setDestRoot(const std::string& root) = 0;
  /// The distribution directory as the user typed it.
  virtual std::string getDistDir() = 0;
};

#endif
