// AptRepository: the distribution directory as a flat apt repository.
//
// "Packages" lists one paragraph per package (its control fields, then
// Filename, Size, MD5sum and SHA256), sorted by name; "Packages.gz" is the
// same compressed; "Release" names both with their sizes and sums.  With
// "deb [trusted=yes] file:/DIST ./" in a sources list, apt installs from it.
// Packages that an earlier build listed stay listed while their files are
// there and this build did not write them again (another product of the
// same directory, say).
#ifndef TAMBLIN_PKG_APTREPOSITORY_H
#define TAMBLIN_PKG_APTREPOSITORY_H

#include <ctime>
#include <string>
#include <vector>

#include "util/Outcome.h"

struct DebResult;

class AptRepository {
 public:
  /// Writes the index files of dist; fails saying why.
  static Outcome write(const std::string& dist, const std::vector<DebResult>& written,
                       std::time_t date);
  /// The Packages paragraph of one written package (with its final newline,
  /// without the blank line that separates paragraphs).
  static std::string paragraph(const DebResult& deb);
};

#endif
