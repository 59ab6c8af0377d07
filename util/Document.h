// Document: what the main window's File menu needs from a file being
// edited, the spec or the idb alike.  IdbDocument and SpecDocument add what
// is particular to each.
//
// Results follow the program's rule: nonzero for success or consent, 0 for
// failure or refusal.
#ifndef TAMBLIN_UTIL_DOCUMENT_H
#define TAMBLIN_UTIL_DOCUMENT_H

class Document {
 public:
  virtual ~Document() = default;
  /// Asks whether unsaved changes may be dropped; nonzero = go on.
  virtual int abandonChanges() = 0;
  /// Opens fileName in place of what is edited now.
  virtual int open(const char* fileName) = 0;
  /// File selection for open, append and save-as.
  virtual int showOpenBrowser() = 0;
  virtual int showReadBrowser() = 0;
  virtual int showSaveBrowser() = 0;
  /// Saves to fileName, or to the current file when it is null.
  virtual int save(const char* fileName) = 0;
};

#endif
