// IdbDocument: what the main window's File menu and the view need from the
// idb being edited.  The file list panel implements it.
#ifndef TAMBLIN_FILELIST_IDBDOCUMENT_H
#define TAMBLIN_FILELIST_IDBDOCUMENT_H

#include "util/Document.h"

class IdbDocument : public Document {
 public:
  /// Empties the idb for a new one (after asking about unsaved changes).
  virtual void clear() = 0;
  /// Number of records in the idb.
  virtual int recordCount() = 0;
  /// Rebuilds the list lines for the current view.
  virtual void refresh() = 0;
};

#endif
