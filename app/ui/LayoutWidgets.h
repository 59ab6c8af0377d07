// Small helpers for building the panel layouts: a widget created managed
// from a short list of resources, the grids and spring boxes, and the
// routing of a widget's callback to a layout's callback method.
#ifndef TAMBLIN_APP_UI_LAYOUTWIDGETS_H
#define TAMBLIN_APP_UI_LAYOUTWIDGETS_H

#include <X11/Intrinsic.h>

#include <initializer_list>
#include <utility>

using LayoutArgs = std::initializer_list<std::pair<const char*, XtArgVal>>;

/// Creates a managed widget of the class with the resources given.
Widget createManaged(const char* name, WidgetClass widgetClass, Widget parent,
                     LayoutArgs args = {});

/// A managed grid of rows by columns.
Widget createManagedGrid(const char* name, Widget parent, int rows, int columns,
                         LayoutArgs args = {});

/// A managed arrow button of the size every panel's Assign, Apply and Add
/// arrows have, pointing in direction (XmARROW_RIGHT and so on).
Widget createManagedArrow(const char* name, Widget parent, unsigned char direction);

/// A managed spring box.
Widget createManagedSpringBox(const char* name, Widget parent, LayoutArgs args = {});

/// A managed scrolled window whose child (a list or a text) brings its own
/// scroll bars.
Widget createManagedScrolledWindow(const char* name, Widget parent, LayoutArgs args = {});

/// The static callback Xt calls for a layout's callback method: the client
/// data is the layout, and the call is virtual, so the panel's override of
/// the method runs.
template <class Layout, void (Layout::*method)(Widget, XtPointer)>
void routeToMethod(Widget w, XtPointer clientData, XtPointer callData) {
  (static_cast<Layout*>(clientData)->*method)(w, callData);
}

/// One callback of a layout: the widget, its callback list (XmNactivateCallback
/// and so on) and the static callback, usually a routeToMethod.
struct LayoutRoute {
  Widget widget;
  const char* list;
  XtCallbackProc callback;
};

/// Adds each route's callback with the layout as client data, in the order
/// given.
template <class Layout>
void addRoutes(Layout* layout, std::initializer_list<LayoutRoute> routes) {
  for (const LayoutRoute& r : routes)
    XtAddCallback(r.widget, r.list, r.callback, static_cast<XtPointer>(layout));
}

#endif
