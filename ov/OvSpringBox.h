// OvSpringBox: a row of children kept at their own sizes and held together
// in the middle by springs of free space at both ends.
//
// Children stand left to right in the order they were created, the spacing
// apart (unmanaged ones leave no gap), and are centred vertically.  The box
// is an OvGrid of one row, so its children take the grid's constraints but
// ignore "row", "column" and the resize flags.
#ifndef TAMBLIN_OV_OVSPRINGBOX_H
#define TAMBLIN_OV_OVSPRINGBOX_H

#include <Xm/Xm.h>

extern WidgetClass ovSpringBoxWidgetClass;

/// Creates an (unmanaged) spring box.
Widget OvCreateSpringBox(Widget parent, const char* name, ArgList args, Cardinal numArgs);

#endif
