// ListView: the one way a panel talks to its list widget (an OvList), so
// that the panel deals in rows and gestures and never in widget call data.
//
// The list asks a Source for what it draws (how many rows, a row's text,
// whether it is selected) and hands what the user does to Gestures (the
// default action on a row, select one, toggle one, select a range, set a
// range, all, none).  The selection lives with the owner of the Source; the
// list never keeps a copy, so a million selected rows cost the list
// nothing.  Positions count from 1.
#ifndef TAMBLIN_FILELIST_LISTVIEW_H
#define TAMBLIN_FILELIST_LISTVIEW_H

#include <X11/Intrinsic.h>

#include <string_view>
#include <vector>

struct OvListCallbackStruct;

class ListView {
 public:
  class Source {
   public:
    virtual ~Source() = default;
    virtual int count() const = 0;
    /// The text must stay valid until the next call.
    virtual std::string_view text(int position) const = 0;
    virtual bool isSelected(int position) const = 0;
  };

  class Gestures {
   public:
    virtual ~Gestures() = default;
    /// Double click or Return on position.
    virtual void activate(int position) = 0;
    /// Only position selected (a click, or an arrow key).
    virtual void selectOne(int position) = 0;
    /// position flips (Ctrl-click, Ctrl+space).
    virtual void toggle(int position) = 0;
    /// Only first..last (first <= last) selected (Shift-click, a drag).
    virtual void selectRange(int first, int last) = 0;
    /// first..last become on; the others stay (Ctrl-drag).
    virtual void setRange(int first, int last, bool on) = 0;
    virtual void selectAll() = 0;
    virtual void deselectAll() = 0;
  };

  /// list is an OvList; source and gestures must outlive the view.
  ListView(Widget list, Source& source, Gestures& gestures);
  ~ListView();
  ListView(const ListView&) = delete;
  ListView& operator=(const ListView&) = delete;

  /// The list, or null once it has been destroyed.
  Widget widget() const { return _list; }

  /// The rows were replaced: the list counts them again and redraws.
  void contentsChanged();
  /// Selected states changed: the rows that show are drawn again.
  void selectionChanged();
  /// Scrolls so that the last row shows.
  void showLast();
  /// Scrolls position (one-based) to the middle of the list unless it
  /// shows already.
  void showPosition(int position);
  int itemCount() const;
  /// What the list shows selected, asked row by row (for checks; costs a
  /// pass over every row).
  std::vector<int> selection() const;

  /// Turns one call of the list's gesture or default action callback into
  /// the Gestures call it stands for.  The view takes the gesture callback
  /// itself; the default action reaches it through its panel's layout
  /// class, which routes that callback by name.
  void handle(const OvListCallbackStruct& cbs);

 private:
  static const char* textOf(XtPointer self, int position, size_t* length);
  static Boolean selectedOf(XtPointer self, int position);
  static void callback(Widget, XtPointer self, XtPointer callData);
  static void destroyed(Widget, XtPointer self, XtPointer);

  Widget _list;
  Source& _source;
  Gestures& _gestures;
};

#endif
