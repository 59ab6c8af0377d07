// SpecDetailUI: the widget tree of the node detail panel.  Four forms lie
// stacked in one frame, one per kind of node (product, subsystem, image) and
// one for no node; the panel manages the one it shows.
//
// The panel class derives from it and overrides the callback methods, which
// do nothing here.
#ifndef TAMBLIN_APP_UI_SPECDETAILUI_H
#define TAMBLIN_APP_UI_SPECDETAILUI_H

#include "yr/YrComponent.h"

class SpecDetailUI : public YrComponent {
 public:
  SpecDetailUI(const char* name, Widget parent);
  const char* className() const override;

  /// Fallback resource lines, null terminated.
  static const char* const _defaultSpecDetailUIResources[];

 protected:
  // Widget callbacks.
  virtual void applyArrowButton(Widget, XtPointer callData);
  virtual void browseSelection(Widget, XtPointer callData);
  virtual void incompatPushButton(Widget, XtPointer callData);
  virtual void prereqPushButton(Widget, XtPointer callData);
  virtual void replacesPushButton(Widget, XtPointer callData);

  /// The resource "showRequiredToggleButton", read at construction.
  Boolean _showRequiredToggleButton = False;

  Widget _applySpringBox = nullptr;
  Widget _applyArrowButton = nullptr;
  Widget _applyLabel = nullptr;
  Widget _frame = nullptr;
  Widget _form = nullptr;
  Widget _productForm = nullptr;
  Widget _productGrid = nullptr;
  Widget _nameGrid = nullptr;
  Widget _productNameLabel = nullptr;
  Widget _productNameTextField = nullptr;
  Widget _idGrid = nullptr;
  Widget _productIdLabel = nullptr;
  Widget _productIdTextField = nullptr;
  Widget _subsysForm = nullptr;
  Widget _subsysGrid = nullptr;
  Widget _nameGrid2 = nullptr;
  Widget _subsysNameLabel = nullptr;
  Widget _subsysNameTextField = nullptr;
  Widget _idGrid2 = nullptr;
  Widget _subsysIdLabel = nullptr;
  Widget _subsysIdTextField = nullptr;
  Widget _flagsGrid = nullptr;
  Widget _flagsLabel = nullptr;
  Widget _flagsGrid1 = nullptr;
  Widget _defaultToggleButton = nullptr;
  Widget _requiredToggleButton = nullptr;
  Widget _minirootToggleButton = nullptr;
  Widget _patchToggleButton = nullptr;
  Widget _panedWindow = nullptr;
  Widget _mappingGrid = nullptr;
  Widget _mappingLabel = nullptr;
  Widget _mappingText = nullptr;
  Widget _rulesGrid = nullptr;
  Widget _rulesLabel = nullptr;
  Widget _rulesText = nullptr;
  Widget _ruleButtonsLabel = nullptr;
  Widget _prereqPushButton = nullptr;
  Widget _incompatPushButton = nullptr;
  Widget _replacesPushButton = nullptr;
  Widget _imageForm = nullptr;
  Widget _imageGrid = nullptr;
  Widget _nameGrid1 = nullptr;
  Widget _imageNameLabel = nullptr;
  Widget _imageNameTextField = nullptr;
  Widget _idGrid1 = nullptr;
  Widget _imageIdLabel = nullptr;
  Widget _imageIdTextField = nullptr;
  Widget _versionGrid = nullptr;
  Widget _versionLabel = nullptr;
  Widget _versionTextField = nullptr;
  Widget _orderGrid = nullptr;
  Widget _orderLabel = nullptr;
  Widget _orderTextField = nullptr;
  Widget _scrolledWindow = nullptr;
  Widget _orderList = nullptr;
  Widget _noneForm = nullptr;
  Widget _noneGrid = nullptr;
  Widget _noneLabel = nullptr;

 private:
  void buildProductForm();
  void buildSubsystemForm();
  void buildImageForm();
};

#endif
