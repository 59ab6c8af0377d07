#include "ov/OvGridP.h"

#include <Xm/XmP.h>

#include <algorithm>
#include <vector>

struct OvGridState {
  std::vector<bool> fixedRows;
  std::vector<bool> fixedColumns;
};

namespace {

#define GRID_OFFSET(field) XtOffsetOf(OvGridRec, grid.field)
#define CONSTRAINT_OFFSET(field) XtOffsetOf(OvGridConstraintRec, grid.field)

XtResource gridResources[] = {
    {(OvNnumRows), (OvCNumRows), XmRInt, sizeof(int),
     GRID_OFFSET(num_rows), XmRImmediate, reinterpret_cast<XtPointer>(1)},
    {const_cast<char*>(XmNnumColumns), const_cast<char*>(XmCNumColumns), XmRInt, sizeof(int),
     GRID_OFFSET(num_columns), XmRImmediate, reinterpret_cast<XtPointer>(1)},
    {const_cast<char*>(XmNmarginWidth), const_cast<char*>(XmCMarginWidth), XmRHorizontalDimension,
     sizeof(Dimension), GRID_OFFSET(margin_width), XmRImmediate, reinterpret_cast<XtPointer>(2)},
    {const_cast<char*>(XmNmarginHeight), const_cast<char*>(XmCMarginHeight), XmRVerticalDimension,
     sizeof(Dimension), GRID_OFFSET(margin_height), XmRImmediate, reinterpret_cast<XtPointer>(2)},
    {const_cast<char*>(XmNspacing), const_cast<char*>(XmCSpacing), XmRHorizontalDimension,
     sizeof(Dimension), GRID_OFFSET(spacing), XmRImmediate, reinterpret_cast<XtPointer>(4)},
};

XtResource constraintResources[] = {
    {(OvNrow), (OvCRow), XmRInt, sizeof(int), CONSTRAINT_OFFSET(row),
     XmRImmediate, reinterpret_cast<XtPointer>(0)},
    {(OvNcolumn), (OvCColumn), XmRInt, sizeof(int),
     CONSTRAINT_OFFSET(column), XmRImmediate, reinterpret_cast<XtPointer>(0)},
    {(OvNgravity), (OvCGravity), XmRInt, sizeof(int),
     CONSTRAINT_OFFSET(gravity), XmRImmediate, reinterpret_cast<XtPointer>(5)},
    {(OvNresizeVertical), (OvCResizeVertical), XmRBoolean,
     sizeof(Boolean), CONSTRAINT_OFFSET(resize_vertical), XmRImmediate, reinterpret_cast<XtPointer>(True)},
    {(OvNresizeHorizontal), (OvCResizeHorizontal), XmRBoolean,
     sizeof(Boolean), CONSTRAINT_OFFSET(resize_horizontal), XmRImmediate,
     reinterpret_cast<XtPointer>(True)},
};

OvGridPart& part(Widget w) { return reinterpret_cast<OvGridRec*>(w)->grid; }

// One row or column of the plan.
struct Track {
  int natural = 0;  // the largest child's outer size
  bool used = false;
  bool grows = false;
  int size = 0;
  int position = 0;
};

struct Plan {
  std::vector<Track> rows;
  std::vector<Track> columns;
  int width = 0;   // preferred size of the grid
  int height = 0;
};

int outerWidth(Widget child) {
  return ovGridConstraint(child)->pref_width + 2 * child->core.border_width;
}
int outerHeight(Widget child) {
  return ovGridConstraint(child)->pref_height + 2 * child->core.border_width;
}

template <typename F>
void forManagedChildren(Widget grid, F f) {
  CompositeWidget cw = reinterpret_cast<CompositeWidget>(grid);
  for (Cardinal i = 0; i < cw->composite.num_children; ++i) {
    Widget child = cw->composite.children[i];
    if (XtIsManaged(child)) f(child);
  }
}

int naturalLength(const std::vector<Track>& tracks, int margin, int spacing) {
  int length = 2 * margin;
  int used = 0;
  for (const Track& t : tracks) {
    if (!t.used) continue;
    length += t.natural;
    ++used;
  }
  if (used > 1) length += spacing * (used - 1);
  return length;
}

Plan makePlan(Widget grid) {
  OvGridPart& g = part(grid);
  int rows = std::max(g.num_rows, 1), columns = std::max(g.num_columns, 1);
  forManagedChildren(grid, [&](Widget child) {
    OvGridConstraintPart* c = ovGridConstraint(child);
    rows = std::max(rows, c->row + 1);
    columns = std::max(columns, c->column + 1);
  });
  Plan plan;
  plan.rows.resize(rows);
  plan.columns.resize(columns);
  forManagedChildren(grid, [&](Widget child) {
    OvGridConstraintPart* c = ovGridConstraint(child);
    Track& row = plan.rows[std::max(c->row, 0)];
    Track& column = plan.columns[std::max(c->column, 0)];
    row.used = column.used = true;
    row.natural = std::max(row.natural, outerHeight(child));
    column.natural = std::max(column.natural, outerWidth(child));
    row.grows = row.grows || c->resize_vertical;
    column.grows = column.grows || c->resize_horizontal;
  });
  if (g.centre) {
    for (Track& t : plan.rows) t.grows = false;
    for (Track& t : plan.columns) t.grows = false;
  }
  for (size_t i = 0; i < g.state->fixedRows.size() && i < plan.rows.size(); ++i)
    if (g.state->fixedRows[i]) plan.rows[i].grows = false;
  for (size_t i = 0; i < g.state->fixedColumns.size() && i < plan.columns.size(); ++i)
    if (g.state->fixedColumns[i]) plan.columns[i].grows = false;
  plan.width = g.fixed_width ? g.fixed_width : naturalLength(plan.columns, g.margin_width, g.spacing);
  plan.height =
      g.fixed_height ? g.fixed_height : naturalLength(plan.rows, g.margin_height, g.spacing);
  plan.width = std::max(plan.width, 1);
  plan.height = std::max(plan.height, 1);
  return plan;
}

// Gives the tracks their sizes and positions within length.  Extra space is
// shared by the growing tracks (or split before and after all of them when
// centring); a shortfall is taken from the growing tracks first, from all
// tracks when none grows.
void distribute(std::vector<Track>& tracks, int length, int margin, int spacing, bool centre) {
  for (Track& t : tracks) t.size = t.used ? t.natural : 0;
  int delta = length - naturalLength(tracks, margin, spacing);
  std::vector<Track*> takers;
  for (Track& t : tracks)
    if (t.used && t.grows) takers.push_back(&t);
  if (delta < 0 && takers.empty())
    for (Track& t : tracks)
      if (t.used) takers.push_back(&t);
  if (delta != 0 && !takers.empty()) {
    int n = static_cast<int>(takers.size());
    int share = delta / n, rest = delta - share * n;
    for (Track* t : takers) t->size = std::max(1, t->size + share);
    takers.back()->size = std::max(1, takers.back()->size + rest);
  }
  int position = margin;
  if (centre && delta > 0) position += delta / 2;
  for (Track& t : tracks) {
    t.position = position;
    if (t.used) position += t.size + spacing;
  }
}

// Where along a cell of length cell a child of length size sits: 0 start,
// 1 centre, 2 end.
int align(int cell, int size, int where) {
  if (where == 0) return 0;
  if (where == 1) return (cell - size) / 2;
  return cell - size;
}

void layout(Widget grid) {
  OvGridPart& g = part(grid);
  Plan plan = makePlan(grid);
  distribute(plan.columns, grid->core.width, g.margin_width, g.spacing, g.centre);
  distribute(plan.rows, grid->core.height, g.margin_height, g.spacing, g.centre);
  forManagedChildren(grid, [&](Widget child) {
    OvGridConstraintPart* c = ovGridConstraint(child);
    const Track& row = plan.rows[std::max(c->row, 0)];
    const Track& column = plan.columns[std::max(c->column, 0)];
    int border = child->core.border_width;
    int w = c->resize_horizontal ? column.size : std::min(outerWidth(child), column.size);
    int h = c->resize_vertical ? row.size : std::min(outerHeight(child), row.size);
    int gravity = (c->gravity >= 1 && c->gravity <= 9) ? c->gravity - 1 : 4;
    int x = column.position + align(column.size, w, gravity % 3);
    int y = row.position + align(row.size, h, gravity / 3);
    Dimension innerW = static_cast<Dimension>(std::max(1, w - 2 * border));
    Dimension innerH = static_cast<Dimension>(std::max(1, h - 2 * border));
    c->given_width = innerW;
    c->given_height = innerH;
    XmeConfigureObject(child, static_cast<Position>(x), static_cast<Position>(y), innerW, innerH,
                       child->core.border_width);
  });
}

// A child found at another size than the one the grid gave it has resized
// itself (before the grid was realized, Xt grants such changes without
// asking): that is the size it wants.
void notePreferences(Widget grid) {
  forManagedChildren(grid, [](Widget child) {
    OvGridConstraintPart* c = ovGridConstraint(child);
    if (child->core.width != c->given_width || c->pref_width == 0) c->pref_width = child->core.width;
    if (child->core.height != c->given_height || c->pref_height == 0)
      c->pref_height = child->core.height;
  });
}

void requestPreferredSize(Widget grid) {
  Plan plan = makePlan(grid);
  if (plan.width == grid->core.width && plan.height == grid->core.height) return;
  Dimension w = 0, h = 0;
  XtGeometryResult result = XtMakeResizeRequest(grid, static_cast<Dimension>(plan.width),
                                                static_cast<Dimension>(plan.height), &w, &h);
  if (result == XtGeometryAlmost) XtMakeResizeRequest(grid, w, h, nullptr, nullptr);
}

void relayout(Widget grid) {
  requestPreferredSize(grid);
  layout(grid);
}

void Initialize(Widget, Widget created, ArgList, Cardinal*) {
  OvGridPart& g = part(created);
  g.state = new OvGridState;
  g.centre = False;
  g.fixed_width = created->core.width;
  g.fixed_height = created->core.height;
  if (created->core.width == 0) created->core.width = 1;
  if (created->core.height == 0) created->core.height = 1;
}

void Destroy(Widget w) {
  delete part(w).state;
  part(w).state = nullptr;
}

void Resize(Widget w) { layout(w); }

Boolean SetValues(Widget old, Widget, Widget now, ArgList, Cardinal*) {
  OvGridPart& o = part(old);
  OvGridPart& n = part(now);
  if (now->core.width != old->core.width) n.fixed_width = now->core.width;
  if (now->core.height != old->core.height) n.fixed_height = now->core.height;
  if (o.num_rows != n.num_rows || o.num_columns != n.num_columns ||
      o.margin_width != n.margin_width || o.margin_height != n.margin_height ||
      o.spacing != n.spacing) {
    // The new preferred size reaches the parent through the set-values
    // geometry request.
    Plan plan = makePlan(now);
    now->core.width = static_cast<Dimension>(plan.width);
    now->core.height = static_cast<Dimension>(plan.height);
    if (XtIsRealized(now)) layout(now);
  }
  return False;
}

XtGeometryResult QueryGeometry(Widget w, XtWidgetGeometry* intended, XtWidgetGeometry* preferred) {
  Plan plan = makePlan(w);
  preferred->request_mode = CWWidth | CWHeight;
  preferred->width = static_cast<Dimension>(plan.width);
  preferred->height = static_cast<Dimension>(plan.height);
  return XmeReplyToQueryGeometry(w, intended, preferred);
}

XtGeometryResult GeometryManager(Widget child, XtWidgetGeometry* request, XtWidgetGeometry*) {
  if (!(request->request_mode & (CWWidth | CWHeight | CWBorderWidth))) return XtGeometryNo;
  if (request->request_mode & XtCWQueryOnly) return XtGeometryYes;
  OvGridConstraintPart* c = ovGridConstraint(child);
  if (request->request_mode & CWWidth) c->pref_width = request->width;
  if (request->request_mode & CWHeight) c->pref_height = request->height;
  if (request->request_mode & CWBorderWidth) child->core.border_width = request->border_width;
  relayout(XtParent(child));
  return XtGeometryDone;
}

void ChangeManaged(Widget w) {
  notePreferences(w);
  relayout(w);
  XmeNavigChangeManaged(w);
}

void ConstraintInitialize(Widget, Widget created, ArgList, Cardinal*) {
  OvGridConstraintPart* c = ovGridConstraint(created);
  c->pref_width = c->pref_height = 0;
  c->given_width = c->given_height = 0;
}

Boolean ConstraintSetValues(Widget old, Widget, Widget now, ArgList, Cardinal*) {
  OvGridConstraintPart* o = ovGridConstraint(old);
  OvGridConstraintPart* n = ovGridConstraint(now);
  if (o->row != n->row || o->column != n->column || o->gravity != n->gravity ||
      o->resize_vertical != n->resize_vertical || o->resize_horizontal != n->resize_horizontal) {
    if (XtIsManaged(now) && XtIsRealized(XtParent(now))) relayout(XtParent(now));
  }
  return False;
}

void setTrackFixed(Widget grid, int index, Boolean resizable, bool rows) {
  if (!grid || !XtIsSubclass(grid, ovGridWidgetClass) || index < 0) return;
  std::vector<bool>& fixed = rows ? part(grid).state->fixedRows : part(grid).state->fixedColumns;
  if (fixed.size() <= static_cast<size_t>(index)) fixed.resize(index + 1, false);
  fixed[index] = !resizable;
  if (XtIsRealized(grid)) layout(grid);
}

}  // namespace

