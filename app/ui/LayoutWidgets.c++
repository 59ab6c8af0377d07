#include "app/ui/LayoutWidgets.h"

#include <Xm/ArrowB.h>
#include <Xm/ScrolledW.h>

#include <vector>

#include "ov/OvGrid.h"
#include "ov/OvSpringBox.h"

namespace {

std::vector<Arg> toArgs(LayoutArgs args, LayoutArgs more = {}) {
  std::vector<Arg> out;
  for (const auto& [name, value] : more) out.push_back({const_cast<char*>(name), value});
  for (const auto& [name, value] : args) out.push_back({const_cast<char*>(name), value});
  return out;
}

Widget create(const char* name, WidgetClass widgetClass, Widget parent, std::vector<Arg> args) {
  return XtCreateManagedWidget(name, widgetClass, parent, args.data(),
                               static_cast<Cardinal>(args.size()));
}

}  // namespace

Widget createManaged(const char* name, WidgetClass widgetClass, Widget parent, LayoutArgs args) {
  return create(name, widgetClass, parent, toArgs(args));
}

Widget createManagedGrid(const char* name, Widget parent, int rows, int columns, LayoutArgs args) {
  return create(name, ovGridWidgetClass, parent,
                toArgs(args, {{OvNnumRows, rows}, {XmNnumColumns, columns}}));
}

Widget createManagedArrow(const char* name, Widget parent, unsigned char direction) {
  return create(name, xmArrowButtonWidgetClass, parent,
                toArgs({{XmNarrowDirection, direction}, {XmNwidth, 40}, {XmNheight, 30}}));
}

Widget createManagedSpringBox(const char* name, Widget parent, LayoutArgs args) {
  return create(name, ovSpringBoxWidgetClass, parent, toArgs(args));
}

Widget createManagedScrolledWindow(const char* name, Widget parent, LayoutArgs args) {
  return create(name, xmScrolledWindowWidgetClass, parent,
                toArgs(args, {{XmNscrollingPolicy, XmAPPLICATION_DEFINED},
                              {XmNvisualPolicy, XmVARIABLE},
                              {XmNscrollBarDisplayPolicy, XmSTATIC}}));
}
