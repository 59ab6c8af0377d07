#include "ov/OvGraph.h"

#include <Xm/ManagerP.h>
#include <Xm/PushBG.h>
#include <Xm/ScrolledW.h>
#include <Xm/XmP.h>

#include <algorithm>
#include <unordered_map>
#include <string>
#include <vector>

namespace {

struct GraphState {
  std::vector<Widget> selected;
  XtIntervalId pendingLayout = 0;
};

struct OvGraphPart {
  Boolean allow_multiple_selections;
  Boolean editable_arcs;   // kept for callers; arcs are never edited
  Boolean selectable_arcs;  // kept for callers; arcs are never selected
  WidgetClass default_node_class;
  int auto_layout_mode;
  Dimension margin;
  Dimension child_spacing;
  Dimension sibling_spacing;
  XtCallbackList select_node_callback;
  XtCallbackList deselect_callback;
  GraphState* state;
  GC arc_gc;
  GC frame_gc;
};

struct OvGraphRec {
  CorePart core;
  CompositePart composite;
  ConstraintPart constraint;
  XmManagerPart manager;
  OvGraphPart graph;
};

struct OvGraphConstraintPart {
  Widget parent_node;
};

struct OvGraphConstraintRec {
  XmManagerConstraintPart manager;
  OvGraphConstraintPart graph;
};

struct OvGraphClassPart {
  XtPointer extension;
};

struct OvGraphClassRec {
  CoreClassPart core_class;
  CompositeClassPart composite_class;
  ConstraintClassPart constraint_class;
  XmManagerClassPart manager_class;
  OvGraphClassPart graph_class;
};

OvGraphPart& part(Widget w) { return reinterpret_cast<OvGraphRec*>(w)->graph; }
Widget& parentNodeOf(Widget child) {
  return reinterpret_cast<OvGraphConstraintRec*>(child->core.constraints)->graph.parent_node;
}

#define GRAPH_OFFSET(field) XtOffsetOf(OvGraphRec, graph.field)

XtResource graphResources[] = {
    {OvNallowMultipleSelections, OvCAllowMultipleSelections, XmRBoolean, sizeof(Boolean),
     GRAPH_OFFSET(allow_multiple_selections), XmRImmediate, reinterpret_cast<XtPointer>(False)},
    {OvNeditableArcs, OvCEditableArcs, XmRBoolean, sizeof(Boolean), GRAPH_OFFSET(editable_arcs),
     XmRImmediate, reinterpret_cast<XtPointer>(False)},
    {OvNselectableArcs, OvCSelectableArcs, XmRBoolean, sizeof(Boolean),
     GRAPH_OFFSET(selectable_arcs), XmRImmediate, reinterpret_cast<XtPointer>(False)},
    {OvNdefaultNodeClass, OvCDefaultNodeClass, XtRWidgetClass, sizeof(WidgetClass),
     GRAPH_OFFSET(default_node_class), XmRImmediate, nullptr},
    {OvNautoLayoutMode, OvCAutoLayoutMode, XmRInt, sizeof(int), GRAPH_OFFSET(auto_layout_mode),
     XmRImmediate, reinterpret_cast<XtPointer>(1)},
    {const_cast<char*>(XmNmarginWidth), const_cast<char*>(XmCMarginWidth), XmRHorizontalDimension,
     sizeof(Dimension), GRAPH_OFFSET(margin), XmRImmediate, reinterpret_cast<XtPointer>(8)},
    {OvNchildSpacing, const_cast<char*>(XmCSpacing), XmRHorizontalDimension, sizeof(Dimension),
     GRAPH_OFFSET(child_spacing), XmRImmediate, reinterpret_cast<XtPointer>(40)},
    {OvNsiblingSpacing, const_cast<char*>(XmCSpacing), XmRVerticalDimension, sizeof(Dimension),
     GRAPH_OFFSET(sibling_spacing), XmRImmediate, reinterpret_cast<XtPointer>(8)},
    {OvNselectNodeCallback, const_cast<char*>(XmCCallback), XmRCallback, sizeof(XtCallbackList),
     GRAPH_OFFSET(select_node_callback), XmRImmediate, nullptr},
    {OvNdeselectCallback, const_cast<char*>(XmCCallback), XmRCallback, sizeof(XtCallbackList),
     GRAPH_OFFSET(deselect_callback), XmRImmediate, nullptr},
};

XtResource constraintResources[] = {
    {OvNparentNode, OvCParentNode, XmRWidget, sizeof(Widget),
     XtOffsetOf(OvGraphConstraintRec, graph.parent_node), XmRImmediate, nullptr},
};

template <typename F>
void forManagedChildren(Widget graph, F f) {
  CompositeWidget cw = reinterpret_cast<CompositeWidget>(graph);
  for (Cardinal i = 0; i < cw->composite.num_children; ++i)
    if (XtIsManaged(cw->composite.children[i])) f(cw->composite.children[i]);
}

// ---- Layout ---------------------------------------------------------------

struct Node {
  Widget widget = nullptr;
  int width = 0, height = 0;  // outer size
  int depth = 0;
  int x = 0, y = 0;
  std::vector<int> children;
};

class Layout {
 public:
  explicit Layout(Widget graph) : _g(part(graph)) {
    std::unordered_map<Widget, int> index;
    forManagedChildren(graph, [&](Widget w) {
      index[w] = static_cast<int>(_nodes.size());
      int b = 2 * w->core.border_width;
      Node n;
      n.widget = w;
      n.width = w->core.width + b;
      n.height = w->core.height + b;
      _nodes.push_back(n);
    });
    for (int i = 0; i < static_cast<int>(_nodes.size()); ++i) {
      auto parent = index.find(parentNodeOf(_nodes[i].widget));
      if (parent == index.end() || parent->second == i)
        _roots.push_back(i);
      else
        _nodes[parent->second].children.push_back(i);
    }
  }

