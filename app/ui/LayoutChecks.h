// Checks shared by the tests of the layout classes: the widget tree, the
// texts the fallback resources give, and the routing of callbacks.
#ifndef TAMBLIN_APP_UI_LAYOUTCHECKS_H
#define TAMBLIN_APP_UI_LAYOUTCHECKS_H

#include <X11/Intrinsic.h>

#include <string>
#include <vector>

struct ExpectedWidget {
  const char* name;
  WidgetClass widgetClass;
  const char* parent;  // the parent's name
};

/// Every expected widget exists below base (base included, popups too)
/// under a parent of the given name and with the given class, and children
/// of one parent stand in the order listed (other children, such as the
/// scroll bars Motif adds, are skipped).
void expectWidgetTree(Widget base, const std::vector<ExpectedWidget>& expected);

/// The widget named name below base (whose parent is named parent when that
/// is given); null if there is none.
Widget findWidget(Widget base, const char* name, const char* parent = nullptr);

/// The text of a label, button or toggle.
std::string labelText(Widget w);

struct ExpectedText {
  const char* widget;
  const char* text;
};
void expectLabelTexts(Widget base, const std::vector<ExpectedText>& expected);

/// Every line of a fallback table reads "*widget.resource:  value": an
/// asterisk, the widget name, a dot, the resource, a colon and two blanks.
void expectResourceLinesWellFormed(const char* const* table);

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

struct ExpectedRoute {
  const char* widget;
  const char* callbackName;  // XmNactivateCallback and so on
  const char* method;
};

/// Calls each widget's callback list and expects exactly one call of the
/// method, with that widget and the call data passed through.
void expectCallbacksRouted(Widget base, const std::vector<ExpectedRoute>& routes, CallLog& log);

/// A shell like the program's own: an application shell of class
/// "Tamblin", so that resources given for the class reach its widgets.
Widget newApplicationShell(const char* name);

/// Adds a line to the display's resource database, as a user's own
/// resource would be.
void putUserResource(Widget anyWidget, const char* line);

#endif
