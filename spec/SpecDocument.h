// SpecDocument: what the main window's File menu and the view need from the
// product hierarchy (the spec being edited).  The product hierarchy panel
// implements it; the view holds the one in use (none until that panel is
// there, in which case the spec entries say so in the message log).  Its
// open takes "" for a new, default spec.
#ifndef TAMBLIN_SPEC_SPECDOCUMENT_H
#define TAMBLIN_SPEC_SPECDOCUMENT_H

#include <string>

#include "util/Document.h"

class SpecDocument : public Document {
 public:
  virtual std::string getProductName() = 0;
  virtual bool subsystemExists() = 0;
};

#endif
