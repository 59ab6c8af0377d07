// Checks shared by the tests of the layout classes: the widgets others rely
// on by name, the texts the fallback resources give, and the routing of
// callbacks.
#ifndef TAMBLIN_APP_UI_LAYOUTCHECKS_H
#define TAMBLIN_APP_UI_LAYOUTCHECKS_H

#include <X11/Intrinsic.h>

#include <string>
#include <vector>

/// The widget named name below base (whose parent is named parent when that
/// is given); null if there is none.
Widget findWidget(Widget base, const char* name, const char* parent = nullptr);

/// The text of a label, button or toggle.
std::string labelText(Widget w);

/// What a test subclass records from its overridden callback methods.
struct CallLog {
  struct Call {
    std::string method;
    Widget widget;
    XtPointer callData;
  };
  std::vector<Call> calls;
  void add(const char* method, Widget w, XtPointer callData) { calls.push_back({method, w, callData}); }
};

/// One widget of a layout that something else relies on: its names from
/// below the layout's base down to it (the fallback resources and the
/// users' name it; the help key is that path; a popup's starts below its
/// shell), the text its fallback resource gives, and the callback the panel
/// hooks.
struct LayoutContract {
  const char* widget;  // "buttonGrid.allPushButton"
  const char* text = nullptr;          // null: not a labelled widget
  const char* callbackList = nullptr;  // XmNactivateCallback and so on; null: none
  const char* method = nullptr;        // the callback method it reaches
};

/// Every widget of the table stands at its path below base and shows its
/// text; calling its callback list calls the method exactly once, with that
/// widget and the call data passed through.  Every line of the fallback
/// table reads "*widget.resource:  value" (an asterisk, the widget name, a
/// dot, the resource, a colon and two blanks) and names a widget below base
/// (fallbacks null: the layout has none of its own).
void expectLayoutContract(Widget base, const char* const* fallbacks,
                          const std::vector<LayoutContract>& table, CallLog& log);

/// The height of w in pixels.
int heightOf(Widget w);

/// Makes the realized base extra pixels taller and expects the widget named
/// grower to take them all and the widgets named in fixed to keep their
/// heights.
void expectExtraHeightGoesTo(Widget base, const char* grower, const std::vector<const char*>& fixed,
                             int extra);

/// A shell like the program's own: an application shell of class
/// "Tamblin", so that resources given for the class reach its widgets.
Widget newApplicationShell(const char* name);

/// Adds a line to the display's resource database, as a user's own
/// resource would be.
void putUserResource(Widget anyWidget, const char* line);

#endif
