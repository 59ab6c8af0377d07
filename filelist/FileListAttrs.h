// FileListAttrs: the "Add Attributes" panel.
//
// Shows installation attributes as toggles, an option menu and command
// texts, and assigns the whole set to the entries selected in the file list,
// replacing the attributes they had (those derived from the file stay).
// The machine-dependent attribute is composed from four groups of toggles
// built at construction from the machine tables; their states and
// interlocks live in MachSelection, which the toggles mirror.
#ifndef TAMBLIN_FILELIST_FILELISTATTRS_H
#define TAMBLIN_FILELIST_FILELISTATTRS_H

#include <memory>
#include <string>
#include <vector>

#include "app/ui/FileListAttrsUI.h"
#include "filelist/AttrsPartner.h"
#include "filelist/AttrsText.h"
#include "filelist/MachSelection.h"

class FileListModel;
class Reporter;

class FileListAttrs : public FileListAttrsUI, public AttrsPartner {
 public:
  FileListAttrs(const char* name, Widget parent);
  ~FileListAttrs() override;
  const char* className() const override { return "FileListAttrs"; }

  /// The shared file list and where messages go (neither owned).
  void connect(FileListModel& fileList, Reporter& reporter);

  /// Shows one entry's attributes (removeop is not shown again).
  void setCurrent(const std::vector<std::string>& attrs) override;
  /// Every control off or empty, config on update, all hardware toggles
  /// off and sensitive.
  void attrsClear();
  /// Shows or hides the CPU board, graphics board and subtype groups and
  /// the processor buttons; the models always show.
  void showInternalNames();
  void hideInternalNames();
  /// Switches off the hardware toggles that are on but insensitive.
  void UntoggleInsensitive();

  /// What the controls say now, and the attributes Assign would write.
  AttrsState state() const;
  const MachSelection& machSelection() const { return *_mach; }

 protected:
  void attrsAssignArrowButton(Widget, XtPointer) override;
  void attrsConfigOptionMenu(Widget, XtPointer) override;
  void attrsExitOpText(Widget, XtPointer) override;
  void attrsRemoveOpText(Widget, XtPointer) override;
  void attrsPostOpText(Widget, XtPointer) override;
  void attrsPreOpText(Widget, XtPointer) override;
  void attrsClearPushButton(Widget, XtPointer) override;
  void r3kPushButton(Widget, XtPointer) override;
  void r4kPushButton(Widget, XtPointer) override;
  void r8kPushButton(Widget, XtPointer) override;
  void r10kPushButton(Widget, XtPointer) override;

 private:
  void addToggles();
  void syncToggles();
  void opTextChanged(AttrsState::Op op);
  void selectCpuBoards(const char* processor);
  void hardwareToggled(int group, Widget toggle);
  void setMachOn();
  Widget opToggle(int op) const;
  Widget opText(int op) const;
  Widget flagToggle(int flag) const;
  std::vector<Widget> internalNameWidgets() const;
  static void cpuBoardToggleButtonCallback(Widget, XtPointer, XtPointer);
  static void gfxBoardToggleButtonCallback(Widget, XtPointer, XtPointer);
  static void subgrToggleButtonCallback(Widget, XtPointer, XtPointer);
  static void modelToggleButtonCallback(Widget, XtPointer, XtPointer);

  FileListModel* _model = nullptr;
  Reporter* _reporter = nullptr;
  std::unique_ptr<MachSelection> _mach;
  // The toggle widgets of groups 2 to 5, parallel to MachSelection's.
  std::vector<Widget> _toggles[4];
};

#endif
