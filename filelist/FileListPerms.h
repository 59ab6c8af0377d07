// FileListPerms: the "Edit Permissions & Destinations" panel.
//
// Mode, owner, group, destination directory and file name typed here are
// assigned, whichever are filled in, to the entries selected in the file
// list; the two tree roots are edited here and applied to the file list.
// Every change of the idb goes through the file list (FileListModel); the
// panel only checks and normalises what was typed (PermsValues).
#ifndef TAMBLIN_FILELIST_FILELISTPERMS_H
#define TAMBLIN_FILELIST_FILELISTPERMS_H

#include <string>

#include "app/ui/FileListPermsUI.h"
#include "filelist/PermsPartner.h"

class FileListModel;
class Reporter;

class FileListPerms : public FileListPermsUI, public PermsPartner {
 public:
  FileListPerms(const char* name, Widget parent);
  const char* className() const override { return "FileListPerms"; }

  /// The shared file list and where messages go (neither owned).  Fills the
  /// root fields from the file list.
  void connect(FileListModel& fileList, Reporter& reporter);

  // PermsPartner
  void setSourceRoot(const std::string& root) override;
  void setDestRoot(const std::string& root) override;
  void setCurrent(const std::string& srcpath, const std::string& dstpath, unsigned long mode,
                  const std::string& owner, const std::string& group) override;

  /// Empties the three id labels and the five value fields; the roots stay.
  void permsClear();
  static bool isNonNullTextField(Widget w);

 protected:
  void applyArrowButton(Widget, XtPointer) override;
  void assignArrowButton(Widget, XtPointer) override;
  void destDirTextField(Widget, XtPointer) override;
  void destFileTextField(Widget, XtPointer) override;
  void destRootTextField(Widget, XtPointer) override;
  void groupTextField(Widget, XtPointer) override;
  void modeTextField(Widget, XtPointer) override;
  void ownerTextField(Widget, XtPointer) override;
  void resetPushButton(Widget, XtPointer) override;
  void sourceRootTextField(Widget, XtPointer) override;

 private:
  void showRoots();
  void error(const std::string& text);

  FileListModel* _model = nullptr;
  Reporter* _reporter = nullptr;
};

#endif
