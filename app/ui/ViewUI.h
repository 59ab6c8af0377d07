// ViewUI: the widget tree of the main window's contents.
//
// A grid of two rows: row 0 is left for the tab panel, row 1 holds a paned
// window with the message log over the work area.  The work area has a left
// form, where the bodies of the five tabs lie stacked on each other (each
// attached to all four sides), and on its right the file list frame and the
// node detail form, also stacked.  No fallback resources, no callbacks: View
// decides what is shown.
#ifndef TAMBLIN_APP_UI_VIEWUI_H
#define TAMBLIN_APP_UI_VIEWUI_H

#include "yr/YrComponent.h"

class ViewUI : public YrComponent {
 public:
  ViewUI(const char* name, Widget parent);
  const char* className() const override;

  /// The window's default size: its contents' width and height.
  static constexpr int kDefaultWidth = 838;
  static constexpr int kDefaultHeight = 790;
  /// The work area's height within it.
  static constexpr int kBodyHeight = 669;

 protected:
  Widget _viewPanedWindow = nullptr;
  Widget _messageForm = nullptr;      // the message log pane
  Widget _scrolledWindow = nullptr;   // around _messageText
  Widget _messageText = nullptr;
  Widget _viewForm = nullptr;         // the work area pane
  Widget _rightForm = nullptr;        // node details (view 0)
  Widget _rightFrame = nullptr;       // the file list (views 1 to 4)
  Widget _leftForm = nullptr;
  Widget _specBody = nullptr;         // view 0
  Widget _permsBody = nullptr;        // view 2
  Widget _filesBody = nullptr;        // view 1: _addBody over _tagsBody
  Widget _addBody = nullptr;
  Widget _tagsBody = nullptr;
  Widget _generateBody = nullptr;     // view 4
  Widget _attrsBody = nullptr;        // view 3
};

#endif
