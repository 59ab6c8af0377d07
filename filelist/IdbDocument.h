// IdbDocument: what the main window's File menu and the view need from the
// idb being edited.  The file list panel implements it.
//
// Results follow the program's rule: nonzero for success or consent, 0 for
// failure or refusal.
#ifndef TAMBLIN_FILELIST_IDBDOCUMENT_H
#define TAMBLIN_FILELIST_IDBDOCUMENT_H

class IdbDocument {
 public:
  virtual ~IdbDocument() = default;
  /// Empties the idb for a new one (after asking about unsaved changes).
  virtual void clear() = 0;
  /// Asks whether unsaved changes may be dropped; nonzero = go on.
  virtual int abandonChanges() = 0;
  virtual int open(const char* fileName) = 0;
  /// File selection for open, append and save-as.
  virtual int showOpenBrowser() = 0;
  virtual int showReadBrowser() = 0;
  virtual int showSaveBrowser() = 0;
  /// Saves to fileName, or to the current idb file when it is null.
  virtual int save(const char* fileName) = 0;
  /// Number of records in the idb.
  virtual int recordCount() = 0;
  /// Rebuilds the list lines for the current view.
  virtual void refresh() = 0;
};

#endif
