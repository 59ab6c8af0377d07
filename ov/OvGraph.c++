#include "ov/OvGraph.h"

#include <Xm/ManagerP.h>
#include <Xm/PushBG.h>
#include <Xm/ScrollBar.h>
#include <Xm/ScrolledW.h>
#include <Xm/XmP.h>

#include <algorithm>
#include <memory>
#include <unordered_map>
#include <string>
#include <vector>

// Motif's keyboard traversal keeps a list of every traversable widget of
// the window, and each widget destroyed is looked for in all of it: taking
// down 20,000 nodes one by one costs 20,000 times 20,000 steps.  Resetting
// the list lets those widgets go at once; Motif builds it again the next
// time the keyboard focus moves.  (Exported by libXm 2.3, used by its own
// widgets, not declared in its public headers.)
extern "C" void _XmResetTravGraph(Widget);

// A node of the layout that may have no widget yet.
struct OvGraphLazyNodeRec {
  OvGraphLazyNodeRec* parent;
  Widget widget = nullptr;
  int width, height;  // outer size, measured while there is no widget
  OvGraphNodeMaker maker;
  XtPointer closure;
  size_t slot = 0;   // in GraphState::lazy
  int placed = -1;   // in GraphState::placed, once laid out
  int children = 0;  // lazy nodes naming it as their parent
  int scratch = 0;
};

namespace {

using Lazy = OvGraphLazyNodeRec;

// X coordinates are 16 bits, and a forest of 20,000 nodes is hundreds of
// thousands of pixels high: the layout lives in coordinates of its own, and
// only the nodes inside the window get a position in it.  The others wait
// here, outside any window.
constexpr int kParked = -32000;
// The largest window an unscrolled graph asks for.
constexpr int kLargestWindow = 32767;
// Scrolling steps: a line of the scroll bars, one turn of a mouse wheel.
constexpr int kScrollStep = 24;

// Where the last layout put one node, in layout coordinates.
struct Placement {
  Widget widget;  // null once destroyed, or while a lazy node has none
  Lazy* lazy;     // null for a node that is only a widget, or once removed
  int x, y, width, height;
  int parent;  // index into the placements, -1 for a root
};

struct GraphState {
  std::vector<Widget> selected;
  XtIntervalId pendingLayout = 0;

  // The last layout: placements in the order it placed them, and per depth
  // (column) the nodes top to bottom, which is what finds the nodes inside
  // the window without looking at the others.
  std::vector<Placement> placed;
  std::unordered_map<Widget, int> indexOf;
  std::vector<std::vector<int>> columns;
  std::vector<int> columnLeft, columnWidth;
  int width = 1, height = 1;  // the whole layout

  int scrollX = 0, scrollY = 0;  // layout coordinates of the window's corner
  Widget hbar = nullptr, vbar = nullptr;  // when the graph scrolls itself
  std::vector<Widget> shown;  // nodes placed inside the window
  // Motif's keyboard traversal has yet to learn of a change of the managed
  // nodes: it asks the server about the window each time, so it is told
  // once per batch of changes, with the layout.
  bool navigationDue = false;

  // Lazy nodes in the order they were added (null: removed since the last
  // layout), and the widgets made for them (a null node: being destroyed).
  std::vector<std::unique_ptr<Lazy>> lazy;
  std::unordered_map<Widget, Lazy*> lazyOf;
  int making = 0;             // a node's widget is being made
  bool sizeChanged = false;   // a widget made turned out another size than measured
  bool laying = false;
  // A node to scroll into view once the pending layout has placed it.
  Widget revealDue = nullptr;
  Widget prototype = nullptr;  // measures labels for lazy nodes
  int padWidth = 0, padHeight = 0;
  XmRenderTable renderTable = nullptr;

