// FileListAttrsUI: the widget tree of the Attributes panel (software
// attributes: config with its option menu, the operation attributes with
// their command texts, the flags; hardware attributes: the machine groups,
// whose toggles the panel adds at run time; Clear and the Assign arrow).
//
// The panel class derives from it and overrides the callback methods, which
// do nothing here.
#ifndef TAMBLIN_APP_UI_FILELISTATTRSUI_H
#define TAMBLIN_APP_UI_FILELISTATTRSUI_H

#include "yr/YrComponent.h"

class FileListAttrsUI : public YrComponent {
 public:
  FileListAttrsUI(const char* name, Widget parent);
  const char* className() const override;

  /// Fallback resource lines, null terminated.
  static const char* const _defaultFileListAttrsUIResources[];

 protected:
  // Widget callbacks.
  virtual void attrsAssignArrowButton(Widget, XtPointer callData);
  virtual void attrsConfigOptionMenu(Widget, XtPointer callData);
  virtual void attrsConfigToggleButton(Widget, XtPointer callData);
  virtual void attrsExitOpText(Widget, XtPointer callData);
  virtual void attrsRemoveOpText(Widget, XtPointer callData);
  virtual void attrsPostOpText(Widget, XtPointer callData);
  virtual void attrsPreOpText(Widget, XtPointer callData);
  virtual void attrsClearPushButton(Widget, XtPointer callData);
  virtual void r3kPushButton(Widget, XtPointer callData);
  virtual void r4kPushButton(Widget, XtPointer callData);
  virtual void r8kPushButton(Widget, XtPointer callData);
  virtual void r10kPushButton(Widget, XtPointer callData);

  Widget _scrolledWindow = nullptr;
  Widget _rowColumn = nullptr;
  Widget _softAttrsLabel = nullptr;
  Widget _attrsConfigGrid = nullptr;
  Widget _attrsConfigToggleButton = nullptr;
  Widget _pulldownMenu = nullptr;
  Widget _configUpdatePushButton = nullptr;
  Widget _configNoUpdatePushButton = nullptr;
  Widget _configSuggestPushButton = nullptr;
  Widget _attrsConfigOptionMenu = nullptr;
  Widget _attrsShadowGrid = nullptr;
  Widget _attrsShadowToggleButton = nullptr;
  Widget _attrsPreOpGrid = nullptr;
  Widget _attrsPreOpToggleButton = nullptr;
  Widget _attrsPreOpText = nullptr;
  Widget _attrsPostOpGrid = nullptr;
  Widget _attrsPostOpToggleButton = nullptr;
  Widget _attrsPostOpText = nullptr;
  Widget _attrsExitOpGrid = nullptr;
  Widget _attrsExitOpToggleButton = nullptr;
  Widget _attrsExitOpText = nullptr;
  Widget _attrsRemoveOpGrid = nullptr;
  Widget _attrsRemoveOpToggleButton = nullptr;
  Widget _attrsRemoveOpText = nullptr;
  Widget _attrsNoShareGrid = nullptr;
  Widget _attrsNoShareToggleButton = nullptr;
  Widget _attrsNoStripGrid = nullptr;
  Widget _attrsNoStripToggleButton = nullptr;
  Widget _attrsNoRqsGrid = nullptr;
  Widget _attrsNoRqsToggleButton = nullptr;
  Widget _attrsStripDSOGrid = nullptr;
  Widget _attrsStripDSOToggleButton = nullptr;
  Widget _hardAttrsLabel = nullptr;
  Widget _hardWarnLabel = nullptr;
  Widget _attrsMachGrid = nullptr;
  Widget _attrsMachToggleButton = nullptr;
  Widget _attrsMachRowColumn = nullptr;
  Widget _attrsModelLabel = nullptr;
  Widget _attrsModelRowColumn = nullptr;
  Widget _attrsCpuLabel = nullptr;
  Widget _attrsCpuSpringBox = nullptr;
  Widget _r3kPushButton = nullptr;
  Widget _r4kPushButton = nullptr;
  Widget _attrsCpuSpringBox1 = nullptr;
  Widget _r8kPushButton = nullptr;
  Widget _r10kPushButton = nullptr;
  Widget _attrsCpuBoardRowColumn = nullptr;
  Widget _attrsGfxBoardLabel = nullptr;
  Widget _attrsGfxBoardRowColumn = nullptr;
  Widget _attrsSubgrLabel = nullptr;
  Widget _attrsSubgrRowColumn = nullptr;
  Widget _attrsSpringBox = nullptr;
  Widget _attrsClearPushButton = nullptr;
  Widget _attrsSpringBox1 = nullptr;
  Widget _attrsAssignArrowButton = nullptr;
  Widget _attrsAssignLabel = nullptr;

 private:
  void buildSoftwareAttributes();
  void buildHardwareAttributes();
  static void clipResized(Widget, XtPointer clientData, XEvent* event, Boolean*);
};

#endif
