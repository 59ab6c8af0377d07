// SpecDocument: what the main window's File menu and the view need from the
// product hierarchy (the spec being edited).  The product hierarchy panel
// implements it; the view holds the one in use (none until that panel is
// there, in which case the spec entries say so in the message log).
//
// Results follow the program's rule: nonzero for success or consent, 0 for
// failure or refusal.
#ifndef TAMBLIN_SPEC_SPECDOCUMENT_H
#define TAMBLIN_SPEC_SPECDOCUMENT_H

#include <string>

class SpecDocument {
 public:
  virtual ~SpecDocument() = default;
  /// Asks whether unsaved changes may be dropped; nonzero = go on.
  virtual int abandonChanges() = 0;
  /// Opens a spec file; "" starts a new, default spec.
  virtual int open(const char* fileName) = 0;
  /// File selection for open, append and save-as.
  virtual int showOpenBrowser() = 0;
  virtual int showReadBrowser() = 0;
  virtual int showSaveBrowser() = 0;
  /// Saves to fileName, or to the current spec file when it is null.
  virtual int save(const char* fileName) = 0;
  virtual std::string getProductName() = 0;
  virtual bool subsystemExists() = 0;
};

#endif
