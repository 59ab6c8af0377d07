#include "ov/OvSpringBox.h"

#include <Xm/XmP.h>

#include "ov/OvGridP.h"

namespace {

struct OvSpringBoxClassPart {
  XtPointer extension;
};

struct OvSpringBoxClassRec {
  CoreClassPart core_class;
  CompositeClassPart composite_class;
  ConstraintClassPart constraint_class;
  XmManagerClassPart manager_class;
  OvGridClassPart grid_class;
  OvSpringBoxClassPart spring_box_class;
};

void Initialize(Widget, Widget created, ArgList, Cardinal*) {
  reinterpret_cast<OvGridRec*>(created)->grid.centre = True;
}

void ConstraintInitialize(Widget, Widget created, ArgList, Cardinal*) {
  OvGridConstraintPart* c = ovGridConstraint(created);
  c->row = 0;
  c->resize_horizontal = False;
  c->resize_vertical = False;
  c->gravity = 5;
}

// Columns follow the order of creation among the managed children.
void ChangeManaged(Widget w) {
  CompositeWidget cw = reinterpret_cast<CompositeWidget>(w);
  int column = 0;
  for (Cardinal i = 0; i < cw->composite.num_children; ++i) {
    Widget child = cw->composite.children[i];
    if (!XtIsManaged(child)) continue;
    ovGridConstraint(child)->row = 0;
    ovGridConstraint(child)->column = column++;
  }
  ovGridClassRec.composite_class.change_managed(w);
}

}  // namespace

static OvSpringBoxClassRec ovSpringBoxClassRec = {
    {
        /* superclass */ reinterpret_cast<WidgetClass>(&ovGridClassRec),
        /* class_name */ const_cast<char*>("OvSpringBox"),
        /* widget_size */ sizeof(OvGridRec),
        /* class_initialize */ nullptr,
        /* class_part_initialize */ nullptr,
        /* class_inited */ False,
        /* initialize */ Initialize,
        /* initialize_hook */ nullptr,
        /* realize */ XtInheritRealize,
        /* actions */ nullptr,
        /* num_actions */ 0,
        /* resources */ nullptr,
        /* num_resources */ 0,
        /* xrm_class */ NULLQUARK,
        /* compress_motion */ True,
        /* compress_exposure */ XtExposeCompressMaximal,
        /* compress_enterleave */ True,
        /* visible_interest */ False,
        /* destroy */ nullptr,
        /* resize */ XtInheritResize,
        /* expose */ XtInheritExpose,
        /* set_values */ nullptr,
        /* set_values_hook */ nullptr,
        /* set_values_almost */ XtInheritSetValuesAlmost,
        /* get_values_hook */ nullptr,
        /* accept_focus */ nullptr,
        /* version */ XtVersion,
        /* callback_private */ nullptr,
        /* tm_table */ XtInheritTranslations,
        /* query_geometry */ XtInheritQueryGeometry,
        /* display_accelerator */ nullptr,
        /* extension */ nullptr,
    },
    {
        /* geometry_manager */ XtInheritGeometryManager,
        /* change_managed */ ChangeManaged,
        /* insert_child */ XtInheritInsertChild,
        /* delete_child */ XtInheritDeleteChild,
        /* extension */ nullptr,
    },
    {
        /* resources */ nullptr,
        /* num_resources */ 0,
        /* constraint_size */ sizeof(OvGridConstraintRec),
        /* initialize */ ConstraintInitialize,
        /* destroy */ nullptr,
        /* set_values */ nullptr,
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
    {
        /* extension */ nullptr,
    },
};

WidgetClass ovSpringBoxWidgetClass = reinterpret_cast<WidgetClass>(&ovSpringBoxClassRec);

Widget OvCreateSpringBox(Widget parent, const char* name, ArgList args, Cardinal numArgs) {
  return XtCreateWidget(name, ovSpringBoxWidgetClass, parent, args, numArgs);
}
