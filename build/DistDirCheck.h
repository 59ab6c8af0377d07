// The distribution directory and the files the user edits must not share a
// directory: the build writes its own files there, so a spec or idb saved
// beside them could be overwritten.  The Save commands, the Build panel and
// the distribution-build program all ask this one function.
#ifndef TAMBLIN_BUILD_DISTDIRCHECK_H
#define TAMBLIN_BUILD_DISTDIRCHECK_H

#include <string>

#include "util/Outcome.h"

enum class DistDirUse {
  /// file is about to be saved (a spec or an idb); an empty distDir (none
  /// known yet) passes.  Paths are compared as given.
  Save,
  /// A build is about to write into distDir, reading the idb file: both are
  /// normalized; a missing distDir is made (mkdir 0777).
  Build,
};

/// Ok when file and distDir may be used together; otherwise fails with the
/// text for the error dialog (texts fixed by the program, misspelling
/// included), and the error number when the directory could not be made.
Outcome checkDistDir(DistDirUse use, const std::string& file, const std::string& distDir);

#endif