  // Places every node.  Nodes on a cycle of parents (never reached from a
  // root) are shown as roots.
  void run() {
    std::vector<bool> reached(_nodes.size(), false);
    depthFirst(_roots, reached);
    for (int i = 0; i < static_cast<int>(_nodes.size()); ++i)
      if (!reached[i]) {  // on a cycle: cut it here
        _nodes[i].children.clear();
        _roots.push_back(i);
        reached[i] = true;
      }
    columns();
    int cursor = _g.margin;
    for (int root : _roots) {
      place(root, cursor);
      cursor = _bottom + _g.sibling_spacing;
    }
    _height = _roots.empty() ? 2 * _g.margin : _bottom + _g.margin;
  }

  int width() const { return std::max(_width, 1); }
  int height() const { return std::max(_height, 1); }

  void apply() {
    for (const Node& n : _nodes) {
      Widget w = n.widget;
      if (w->core.x != n.x || w->core.y != n.y)
        XmeConfigureObject(w, static_cast<Position>(n.x), static_cast<Position>(n.y),
                           w->core.width, w->core.height, w->core.border_width);
    }
  }

 private:
  // Depths, without recursion (a deep chain must not exhaust the stack).
  void depthFirst(const std::vector<int>& roots, std::vector<bool>& reached) {
    std::vector<int> stack(roots.rbegin(), roots.rend());
    for (int r : roots) reached[r] = true;
    while (!stack.empty()) {
      int i = stack.back();
      stack.pop_back();
      std::vector<int> kept;
      for (int c : _nodes[i].children) {
        if (reached[c]) continue;
        reached[c] = true;
        _nodes[c].depth = _nodes[i].depth + 1;
        kept.push_back(c);
      }
      _nodes[i].children = kept;
      for (auto c = kept.rbegin(); c != kept.rend(); ++c) stack.push_back(*c);
    }
  }

