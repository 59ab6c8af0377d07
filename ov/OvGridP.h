// Private structures of OvGrid, for its subclasses (OvSpringBox).
#ifndef TAMBLIN_OV_OVGRIDP_H
#define TAMBLIN_OV_OVGRIDP_H

#include <Xm/ManagerP.h>

#include "ov/OvGrid.h"

struct OvGridState;  // rows and columns fixed by OvGridSet*Resizable

struct OvGridClassPart {
  XtPointer extension;
};

struct OvGridClassRec {
  CoreClassPart core_class;
  CompositeClassPart composite_class;
  ConstraintClassPart constraint_class;
  XmManagerClassPart manager_class;
  OvGridClassPart grid_class;
};

extern OvGridClassRec ovGridClassRec;

struct OvGridPart {
  int num_rows;
  int num_columns;
  Dimension margin_width;
  Dimension margin_height;
  Dimension spacing;
  // Width and height given at creation (0: follow the children).
  Dimension fixed_width;
  Dimension fixed_height;
  OvGridState* state;
  // Nothing grows: extra space is split evenly before the first and after
  // the last row and column, which keeps the children together in the
  // middle (the spring box's springs).
  Boolean centre;
};

struct OvGridRec {
  CorePart core;
  CompositePart composite;
  ConstraintPart constraint;
  XmManagerPart manager;
  OvGridPart grid;
};

struct OvGridConstraintPart {
  int row;
  int column;
  int gravity;
  Boolean resize_vertical;
  Boolean resize_horizontal;
  // The size the child wants, and the size the grid last gave it: a child
  // found at another size than the one given has resized itself.
  Dimension pref_width;
  Dimension pref_height;
  Dimension given_width;
  Dimension given_height;
};

struct OvGridConstraintRec {
  XmManagerConstraintPart manager;
  OvGridConstraintPart grid;
};

inline OvGridConstraintPart* ovGridConstraint(Widget child) {
  return &reinterpret_cast<OvGridConstraintRec*>(child->core.constraints)->grid;
}

#endif
