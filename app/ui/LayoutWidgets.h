// Small helpers for building the panel layouts: a widget created managed
// from a short list of resources, and the grids and spring boxes.
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

/// A managed spring box.
Widget createManagedSpringBox(const char* name, Widget parent, LayoutArgs args = {});

/// A managed scrolled window whose child (a list or a text) brings its own
/// scroll bars.
Widget createManagedScrolledWindow(const char* name, Widget parent, LayoutArgs args = {});

#endif
