// YrWindow: a top-level window with a menu bar.  Panes are added with
// addMenuPane() (usually from setUpInterface()); the window owns them.
#ifndef TAMBLIN_YR_YRWINDOW_H
#define TAMBLIN_YR_YRWINDOW_H

#include <memory>
#include <vector>

#include "yr/YrMenu.h"
#include "yr/YrSimpleWindow.h"

class YrWindow : public YrSimpleWindow {
 public:
  explicit YrWindow(const char* name);
  ~YrWindow() override;
  const char* className() const override { return "YrWindow"; }

  Widget menuBar() const { return _menuBar; }
  /// A new pane of the menu bar, at position (-1: after the others).
  YrMenu* addMenuPane(const char* label, int position = -1);

 protected:
  Widget createMenuBar(Widget mainWindow) override;

 private:
  Widget _menuBar = nullptr;
  std::vector<std::unique_ptr<YrMenu>> _panes;
};

#endif