OvGridClassRec ovGridClassRec = {
    {
        /* superclass */ reinterpret_cast<WidgetClass>(&xmManagerClassRec),
        /* class_name */ const_cast<char*>("OvGrid"),
        /* widget_size */ sizeof(OvGridRec),
        /* class_initialize */ nullptr,
        /* class_part_initialize */ nullptr,
        /* class_inited */ False,
        /* initialize */ Initialize,
        /* initialize_hook */ nullptr,
        /* realize */ XtInheritRealize,
        /* actions */ nullptr,
        /* num_actions */ 0,
        /* resources */ gridResources,
        /* num_resources */ XtNumber(gridResources),
        /* xrm_class */ NULLQUARK,
        /* compress_motion */ True,
        /* compress_exposure */ XtExposeCompressMaximal,
        /* compress_enterleave */ True,
        /* visible_interest */ False,
        /* destroy */ Destroy,
        /* resize */ Resize,
        /* expose */ XtInheritExpose,
        /* set_values */ SetValues,
        /* set_values_hook */ nullptr,
        /* set_values_almost */ XtInheritSetValuesAlmost,
        /* get_values_hook */ nullptr,
        /* accept_focus */ nullptr,
        /* version */ XtVersion,
        /* callback_private */ nullptr,
        /* tm_table */ XtInheritTranslations,
        /* query_geometry */ QueryGeometry,
        /* display_accelerator */ nullptr,
        /* extension */ nullptr,
    },
    {
        /* geometry_manager */ GeometryManager,
        /* change_managed */ ChangeManaged,
        /* insert_child */ XtInheritInsertChild,
        /* delete_child */ XtInheritDeleteChild,
        /* extension */ nullptr,
    },
    {
        /* resources */ constraintResources,
        /* num_resources */ XtNumber(constraintResources),
        /* constraint_size */ sizeof(OvGridConstraintRec),
        /* initialize */ ConstraintInitialize,
        /* destroy */ nullptr,
        /* set_values */ ConstraintSetValues,
        /* extension */ nullptr,
    },
    {
        /* translations */ XtInheritTranslations,
        /* syn_resources */ nullptr,
        /* num_syn_resources */ 0,
        /* syn_constraint_resources */ nullptr,
        /* num_syn_constraint_resources */ 0,
        /* parent_process */ XmInheritParentProcess,
        /* extension */ nullptr,
    },
    {
        /* extension */ nullptr,
    },
};

WidgetClass ovGridWidgetClass = reinterpret_cast<WidgetClass>(&ovGridClassRec);

Widget OvCreateGrid(Widget parent, const char* name, ArgList args, Cardinal numArgs) {
  return XtCreateWidget(name, ovGridWidgetClass, parent, args, numArgs);
}

void OvGridSetRowResizable(Widget grid, int row, Boolean resizable) {
  setTrackFixed(grid, row, resizable, true);
}

void OvGridSetColumnResizable(Widget grid, int column, Boolean resizable) {
  setTrackFixed(grid, column, resizable, false);
}