  // How many nodes name each widget as their parent: destroying a node
  // that is nobody's parent needs no search for orphans.
  std::unordered_map<Widget, int> childCount;
  // Nodes destroyed since the last layout; from a few on, a batch is going.
  int destroyedSinceLayout = 0;
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
GraphState& state(Widget w) { return *part(w).state; }
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
  Lazy* lazy = nullptr;
  int width = 0, height = 0;  // outer size
  int depth = 0;
  int x = 0, y = 0;
  std::vector<int> children;
};

class Layout {
 public:
  explicit Layout(Widget graph) : _g(part(graph)) {
    GraphState& s = state(graph);
    Cardinal children = reinterpret_cast<CompositeWidget>(graph)->composite.num_children;
    std::unordered_map<Widget, int> index;
    index.reserve(children);
    _nodes.reserve(children + s.lazy.size());
    forManagedChildren(graph, [&](Widget w) {
      // Lazy nodes' widgets are placed as their nodes, below.
      if (w->core.being_destroyed || s.lazyOf.count(w)) return;
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
    for (const std::unique_ptr<Lazy>& l : s.lazy) {
      if (!l) continue;
      l->scratch = static_cast<int>(_nodes.size());
      Node n;
      n.widget = l->widget;
      n.lazy = l.get();
      n.width = l->width;
      n.height = l->height;
      if (Widget w = l->widget) {
        n.width = w->core.width + 2 * w->core.border_width;
        n.height = w->core.height + 2 * w->core.border_width;
      }
      int i = static_cast<int>(_nodes.size());
      _nodes.push_back(n);
      // A parent comes before its children: it was added first.
      if (l->parent)
        _nodes[l->parent->scratch].children.push_back(i);
      else
        _roots.push_back(i);
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

  /// Hands the placements to the graph's state.
  void store(GraphState& s) const {
    s.placed.clear();
    s.placed.reserve(_nodes.size());
    s.indexOf.clear();
    s.indexOf.reserve(_nodes.size());
    s.columns.assign(_columnLeft.size(), {});
    std::vector<int> placedIndex(_nodes.size(), -1);
    for (int i : _order) {
      const Node& n = _nodes[i];
      placedIndex[i] = static_cast<int>(s.placed.size());
      if (n.widget) s.indexOf[n.widget] = placedIndex[i];
      if (n.lazy) n.lazy->placed = placedIndex[i];
      s.columns[n.depth].push_back(placedIndex[i]);
      s.placed.push_back({n.widget, n.lazy, n.x, n.y, n.width, n.height, -1});
    }
    for (int i : _order)
      for (int c : _nodes[i].children) s.placed[placedIndex[c]].parent = placedIndex[i];
    s.columnLeft = _columnLeft;
    s.columnWidth = _columnWidth;
    s.width = width();
    s.height = height();
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
    _columnLeft = left;
    _columnWidth = widest;
    _width = widest.empty() ? 2 * _g.margin : x - _g.child_spacing + _g.margin;
  }

  // Places the subtree of i in the band starting at top; _bottom is left at
  // the band's lower edge.
  void place(int i, int top) {
    _order.push_back(i);
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
  std::vector<int> _order;  // the order of place(): top to bottom in every column
  std::vector<int> _columnLeft, _columnWidth;
  int _bottom = 0, _width = 0, _height = 0;
};

void redraw(Widget graph) {
  if (XtIsRealized(graph)) XClearArea(XtDisplay(graph), XtWindow(graph), 0, 0, 0, 0, True);
}

void moveNode(Widget w, int x, int y) {
  if (w->core.x != x || w->core.y != y)
    XtMoveWidget(w, static_cast<Position>(x), static_cast<Position>(y));
}

// Makes the widget of a lazy node, and first those of its ancestors (a
// widget names its parent's).  The widget stands parked until placed.
Widget make(Widget graph, Lazy* node) {
  GraphState& s = state(graph);
  std::vector<Lazy*> chain;
  for (Lazy* l = node; l && !l->widget; l = l->parent) chain.push_back(l);
  for (auto l = chain.rbegin(); l != chain.rend(); ++l) {
    Lazy* n = *l;
    ++s.making;
    Widget w = n->maker(graph, n->parent ? n->parent->widget : nullptr, n->closure);
    --s.making;
    if (!w) return nullptr;
    n->widget = w;
    s.lazyOf[w] = n;
    s.navigationDue = true;
    if (n->placed >= 0 && n->placed < static_cast<int>(s.placed.size()) &&
        s.placed[n->placed].lazy == n) {
      Placement& p = s.placed[n->placed];
      p.widget = w;
      s.indexOf[w] = n->placed;
      if (p.width != w->core.width + 2 * w->core.border_width ||
          p.height != w->core.height + 2 * w->core.border_width)
        s.sizeChanged = true;
    }
  }
  return node->widget;
}

// Gives the nodes inside the window their window positions (making the
// widgets of lazy nodes that have none) and parks the ones that left it.
// Costs what the window shows, not what the graph holds.
void placeVisible(Widget graph) {
  GraphState& s = state(graph);
  int vw = graph->core.width, vh = graph->core.height;
  s.scrollX = std::max(0, std::min(s.scrollX, s.width - vw));
  s.scrollY = std::max(0, std::min(s.scrollY, s.height - vh));
  std::vector<char> stays(s.placed.size(), 0);
  std::vector<Widget> now;
  for (size_t d = 0; d < s.columns.size(); ++d) {
    if (s.columnLeft[d] >= s.scrollX + vw || s.columnLeft[d] + s.columnWidth[d] <= s.scrollX)
      continue;
    const std::vector<int>& column = s.columns[d];
    auto first = std::partition_point(column.begin(), column.end(), [&s](int i) {
      return s.placed[i].y + s.placed[i].height <= s.scrollY;
    });
    for (auto at = first; at != column.end() && s.placed[*at].y < s.scrollY + vh; ++at) {
      Placement& p = s.placed[*at];
      if (p.x + p.width <= s.scrollX || p.x >= s.scrollX + vw) continue;
      if (!p.widget && p.lazy) make(graph, p.lazy);
      if (!p.widget) continue;
      moveNode(p.widget, p.x - s.scrollX, p.y - s.scrollY);
      stays[*at] = 1;
      now.push_back(p.widget);
    }
  }
  for (Widget w : s.shown) {
    auto at = s.indexOf.find(w);
    if (at == s.indexOf.end() || !stays[at->second]) moveNode(w, kParked, kParked);
  }
  s.shown.swap(now);
}

void updateScrollBars(Widget graph) {
  GraphState& s = state(graph);
  auto set = [](Widget bar, int total, int view, int value) {
    view = std::max(view, 1);
    int maximum = std::max(total, view);
    XtVaSetValues(bar, XmNminimum, 0, XmNmaximum, maximum, XmNsliderSize, view, XmNvalue,
                  std::max(0, std::min(value, maximum - view)), XmNincrement, kScrollStep,
                  XmNpageIncrement, std::max(1, view - kScrollStep), nullptr);
  };
  if (s.hbar) set(s.hbar, s.width, graph->core.width, s.scrollX);
  if (s.vbar) set(s.vbar, s.height, graph->core.height, s.scrollY);
}

void layout(Widget graph);
void layoutOnce(Widget graph);
void reveal(Widget graph, Widget node);

void showViewport(Widget graph) {
  GraphState& s = state(graph);
  placeVisible(graph);
  // A widget just made is not the size its label measured: place again.
  if (s.sizeChanged && !s.laying) {
    layout(graph);
    return;
  }
  updateScrollBars(graph);
  redraw(graph);
  if (s.navigationDue && !s.laying) {
    s.navigationDue = false;
    XmeNavigChangeManaged(graph);
  }
}

// Drops the lazy nodes removed since the last layout.
void compactLazy(GraphState& s) {
  size_t kept = 0;
  for (size_t i = 0; i < s.lazy.size(); ++i)
    if (s.lazy[i]) {
      s.lazy[i]->slot = kept;
      s.lazy[kept++] = std::move(s.lazy[i]);
    }
  s.lazy.resize(kept);
}

void layout(Widget graph) {
  GraphState& s = state(graph);
  s.laying = true;
  compactLazy(s);
  // Widgets made for the window may differ from their measure; a second
  // pass places them as they are (the third never sees a change).
  for (int pass = 0; pass < 3; ++pass) {
    s.sizeChanged = false;
    layoutOnce(graph);
    if (!s.sizeChanged) break;
  }
  s.laying = false;
  if (s.navigationDue) {
    s.navigationDue = false;
    XmeNavigChangeManaged(graph);
  }
  if (Widget node = s.revealDue) {
    s.revealDue = nullptr;
    reveal(graph, node);
  }
}

void layoutOnce(Widget graph) {
  Layout l(graph);
  l.run();
  GraphState& s = state(graph);
  l.store(s);
  s.destroyedSinceLayout = 0;
  // A graph that does not scroll itself is as large as its layout, as far
  // as a window can be.
  int w = std::min(l.width(), kLargestWindow), h = std::min(l.height(), kLargestWindow);
  if (!s.vbar && (w != graph->core.width || h != graph->core.height)) {
    Dimension aw = 0, ah = 0;
    XtGeometryResult r = XtMakeResizeRequest(graph, static_cast<Dimension>(w),
                                             static_cast<Dimension>(h), &aw, &ah);
    if (r == XtGeometryAlmost) XtMakeResizeRequest(graph, aw, ah, nullptr, nullptr);
  }
  showViewport(graph);
}

void layoutNowIfPending(Widget graph) {
  GraphState& s = state(graph);
  if (!s.pendingLayout) return;
  XtRemoveTimeOut(s.pendingLayout);
  s.pendingLayout = 0;
  layout(graph);
}

void scrollTo(Widget graph, int x, int y) {
  GraphState& s = state(graph);
  if (x == s.scrollX && y == s.scrollY) return;
  s.scrollX = x;
  s.scrollY = y;
  showViewport(graph);
}

// Scrolls as little as needed to show node whole (as far as it fits).  With
// a layout to come, once it is done: a model that selects as it reads a
// hierarchy would otherwise lay the whole forest out at each selection.
void reveal(Widget graph, Widget node) {
  GraphState& s = state(graph);
  if (s.pendingLayout && !s.laying) {
    s.revealDue = node;
    return;
  }
  auto at = s.indexOf.find(node);
  if (at == s.indexOf.end()) return;
  const Placement& p = s.placed[at->second];
  int m = part(graph).margin;
  auto axis = [m](int scroll, int pos, int size, int view) {
    if (pos + size + m > scroll + view) scroll = pos + size + m - view;
    if (pos - m < scroll) scroll = pos - m;
    return std::max(scroll, 0);
  };
  scrollTo(graph, axis(s.scrollX, p.x, p.width, graph->core.width),
           axis(s.scrollY, p.y, p.height, graph->core.height));
}

void scrollBarMoved(Widget bar, XtPointer clientData, XtPointer callData) {
  Widget graph = static_cast<Widget>(clientData);
  int value = static_cast<XmScrollBarCallbackStruct*>(callData)->value;
  GraphState& s = state(graph);
  if (bar == s.vbar) scrollTo(graph, s.scrollX, value);
  else scrollTo(graph, value, s.scrollY);
}

void deferredLayout(XtPointer clientData, XtIntervalId*) {
  Widget graph = static_cast<Widget>(clientData);
  state(graph).pendingLayout = 0;
  layout(graph);
}

// A shown graph lays itself out once the changes of one callback are all
// made (a hierarchy read from a file adds its nodes one by one; a layout
// after each would make that quadratic).
void layoutSoon(Widget graph);

void autoLayout(Widget graph) {
  OvGraphPart& g = part(graph);
  if (g.auto_layout_mode == 0) return;
  if (g.state->laying) {  // a widget made for the window changed size
    g.state->sizeChanged = true;
    return;
  }
  if (!XtIsRealized(graph)) {
    layout(graph);
    return;
  }
  layoutSoon(graph);
}

// Lazy nodes come and go without a change of the managed widgets, shown or
// not: one layout for all the changes, when the event loop runs again or
// when something asks where a node stands.
void layoutSoon(Widget graph) {
  OvGraphPart& g = part(graph);
  if (g.auto_layout_mode == 0) return;
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
  if (event->type != ButtonPress) return;
  unsigned button = event->xbutton.button;
  if ((button == Button4 || button == Button5) && state(graph).vbar) {
    // A wheel turn scrolls three lines; with Shift, sideways.
    GraphState& s = state(graph);
    int step = (button == Button4 ? -3 : 3) * kScrollStep;
    if (event->xbutton.state & ShiftMask) scrollTo(graph, std::max(0, s.scrollX + step), s.scrollY);
    else scrollTo(graph, s.scrollX, std::max(0, s.scrollY + step));
    return;
  }
  if (button != Button1) return;
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

// Clips the segment to the window (with a pixel to spare) so that its ends
// fit X's 16-bit coordinates; false when nothing of it is inside.
bool clipToWindow(double& x1, double& y1, double& x2, double& y2, int width, int height) {
  double t0 = 0, t1 = 1, dx = x2 - x1, dy = y2 - y1;
  auto edge = [&t0, &t1](double p, double q) {  // keeps the t with p * t <= q
    if (p == 0) return q >= 0;
    double r = q / p;
    if (p < 0) {
      if (r > t1) return false;
      t0 = std::max(t0, r);
    } else {
      if (r < t0) return false;
      t1 = std::min(t1, r);
    }
    return true;
  };
  if (!edge(-dx, x1 + 2) || !edge(dx, width + 2 - x1) || !edge(-dy, y1 + 2) ||
      !edge(dy, height + 2 - y1))
    return false;
  x2 = x1 + t1 * dx;
  y2 = y1 + t1 * dy;
  x1 += t0 * dx;
  y1 += t0 * dy;
  return true;
}

void Redisplay(Widget w, XEvent* event, Region region) {
  OvGraphPart& g = part(w);
  GraphState& s = *g.state;
  Display* d = XtDisplay(w);
  Window win = XtWindow(w);
  // Arcs of nodes outside the window may cross it: every arc is looked at,
  // only the visible part of it is sent.
  std::vector<XSegment> arcs;
  for (const Placement& c : s.placed) {
    if (c.parent < 0 || !(c.widget || c.lazy)) continue;
    if (!(s.placed[c.parent].widget || s.placed[c.parent].lazy)) continue;
    const Placement& p = s.placed[c.parent];
    double x1 = p.x + p.width - s.scrollX, y1 = p.y + p.height / 2 - s.scrollY;
    double x2 = c.x - s.scrollX, y2 = c.y + c.height / 2 - s.scrollY;
    if (!clipToWindow(x1, y1, x2, y2, w->core.width, w->core.height)) continue;
    arcs.push_back({static_cast<short>(x1), static_cast<short>(y1), static_cast<short>(x2),
                    static_cast<short>(y2)});
  }
  if (!arcs.empty()) XDrawSegments(d, win, g.arc_gc, arcs.data(), static_cast<int>(arcs.size()));
  for (Widget sel : s.selected) {
    if (!XtIsManaged(sel) || sel->core.x == kParked) continue;
    int b = 2 * sel->core.border_width;
    XDrawRectangle(d, win, g.frame_gc, sel->core.x - 3, sel->core.y - 3, sel->core.width + b + 5,
                   sel->core.height + b + 5);
  }
  XmeRedisplayGadgets(w, event, region);
}

// The window shows another part of the layout; the layout stays.
void Resize(Widget w) {
  if (part(w).state) showViewport(w);
}

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
  preferred->width = static_cast<Dimension>(std::min(l.width(), kLargestWindow));
  preferred->height = static_cast<Dimension>(std::min(l.height(), kLargestWindow));
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

// The size a node's widget takes for label, from a widget of the node class
// measured once: its padding around the label is the same for every node.
void measure(Widget graph, XmString label, int* width, int* height) {
  GraphState& s = state(graph);
  if (!s.prototype) {
    XmString sample = XmStringCreateLocalized(const_cast<char*>("Mg"));
    s.prototype = XtVaCreateWidget("node", part(graph).default_node_class, graph,
                                   XmNlabelString, sample, nullptr);
    XtVaGetValues(s.prototype, XmNrenderTable, &s.renderTable, nullptr);
    Dimension w = 0, h = 0;
    if (s.renderTable) XmStringExtent(s.renderTable, sample, &w, &h);
    int b = 2 * s.prototype->core.border_width;
    s.padWidth = s.prototype->core.width + b - w;
    s.padHeight = s.prototype->core.height + b - h;
    XmStringFree(sample);
  }
  Dimension w = 0, h = 0;
  if (s.renderTable && label) XmStringExtent(s.renderTable, label, &w, &h);
  *width = w + s.padWidth;
  *height = h + s.padHeight;
}

void ChangeManaged(Widget w) {
  // Nodes that left the graph's managed set leave the selection too.
  GraphState& s = state(w);
  s.navigationDue = true;
  // A lazy node's widget has its place already; traversal learns of it
  // once the window's new widgets are all made.
  if (s.making) return;
  s.selected.erase(std::remove_if(s.selected.begin(), s.selected.end(),
                                  [](Widget n) { return !XtIsManaged(n); }),
                   s.selected.end());
  autoLayout(w);
  if (s.navigationDue && !s.pendingLayout) {  // no layout to come
    s.navigationDue = false;
    XmeNavigChangeManaged(w);
  }
}

void ConstraintInitialize(Widget, Widget created, ArgList, Cardinal*) {
  Widget graph = XtParent(created);
  if (XtHasCallbacks(created, XmNactivateCallback) != XtCallbackNoList)
    XtAddCallback(created, XmNactivateCallback, &nodeActivated, graph);
  // Out of sight until the layout gives it a place.
  created->core.x = kParked;
  created->core.y = kParked;
  if (Widget parent = parentNodeOf(created)) ++state(graph).childCount[parent];
}

void forgetParent(GraphState& s, Widget parent) {
  auto at = s.childCount.find(parent);
  if (at != s.childCount.end() && --at->second <= 0) s.childCount.erase(at);
}

void ConstraintDestroy(Widget gone) {
  Widget graph = XtParent(gone);
  // When the graph itself goes, its children are freed one after the other
  // while still listed: touch none of them.
  if (graph->core.being_destroyed || !part(graph).state) return;
  GraphState& s = state(graph);
  // Reset for every node of a batch: the list is built again whenever the
  // focus leaves a node being destroyed.
  if (++s.destroyedSinceLayout >= 16) _XmResetTravGraph(graph);
  unselect(graph, gone);
  if (s.revealDue == gone) s.revealDue = nullptr;
  if (Widget parent = parentNodeOf(gone)) forgetParent(s, parent);
  s.shown.erase(std::remove(s.shown.begin(), s.shown.end(), gone), s.shown.end());
  auto placed = s.indexOf.find(gone);
  if (placed != s.indexOf.end()) {
    s.placed[placed->second].widget = nullptr;
    s.indexOf.erase(placed);
  }
  // A lazy node whose widget went (not with the node) gets another.
  auto lazy = s.lazyOf.find(gone);
  if (lazy != s.lazyOf.end()) {
    if (lazy->second) lazy->second->widget = nullptr;
    s.lazyOf.erase(lazy);
  }
  // Orphans become roots rather than pointing at a dead widget.
  if (s.childCount.erase(gone)) {
    CompositeWidget cw = reinterpret_cast<CompositeWidget>(graph);
    for (Cardinal i = 0; i < cw->composite.num_children; ++i)
      if (parentNodeOf(cw->composite.children[i]) == gone)
        parentNodeOf(cw->composite.children[i]) = nullptr;
  }
}

Boolean ConstraintSetValues(Widget old, Widget, Widget now, ArgList, Cardinal*) {
  if (parentNodeOf(old) == parentNodeOf(now)) return False;
  GraphState& s = state(XtParent(now));
  if (parentNodeOf(old)) forgetParent(s, parentNodeOf(old));
  if (parentNodeOf(now)) ++s.childCount[parentNodeOf(now)];
  if (XtIsManaged(now)) autoLayout(XtParent(now));
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
  // The graph is the scrolled window's work area and moves its nodes
  // itself: a scrolled window of its own kind would need a child as large
  // as the whole forest, beyond what X coordinates reach.
  Widget sw = XtVaCreateManagedWidget(swName.c_str(), xmScrolledWindowWidgetClass, parent,
                                      XmNscrollingPolicy, XmAPPLICATION_DEFINED,
                                      XmNscrollBarDisplayPolicy, XmSTATIC, nullptr);
  Widget graph = XtCreateManagedWidget(name, ovGraphWidgetClass, sw, args, numArgs);
  GraphState& s = state(graph);
  s.hbar = XtVaCreateManagedWidget("horizontalScrollBar", xmScrollBarWidgetClass, sw,
                                   XmNorientation, XmHORIZONTAL, nullptr);
  s.vbar = XtVaCreateManagedWidget("verticalScrollBar", xmScrollBarWidgetClass, sw,
                                   XmNorientation, XmVERTICAL, nullptr);
  for (Widget bar : {s.hbar, s.vbar}) {
    XtAddCallback(bar, XmNvalueChangedCallback, &scrollBarMoved, graph);
    XtAddCallback(bar, XmNdragCallback, &scrollBarMoved, graph);
  }
  XmScrolledWindowSetAreas(sw, s.hbar, s.vbar, graph);
  updateScrollBars(graph);
  return graph;
}

Widget OvGraphAddNode(Widget graph, const char* name, Widget parentNode) {
  return OvGraphAddNodeWithArgs(graph, name, parentNode, nullptr, 0);
}

Widget OvGraphAddNodeWithArgs(Widget graph, const char* name, Widget parentNode, ArgList args,
                              Cardinal numArgs) {
  if (!graph || !XtIsSubclass(graph, ovGraphWidgetClass)) return nullptr;
  std::vector<Arg> all(args, args + numArgs);
  Arg parent;
  XtSetArg(parent, OvNparentNode, parentNode);
  all.push_back(parent);
  return XtCreateManagedWidget(name, part(graph).default_node_class, graph, all.data(),
                               static_cast<Cardinal>(all.size()));
}

Boolean OvGraphNodeBounds(Widget graph, Widget node, OvGraphBounds* bounds) {
  if (!graph || !XtIsSubclass(graph, ovGraphWidgetClass)) return False;
  layoutNowIfPending(graph);
  GraphState& s = state(graph);
  auto at = s.indexOf.find(node);
  if (at == s.indexOf.end()) return False;
  const Placement& p = s.placed[at->second];
  *bounds = {p.x, p.y, p.width, p.height};
  return True;
}

void OvGraphGetView(Widget graph, OvGraphBounds* view) {
  if (!graph || !XtIsSubclass(graph, ovGraphWidgetClass)) return;
  GraphState& s = state(graph);
  *view = {s.scrollX, s.scrollY, graph->core.width, graph->core.height};
}

void OvGraphShowNode(Widget graph, Widget node) {
  if (!graph || !XtIsSubclass(graph, ovGraphWidgetClass)) return;
  reveal(graph, node);
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
  reveal(graph, node);
  select(graph, node, withNotify, nullptr);
}

void OvGraphLayout(Widget graph, Widget) {
  if (!graph || !XtIsSubclass(graph, ovGraphWidgetClass)) return;
  GraphState& s = state(graph);
  if (s.pendingLayout) XtRemoveTimeOut(s.pendingLayout);
  s.pendingLayout = 0;
  layout(graph);
}

OvGraphLazyNode OvGraphAddLazyNode(Widget graph, OvGraphLazyNode parent, XmString label,
                                   OvGraphNodeMaker maker, XtPointer closure) {
  if (!graph || !XtIsSubclass(graph, ovGraphWidgetClass) || !maker) return nullptr;
  GraphState& s = state(graph);
  auto node = std::make_unique<Lazy>();
  node->parent = parent;
  node->maker = maker;
  node->closure = closure;
  measure(graph, label, &node->width, &node->height);
  if (parent) ++parent->children;
  node->slot = s.lazy.size();
  Lazy* raw = node.get();
  s.lazy.push_back(std::move(node));
  layoutSoon(graph);
  return raw;
}

Widget OvGraphLazyNodeWidget(Widget graph, OvGraphLazyNode node, Boolean doMake) {
  if (!graph || !XtIsSubclass(graph, ovGraphWidgetClass) || !node) return nullptr;
  if (node->widget || !doMake) return node->widget;
  GraphState& s = state(graph);
  Widget w = make(graph, node);
  if (s.sizeChanged && !s.pendingLayout && !s.laying) layoutSoon(graph);
  if (s.navigationDue && !s.laying) {
    s.navigationDue = false;
    XmeNavigChangeManaged(graph);
  }
  return w;
}

void OvGraphSetLazyNodeLabel(Widget graph, OvGraphLazyNode node, XmString label) {
  if (!graph || !XtIsSubclass(graph, ovGraphWidgetClass) || !node) return;
  if (node->widget) {  // its size changes through the geometry manager
    XtVaSetValues(node->widget, XmNlabelString, label, nullptr);
    return;
  }
  measure(graph, label, &node->width, &node->height);
  layoutSoon(graph);
}

void OvGraphRemoveLazyNode(Widget graph, OvGraphLazyNode node) {
  if (!graph || !XtIsSubclass(graph, ovGraphWidgetClass) || !node) return;
  GraphState& s = state(graph);
  if (node->placed >= 0 && node->placed < static_cast<int>(s.placed.size()) &&
      s.placed[node->placed].lazy == node)
    s.placed[node->placed].lazy = nullptr;
  if (node->parent) --node->parent->children;
  if (node->children > 0)  // orphans become roots
    for (const std::unique_ptr<Lazy>& l : s.lazy)
      if (l && l->parent == node) l->parent = nullptr;
  if (Widget w = node->widget) {
    s.lazyOf[w] = nullptr;  // going with its node, not to be made again
    XtDestroyWidget(w);
  }
  s.lazy[node->slot].reset();
  layoutSoon(graph);
}

Boolean OvGraphLazyNodeBounds(Widget graph, OvGraphLazyNode node, OvGraphBounds* bounds) {
  if (!graph || !XtIsSubclass(graph, ovGraphWidgetClass) || !node) return False;
  layoutNowIfPending(graph);
  GraphState& s = state(graph);
  if (node->placed < 0 || node->placed >= static_cast<int>(s.placed.size()) ||
      s.placed[node->placed].lazy != node)
    return False;
  const Placement& p = s.placed[node->placed];
  *bounds = {p.x, p.y, p.width, p.height};
  return True;
}