  void columns() {
    std::vector<int> widest;
    for (const Node& n : _nodes) {
      if (static_cast<int>(widest.size()) <= n.depth) widest.resize(n.depth + 1, 0);
      widest[n.depth] = std::max(widest[n.depth], n.width);
    }
    std::vector<int> left(widest.size());
    int x = _g.margin;
    for (size_t d = 0; d < widest.size(); ++d) {
      left[d] = x;
      x += widest[d] + _g.child_spacing;
    }
    for (Node& n : _nodes) n.x = left[n.depth];
    _width = widest.empty() ? 2 * _g.margin : x - _g.child_spacing + _g.margin;
  }

  // Places the subtree of i in the band starting at top; _bottom is left at
  // the band's lower edge.
  void place(int i, int top) {
    Node& n = _nodes[i];
    if (n.children.empty()) {
      n.y = top;
      _bottom = top + n.height;
      return;
    }
    int cursor = top, first = 0, last = 0;
    for (size_t k = 0; k < n.children.size(); ++k) {
      place(n.children[k], cursor);
      const Node& c = _nodes[n.children[k]];
      if (k == 0) first = c.y + c.height / 2;
      last = c.y + c.height / 2;
      cursor = _bottom + _g.sibling_spacing;
    }
    int bottom = _bottom;
    n.y = (first + last) / 2 - n.height / 2;
    if (n.y < top) {  // taller than its children's band: push them down
      shift(i, top - n.y);
      bottom += top - n.y;
    }
    _bottom = std::max(bottom, n.y + n.height);
  }

  void shift(int i, int dy) {
    std::vector<int> stack{i};
    while (!stack.empty()) {
      int k = stack.back();
      stack.pop_back();
      _nodes[k].y += dy;
      for (int c : _nodes[k].children) stack.push_back(c);
    }
  }

