// AddFilesPartner: what the file list needs from the Add Files panel, the
// source-tree browser beside it.  The panel implements it; the file list
// holds an optional pointer (null while the panel does not exist).
#ifndef TAMBLIN_FILELIST_ADDFILESPARTNER_H
#define TAMBLIN_FILELIST_ADDFILESPARTNER_H

#include <string>

class AddFilesPartner {
 public:
  virtual ~AddFilesPartner() = default;

  /// The source root moved to root (absolute, canonical).
  virtual void newSourceRootDirectory(const std::string& root) = 0;
  /// No record uses srcpath any more: its entry in the browser loses its mark.
  virtual void unmark(const std::string& srcpath) = 0;
  /// The idb changed wholesale (open, append, undo, ...): recompute the marks.
  virtual void refresh() = 0;
  /// Show the file at fullPath (source root and source path joined by "/").
  virtual void setCurrent(const std::string& fullPath) = 0;
};

#endif
