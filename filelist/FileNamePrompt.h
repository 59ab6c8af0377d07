// FileNamePrompt: asks the user for a file name (the shared file selection
// dialog in the program).  The file list uses it when an idb without a name
// is saved.  Optional: without one such a save is refused.
#ifndef TAMBLIN_FILELIST_FILENAMEPROMPT_H
#define TAMBLIN_FILELIST_FILENAMEPROMPT_H

#include <string>

class FileNamePrompt {
 public:
  virtual ~FileNamePrompt() = default;

  /// Shows a dialog titled title, filtering with the shell pattern filter and
  /// proposing proposed.  Returns true and fills *chosen when the user
  /// confirms; false when the user cancels.
  virtual bool askFileName(const std::string& title, const std::string& filter,
                           const std::string& proposed, std::string* chosen) = 0;
};

#endif
