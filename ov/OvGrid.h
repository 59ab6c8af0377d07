// OvGrid: a constraint manager that lays its children out in rows and
// columns.
//
// Each child names its cell with the constraints "row" and "column" (both
// from 0).  A row is as high as its highest child, a column as wide as its
// widest.  When the grid is larger than that, the extra space goes to the
// rows and columns that may grow: a row grows when it has not been fixed with
// OvGridSetRowResizable and at least one of its children has
// "resizeVertical" set (columns likewise with "resizeHorizontal").  A child
// with "resizeHorizontal" ("resizeVertical") set fills its cell in that
// direction; otherwise it keeps its own size and sits in the cell where its
// "gravity" puts it (the X gravity numbers: 1 north-west ... 5 centre ... 9
// south-east).
//
// "numRows" and "numColumns" give the grid's size in cells; children placed
// outside it widen the grid rather than being lost.  A grid created with an
// explicit width or height keeps it as its preferred size in that direction.
#ifndef TAMBLIN_OV_OVGRID_H
#define TAMBLIN_OV_OVGRID_H

#include <Xm/Xm.h>

extern WidgetClass ovGridWidgetClass;

// Resource names (the grid's own and the constraints of its children).
#define OvNnumRows const_cast<char*>("numRows")
#define OvCNumRows const_cast<char*>("NumRows")
#define OvNnumColumns XmNnumColumns
#define OvNrow const_cast<char*>("row")
#define OvCRow const_cast<char*>("Row")
#define OvNcolumn const_cast<char*>("column")
#define OvCColumn const_cast<char*>("Column")
#define OvNgravity const_cast<char*>("gravity")
#define OvCGravity const_cast<char*>("Gravity")
#define OvNresizeVertical const_cast<char*>("resizeVertical")
#define OvCResizeVertical const_cast<char*>("ResizeVertical")
#define OvNresizeHorizontal const_cast<char*>("resizeHorizontal")
#define OvCResizeHorizontal const_cast<char*>("ResizeHorizontal")

/// Creates an (unmanaged) grid.
Widget OvCreateGrid(Widget parent, const char* name, ArgList args, Cardinal numArgs);

/// Whether a row (column) may take extra space.  Rows and columns may
/// unless set otherwise; fixing one that does not exist yet is remembered.
void OvGridSetRowResizable(Widget grid, int row, Boolean resizable);
void OvGridSetColumnResizable(Widget grid, int column, Boolean resizable);

#endif
