// FileListAddUI: the widget tree of the Add Files panel (a browser of one
// directory of the source tree, its filter row and the Add arrow).
//
// The panel class derives from it and overrides the callback methods, which
// do nothing here.
#ifndef TAMBLIN_APP_UI_FILELISTADDUI_H
#define TAMBLIN_APP_UI_FILELISTADDUI_H

#include "yr/YrComponent.h"

class FileListAddUI : public YrComponent {
 public:
  FileListAddUI(const char* name, Widget parent);
  const char* className() const override;

  /// Fallback resource lines, null terminated.
  static const char* const _defaultFileListAddUIResources[];

 protected:
  // Widget callbacks.
  virtual void allPushButton(Widget, XtPointer callData);
  virtual void arrowButton(Widget, XtPointer callData);
  virtual void defaultAction(Widget, XtPointer callData);
  virtual void directoryTextField(Widget, XtPointer callData);
  virtual void nonePushButton(Widget, XtPointer callData);
  virtual void selectionTextField(Widget, XtPointer callData);

  Widget _directoryLabel = nullptr;
  Widget _directoryTextField = nullptr;
  Widget _scrolledWindow = nullptr;
  Widget _filesList = nullptr;
  Widget _selectionGrid = nullptr;
  Widget _selectionLabel = nullptr;
  Widget _selectionTextField = nullptr;
  Widget _allPushButton = nullptr;
  Widget _nonePushButton = nullptr;
  Widget _arrowSpringBox = nullptr;
  Widget _arrowButton = nullptr;
  Widget _arrowLabel = nullptr;
};

#endif
