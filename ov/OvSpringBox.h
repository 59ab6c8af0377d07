// OvSpringBox: a row of children kept at their own sizes, with equal springs
// of free space around them.
//
// Children stand left to right in the order they were created (unmanaged
// ones leave no gap) and are centred vertically.  The box is an OvGrid of
// one row whose columns all share the extra width, so its children take the
// grid's constraints but ignore "row", "column" and the resize flags.
#ifndef TAMBLIN_OV_OVSPRINGBOX_H
#define TAMBLIN_OV_OVSPRINGBOX_H

#include <Xm/Xm.h>

extern WidgetClass ovSpringBoxWidgetClass;

/// Creates an (unmanaged) spring box.
Widget OvCreateSpringBox(Widget parent, const char* name, ArgList args, Cardinal numArgs);

#endif
