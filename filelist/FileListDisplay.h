// FileListDisplay: the widgets that mirror the file list model (the list and
// the file name label in the program).  The model holds the lines and the
// selection; the list asks for the rows it shows when told that they
// changed.  Optional.
#ifndef TAMBLIN_FILELIST_FILELISTDISPLAY_H
#define TAMBLIN_FILELIST_FILELISTDISPLAY_H

#include <string>

class FileListDisplay {
 public:
  virtual ~FileListDisplay() = default;

  /// The lines were replaced (the selection may have changed with them).
  virtual void linesChanged() = 0;
  /// The set of selected positions changed; the lines did not.
  virtual void selectionChanged() = 0;
  /// Scroll so that the last line shows (after files were added).
  virtual void showLastLine() = 0;
  /// The text above the list changed ("Idb File:  name").
  virtual void fileNameChanged(const std::string& label) = 0;
};

#endif