  OvGraphPart& _g;
  std::vector<Node> _nodes;
  std::vector<int> _roots;
  int _bottom = 0, _width = 0, _height = 0;
};

void redraw(Widget graph) {
  if (XtIsRealized(graph)) XClearArea(XtDisplay(graph), XtWindow(graph), 0, 0, 0, 0, True);
}

void layout(Widget graph) {
  Layout l(graph);
  l.run();
  if (l.width() != graph->core.width || l.height() != graph->core.height) {
    Dimension w = 0, h = 0;
    XtGeometryResult r = XtMakeResizeRequest(graph, static_cast<Dimension>(l.width()),
                                             static_cast<Dimension>(l.height()), &w, &h);
    if (r == XtGeometryAlmost) XtMakeResizeRequest(graph, w, h, nullptr, nullptr);
  }
  l.apply();
  redraw(graph);
}

void deferredLayout(XtPointer clientData, XtIntervalId*) {
  Widget graph = static_cast<Widget>(clientData);
  part(graph).state->pendingLayout = 0;
  layout(graph);
}

// A shown graph lays itself out once the changes of one callback are all
// made (a hierarchy read from a file adds its nodes one by one; a layout
// after each would make that quadratic).
void autoLayout(Widget graph) {
  OvGraphPart& g = part(graph);
  if (g.auto_layout_mode == 0) return;
  if (!XtIsRealized(graph)) {
    layout(graph);
    return;
  }
  if (!g.state->pendingLayout)
    g.state->pendingLayout =
        XtAppAddTimeOut(XtWidgetToApplicationContext(graph), 0, &deferredLayout, graph);
}

// ---- Selection ------------------------------------------------------------

void notify(Widget graph, XtCallbackList list, const char* name, int reason, Widget node,
            XEvent* event) {
  if (!list) return;
  std::vector<Widget>& selected = part(graph).state->selected;
  std::vector<Widget> copy = selected;  // callbacks may change the selection
  OvGraphCallbackStruct data{reason, event, node, copy.data(), static_cast<int>(copy.size())};
  XtCallCallbacks(graph, name, &data);
}

bool unselect(Widget graph, Widget node) {
  std::vector<Widget>& selected = part(graph).state->selected;
  auto at = std::find(selected.begin(), selected.end(), node);
  if (at == selected.end()) return false;
  selected.erase(at);
  return true;
}

void select(Widget graph, Widget node, bool withNotify, XEvent* event) {
  OvGraphPart& g = part(graph);
  std::vector<Widget>& selected = g.state->selected;
  bool already = std::find(selected.begin(), selected.end(), node) != selected.end();
  if (!g.allow_multiple_selections) selected.clear();
  if (!already || !g.allow_multiple_selections) {
    selected.erase(std::remove(selected.begin(), selected.end(), node), selected.end());
    selected.push_back(node);
  }
  redraw(graph);
  if (withNotify)
    notify(graph, g.select_node_callback, OvNselectNodeCallback, OvCR_SELECT_NODE, node, event);
}

void nodeActivated(Widget node, XtPointer clientData, XtPointer callData) {
  auto* cbs = static_cast<XmAnyCallbackStruct*>(callData);
  select(static_cast<Widget>(clientData), node, true, cbs ? cbs->event : nullptr);
}

void backgroundPressed(Widget graph, XtPointer, XEvent* event, Boolean*) {
  if (event->type != ButtonPress || event->xbutton.button != Button1) return;
  if (XmObjectAtPoint(graph, static_cast<Position>(event->xbutton.x),
                      static_cast<Position>(event->xbutton.y)))
    return;  // a gadget node takes its own clicks
  std::vector<Widget>& selected = part(graph).state->selected;
  if (selected.empty()) return;
  selected.clear();
  redraw(graph);
  notify(graph, part(graph).deselect_callback, OvNdeselectCallback, OvCR_DESELECT, nullptr, event);
}

// ---- Widget methods ---------------------------------------------------------

void makeGCs(Widget w) {
  OvGraphPart& g = part(w);
  XGCValues values;
  values.foreground = reinterpret_cast<XmManagerWidget>(w)->manager.foreground;
  values.line_width = 1;
  g.arc_gc = XtGetGC(w, GCForeground | GCLineWidth, &values);
  values.line_width = 2;
  g.frame_gc = XtGetGC(w, GCForeground | GCLineWidth, &values);
}

void Initialize(Widget, Widget created, ArgList, Cardinal*) {
  OvGraphPart& g = part(created);
  g.state = new GraphState;
  if (!g.default_node_class) g.default_node_class = xmPushButtonGadgetClass;
  if (created->core.width == 0) created->core.width = 1;
  if (created->core.height == 0) created->core.height = 1;
  makeGCs(created);
  XtAddEventHandler(created, ButtonPressMask, False, &backgroundPressed, nullptr);
}

void Destroy(Widget w) {
  OvGraphPart& g = part(w);
  if (g.state->pendingLayout) XtRemoveTimeOut(g.state->pendingLayout);
  XtReleaseGC(w, g.arc_gc);
  XtReleaseGC(w, g.frame_gc);
  delete g.state;
  g.state = nullptr;
}

void Redisplay(Widget w, XEvent* event, Region region) {
  OvGraphPart& g = part(w);
  Display* d = XtDisplay(w);
  Window win = XtWindow(w);
  forManagedChildren(w, [&](Widget child) {
    Widget parent = parentNodeOf(child);
    if (!parent || parent == child || XtParent(parent) != w || !XtIsManaged(parent)) return;
    int x1 = parent->core.x + parent->core.width + 2 * parent->core.border_width;
    int y1 = parent->core.y + parent->core.height / 2 + parent->core.border_width;
    int x2 = child->core.x;
    int y2 = child->core.y + child->core.height / 2 + child->core.border_width;
    XDrawLine(d, win, g.arc_gc, x1, y1, x2, y2);
  });
  for (Widget s : g.state->selected) {
    if (!XtIsManaged(s)) continue;
    int b = 2 * s->core.border_width;
    XDrawRectangle(d, win, g.frame_gc, s->core.x - 3, s->core.y - 3, s->core.width + b + 5,
                   s->core.height + b + 5);
  }
  XmeRedisplayGadgets(w, event, region);
}

void Resize(Widget) {}  // the layout fixes positions, not the graph's size

Boolean SetValues(Widget old, Widget, Widget now, ArgList, Cardinal*) {
  OvGraphPart& o = part(old);
  OvGraphPart& n = part(now);
  if (reinterpret_cast<XmManagerWidget>(old)->manager.foreground !=
      reinterpret_cast<XmManagerWidget>(now)->manager.foreground) {
    XtReleaseGC(now, n.arc_gc);
    XtReleaseGC(now, n.frame_gc);
    makeGCs(now);
  }
  if (o.child_spacing != n.child_spacing || o.sibling_spacing != n.sibling_spacing ||
      o.margin != n.margin)
    autoLayout(now);
  return True;
}

XtGeometryResult QueryGeometry(Widget w, XtWidgetGeometry* intended, XtWidgetGeometry* preferred) {
  Layout l(w);
  l.run();
  preferred->request_mode = CWWidth | CWHeight;
  preferred->width = static_cast<Dimension>(l.width());
  preferred->height = static_cast<Dimension>(l.height());
  return XmeReplyToQueryGeometry(w, intended, preferred);
}

XtGeometryResult GeometryManager(Widget child, XtWidgetGeometry* request, XtWidgetGeometry*) {
  if (!(request->request_mode & (CWWidth | CWHeight | CWBorderWidth))) return XtGeometryNo;
  if (request->request_mode & XtCWQueryOnly) return XtGeometryYes;
  Dimension w = (request->request_mode & CWWidth) ? request->width : child->core.width;
  Dimension h = (request->request_mode & CWHeight) ? request->height : child->core.height;
  Dimension b = (request->request_mode & CWBorderWidth) ? request->border_width
                                                        : child->core.border_width;
  XmeConfigureObject(child, child->core.x, child->core.y, w, h, b);
  autoLayout(XtParent(child));
  return XtGeometryDone;
}

void ChangeManaged(Widget w) {
  // Nodes that left the graph's managed set leave the selection too.
  std::vector<Widget>& selected = part(w).state->selected;
  selected.erase(std::remove_if(selected.begin(), selected.end(),
                                [](Widget s) { return !XtIsManaged(s); }),
                 selected.end());
  autoLayout(w);
  XmeNavigChangeManaged(w);
}

void ConstraintInitialize(Widget, Widget created, ArgList, Cardinal*) {
  Widget graph = XtParent(created);
  if (XtHasCallbacks(created, XmNactivateCallback) != XtCallbackNoList)
    XtAddCallback(created, XmNactivateCallback, &nodeActivated, graph);
}

void ConstraintDestroy(Widget gone) {
  Widget graph = XtParent(gone);
  // When the graph itself goes, its children are freed one after the other
  // while still listed: touch none of them.
  if (graph->core.being_destroyed || !part(graph).state) return;
  unselect(graph, gone);
  // Orphans become roots rather than pointing at a dead widget.
  CompositeWidget cw = reinterpret_cast<CompositeWidget>(graph);
  for (Cardinal i = 0; i < cw->composite.num_children; ++i)
    if (parentNodeOf(cw->composite.children[i]) == gone)
      parentNodeOf(cw->composite.children[i]) = nullptr;
}

Boolean ConstraintSetValues(Widget old, Widget, Widget now, ArgList, Cardinal*) {
  if (parentNodeOf(old) != parentNodeOf(now) && XtIsManaged(now)) autoLayout(XtParent(now));
  return False;
}

}  // namespace

