// GenerateUI: the widget tree of the Build panel (the spec file, the two
// roots and the distribution directory, the build options, Build All and
// Test Build).
//
// The panel class derives from it and overrides the callback methods, which
// do nothing here.
#ifndef TAMBLIN_APP_UI_GENERATEUI_H
#define TAMBLIN_APP_UI_GENERATEUI_H

#include "yr/YrComponent.h"

class GenerateUI : public YrComponent {
 public:
  GenerateUI(const char* name, Widget parent);
  const char* className() const override;

  /// Fallback resource lines, null terminated.
  static const char* const _defaultGenerateUIResources[];

 protected:
  // Widget callbacks.
  virtual void allPushButton(Widget, XtPointer callData);
  virtual void dryrunPushButton(Widget, XtPointer callData);

  Widget _label = nullptr;
  Widget _sourceRootGrid = nullptr;
  Widget _sourceRootLabel = nullptr;
  Widget _sourceRootTextField = nullptr;
  Widget _destRootGrid = nullptr;
  Widget _destRootLabel = nullptr;
  Widget _destRootTextField = nullptr;
  Widget _distDirGrid = nullptr;
  Widget _distDirLabel = nullptr;
  Widget _distDirTextField = nullptr;
  Widget _rowColumn = nullptr;
  Widget _verboseToggleButton = nullptr;
  Widget _noCompressToggleButton = nullptr;
  Widget _noStripToggleButton = nullptr;
  Widget _buttonGrid = nullptr;
  Widget _allPushButton = nullptr;
  Widget _dryrunPushButton = nullptr;
};

#endif
