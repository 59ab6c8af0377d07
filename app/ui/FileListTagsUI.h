// FileListTagsUI: the widget tree of the Tags panel (the list of tags, the
// tag field, Add, Replace and Delete, and the Assign arrow).
//
// The panel class derives from it and overrides the callback methods, which
// do nothing here.
#ifndef TAMBLIN_APP_UI_FILELISTTAGSUI_H
#define TAMBLIN_APP_UI_FILELISTTAGSUI_H

#include "yr/YrComponent.h"

class FileListTagsUI : public YrComponent {
 public:
  FileListTagsUI(const char* name, Widget parent);
  const char* className() const override;

  /// Fallback resource lines, null terminated.
  static const char* const _defaultFileListTagsUIResources[];

 protected:
  // Widget callbacks.
  virtual void addPushButton(Widget, XtPointer callData);
  virtual void arrowButton(Widget, XtPointer callData);
  virtual void browseSelection(Widget, XtPointer callData);
  virtual void defaultAction(Widget, XtPointer callData);
  virtual void deletePushButton(Widget, XtPointer callData);
  virtual void replacePushButton(Widget, XtPointer callData);
  virtual void selectionTextField(Widget, XtPointer callData);
  virtual void singleSelection(Widget, XtPointer callData);

  Widget _label = nullptr;
  Widget _scrolledWindow = nullptr;
  Widget _tagsList = nullptr;
  Widget _selectionTextField = nullptr;
  Widget _buttonSpringBox = nullptr;
  Widget _addPushButton = nullptr;
  Widget _replacePushButton = nullptr;
  Widget _deletePushButton = nullptr;
  Widget _arrowSpringBox = nullptr;
  Widget _arrowButton = nullptr;
  Widget _arrowLabel = nullptr;
};

#endif