static OvGraphClassRec ovGraphClassRec = {
    {
        /* superclass */ reinterpret_cast<WidgetClass>(&xmManagerClassRec),
        /* class_name */ const_cast<char*>("OvGraph"),
        /* widget_size */ sizeof(OvGraphRec),
        /* class_initialize */ nullptr,
        /* class_part_initialize */ nullptr,
        /* class_inited */ False,
        /* initialize */ Initialize,
        /* initialize_hook */ nullptr,
        /* realize */ XtInheritRealize,
        /* actions */ nullptr,
        /* num_actions */ 0,
        /* resources */ graphResources,
        /* num_resources */ XtNumber(graphResources),
        /* xrm_class */ NULLQUARK,
        /* compress_motion */ True,
        /* compress_exposure */ XtExposeCompressMaximal,
        /* compress_enterleave */ True,
        /* visible_interest */ False,
        /* destroy */ Destroy,
        /* resize */ Resize,
        /* expose */ Redisplay,
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
        /* constraint_size */ sizeof(OvGraphConstraintRec),
        /* initialize */ ConstraintInitialize,
        /* destroy */ ConstraintDestroy,
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

WidgetClass ovGraphWidgetClass = reinterpret_cast<WidgetClass>(&ovGraphClassRec);

Widget OvCreateGraph(Widget parent, const char* name, ArgList args, Cardinal numArgs) {
  return XtCreateWidget(name, ovGraphWidgetClass, parent, args, numArgs);
}

Widget OvCreateScrolledGraph(Widget parent, const char* name, ArgList args, Cardinal numArgs) {
  std::string swName = std::string(name) + "SW";
  Widget sw = XtVaCreateManagedWidget(swName.c_str(), xmScrolledWindowWidgetClass, parent,
                                      XmNscrollingPolicy, XmAUTOMATIC, nullptr);
  Widget graph = XtCreateManagedWidget(name, ovGraphWidgetClass, sw, args, numArgs);
  return graph;
}

Widget OvGraphAddNode(Widget graph, const char* name, Widget parentNode) {
  if (!graph || !XtIsSubclass(graph, ovGraphWidgetClass)) return nullptr;
  Arg args[1];
  XtSetArg(args[0], OvNparentNode, parentNode);
  return XtCreateManagedWidget(name, part(graph).default_node_class, graph, args, 1);
}

WidgetList OvGraphGetSelectedNodes(Widget graph, int* count) {
  *count = 0;
  if (!graph || !XtIsSubclass(graph, ovGraphWidgetClass)) return nullptr;
  const std::vector<Widget>& selected = part(graph).state->selected;
  if (selected.empty()) return nullptr;
  WidgetList out = reinterpret_cast<WidgetList>(XtMalloc(selected.size() * sizeof(Widget)));
  std::copy(selected.begin(), selected.end(), out);
  *count = static_cast<int>(selected.size());
  return out;
}

void OvGraphUnselectNodes(Widget graph, WidgetList nodes, int count, Boolean withNotify) {
  if (!graph || !XtIsSubclass(graph, ovGraphWidgetClass)) return;
  bool changed = false;
  Widget last = nullptr;
  for (int i = 0; i < count; ++i)
    if (unselect(graph, nodes[i])) changed = true, last = nodes[i];
  if (!changed) return;
  redraw(graph);
  if (withNotify)
    notify(graph, part(graph).deselect_callback, OvNdeselectCallback, OvCR_DESELECT, last,
           nullptr);
}

void OvGraphSelectNode(Widget graph, Widget node, Boolean withNotify) {
  if (!graph || !XtIsSubclass(graph, ovGraphWidgetClass) || !node || XtParent(node) != graph)
    return;
  select(graph, node, withNotify, nullptr);
}

void OvGraphLayout(Widget graph, Widget) {
  if (!graph || !XtIsSubclass(graph, ovGraphWidgetClass)) return;
  GraphState* state = part(graph).state;
  if (state->pendingLayout) XtRemoveTimeOut(state->pendingLayout);
  state->pendingLayout = 0;
  layout(graph);
}
