// FileListPermsUI: the widget tree of the permissions and destinations
// panel (the two tree roots with their Apply arrow; mode, owner, group and
// destination fields with their Assign arrow; Reset).
//
// The panel class derives from it and overrides the callback methods, which
// do nothing here.
#ifndef TAMBLIN_APP_UI_FILELISTPERMSUI_H
#define TAMBLIN_APP_UI_FILELISTPERMSUI_H

#include "yr/YrComponent.h"

class FileListPermsUI : public YrComponent {
 public:
  FileListPermsUI(const char* name, Widget parent);
  const char* className() const override;

  /// Fallback resource lines, null terminated.
  static const char* const _defaultFileListPermsUIResources[];

 protected:
  // Widget callbacks.
  virtual void applyArrowButton(Widget, XtPointer callData);
  virtual void assignArrowButton(Widget, XtPointer callData);
  virtual void destDirTextField(Widget, XtPointer callData);
  virtual void destFileTextField(Widget, XtPointer callData);
  virtual void destRootTextField(Widget, XtPointer callData);
  virtual void groupTextField(Widget, XtPointer callData);
  virtual void modeTextField(Widget, XtPointer callData);
  virtual void ownerTextField(Widget, XtPointer callData);
  virtual void resetPushButton(Widget, XtPointer callData);
  virtual void sourceRootTextField(Widget, XtPointer callData);

  Widget _upperGrid = nullptr;
  Widget _frame = nullptr;
  Widget _rootGrid = nullptr;
  Widget _sourceRootLabel = nullptr;
  Widget _sourceRootTextField = nullptr;
  Widget _destRootLabel = nullptr;
  Widget _destRootTextField = nullptr;
  Widget _applySpringBox = nullptr;
  Widget _applyArrowButton = nullptr;
  Widget _applyLabel = nullptr;
  Widget _lowerGrid = nullptr;
  Widget _permsDestFrame = nullptr;
  Widget _permsDestGrid = nullptr;
  Widget _permsGrid = nullptr;
  Widget _modeLabel = nullptr;
  Widget _modeTextField = nullptr;
  Widget _modeLabel1 = nullptr;
  Widget _ownerLabel = nullptr;
  Widget _ownerTextField = nullptr;
  Widget _ownerLabel1 = nullptr;
  Widget _groupLabel = nullptr;
  Widget _groupTextField = nullptr;
  Widget _groupLabel1 = nullptr;
  Widget _permsDestSeparator = nullptr;
  Widget _destGrid = nullptr;
  Widget _destDirLabel = nullptr;
  Widget _destDirTextField = nullptr;
  Widget _destFileLabel = nullptr;
  Widget _destFileTextField = nullptr;
  Widget _assignSpringBox = nullptr;
  Widget _assignArrowButton = nullptr;
  Widget _assignLabel = nullptr;
  Widget _resetSpringBox = nullptr;
  Widget _resetPushButton = nullptr;
};

#endif
