// FileListUI: the widget tree of the idb file list (the list of idb lines
// with its filter row and the Delete and Undo buttons).
//
// The panel class derives from it and overrides the callback methods, which
// do nothing here.
#ifndef TAMBLIN_APP_UI_FILELISTUI_H
#define TAMBLIN_APP_UI_FILELISTUI_H

#include "yr/YrComponent.h"

class FileListUI : public YrComponent {
 public:
  FileListUI(const char* name, Widget parent);
  const char* className() const override;

  /// Fallback resource lines, null terminated.
  static const char* const _defaultFileListUIResources[];

 protected:
  // Widget callbacks.
  virtual void allPushButton(Widget, XtPointer callData);
  virtual void defaultAction(Widget, XtPointer callData);
  virtual void nonePushButton(Widget, XtPointer callData);
  virtual void removePushButton(Widget, XtPointer callData);
  virtual void selectionTextField(Widget, XtPointer callData);
  virtual void undoPushButton(Widget, XtPointer callData);

  Widget _label = nullptr;
  Widget _scrolledWindow = nullptr;
  Widget _fileListWidget = nullptr;
  Widget _selectionGrid = nullptr;
  Widget _selectionLabel = nullptr;
  Widget _selectionTextField = nullptr;
  Widget _allPushButton = nullptr;
  Widget _nonePushButton = nullptr;
  Widget _springBox = nullptr;
  Widget _removePushButton = nullptr;
  Widget _undoPushButton = nullptr;
};

#endif
