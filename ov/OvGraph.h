// OvGraph: a manager that shows its children as the nodes of a forest, drawn
// left to right with arcs from each node to its children.
//
// A child names the node it hangs under with the constraint "parentNode"
// (null, or a widget that is not a managed child of the same graph, makes it
// a root).  Children of one node stand in the order they were created; roots
// likewise, one under the other.  The layout never lets two subtrees
// overlap: every subtree has a band of rows of its own, and a node sits
// centred on the band of its children.  With "autoLayoutMode" 1 the graph
// lays itself out again after its nodes change (once shown, as soon as the
// event loop runs again, so that many changes cost one layout); with 0 only
// when OvGraphLayout is called, which always lays out at once.
//
// Selection: activating a node (a click on a push button) selects it and
// calls "selectNodeCallback"; a click on the background unselects all and
// calls "deselectCallback".  Without "allowMultipleSelections" selecting a
// node unselects the others.  Selected nodes are framed.
//
// Scrolling: OvCreateScrolledGraph puts the graph in a scrolled window whose
// scroll bars the graph drives itself.  The layout has coordinates of its
// own, unbounded; only the nodes inside the window are given a position in
// it (node widgets outside it stand far off at negative coordinates), so a
// forest of any size costs what the window shows, and X's 16-bit
// coordinates never overflow.  A graph outside such a window takes the size
// its layout needs, up to the largest window X allows.
//
// Lazy nodes: a node added with OvGraphAddLazyNode has a place in the
// layout (measured from its label) but no widget until the window shows it
// or OvGraphLazyNodeWidget asks for it; then the graph calls its maker,
// which creates the widget (with OvGraphAddNodeWithArgs, under the parent
// node's widget, made first).  The widget then stays until the node is
// removed.  Creating a widget is what a large forest costs most: with lazy
// nodes it costs what has been shown.  A lazy node's parent is a lazy node.
#ifndef TAMBLIN_OV_OVGRAPH_H
#define TAMBLIN_OV_OVGRAPH_H

#include <Xm/Xm.h>

extern WidgetClass ovGraphWidgetClass;

#define OvNparentNode const_cast<char*>("parentNode")
#define OvCParentNode const_cast<char*>("ParentNode")
#define OvNallowMultipleSelections const_cast<char*>("allowMultipleSelections")
#define OvCAllowMultipleSelections const_cast<char*>("AllowMultipleSelections")
#define OvNeditableArcs const_cast<char*>("editableArcs")
#define OvCEditableArcs const_cast<char*>("EditableArcs")
#define OvNselectableArcs const_cast<char*>("selectableArcs")
#define OvCSelectableArcs const_cast<char*>("SelectableArcs")
#define OvNdefaultNodeClass const_cast<char*>("defaultNodeClass")
#define OvCDefaultNodeClass const_cast<char*>("DefaultNodeClass")
#define OvNautoLayoutMode const_cast<char*>("autoLayoutMode")
#define OvCAutoLayoutMode const_cast<char*>("AutoLayoutMode")
#define OvNchildSpacing const_cast<char*>("childSpacing")
#define OvNsiblingSpacing const_cast<char*>("siblingSpacing")
#define OvNselectNodeCallback const_cast<char*>("selectNodeCallback")
#define OvNdeselectCallback const_cast<char*>("deselectCallback")

enum { OvCR_SELECT_NODE = 101, OvCR_DESELECT = 102 };

/// Call data of both callbacks: the nodes selected after the change.
struct OvGraphCallbackStruct {
  int reason;
  XEvent* event;
  Widget node;  // the node selected or unselected, if one
  WidgetList selected_widgets;
  int num_selected_widgets;
};

/// Creates an (unmanaged) graph.
Widget OvCreateGraph(Widget parent, const char* name, ArgList args, Cardinal numArgs);
/// Creates a managed scrolled window with a managed graph named name in it;
/// returns the graph.
Widget OvCreateScrolledGraph(Widget parent, const char* name, ArgList args, Cardinal numArgs);

/// A managed node of the graph's "defaultNodeClass" under parentNode (null:
/// a new root).
Widget OvGraphAddNode(Widget graph, const char* name, Widget parentNode);
/// The same with resources of the node (its label, user data) given at
/// creation, which spares a change of size per node.
Widget OvGraphAddNodeWithArgs(Widget graph, const char* name, Widget parentNode, ArgList args,
                              Cardinal numArgs);

typedef struct OvGraphLazyNodeRec* OvGraphLazyNode;
/// Creates the node's widget in graph under parentWidget (null for a root).
typedef Widget (*OvGraphNodeMaker)(Widget graph, Widget parentWidget, XtPointer closure);
/// A lazy node under parent (null: a new root) whose widget will show
/// label (the graph copies what it needs of it).
OvGraphLazyNode OvGraphAddLazyNode(Widget graph, OvGraphLazyNode parent, XmString label,
                                   OvGraphNodeMaker maker, XtPointer closure);
/// The node's widget, made now if make is set and it has none yet (null
/// otherwise).
Widget OvGraphLazyNodeWidget(Widget graph, OvGraphLazyNode node, Boolean make);
/// Shows label on the node (its widget's label, or its measure until then).
void OvGraphSetLazyNodeLabel(Widget graph, OvGraphLazyNode node, XmString label);
/// Removes the node and destroys its widget; its children become roots.
void OvGraphRemoveLazyNode(Widget graph, OvGraphLazyNode node);

/// A rectangle in layout coordinates (0,0 is the layout's top left corner).
struct OvGraphBounds {
  int x, y, width, height;
};
/// Where the layout puts node (laying out first if a layout is due); False
/// when node is not a laid-out node of graph.
Boolean OvGraphNodeBounds(Widget graph, Widget node, OvGraphBounds* bounds);
/// The same for a lazy node, with or without its widget.
Boolean OvGraphLazyNodeBounds(Widget graph, OvGraphLazyNode node, OvGraphBounds* bounds);
/// The part of the layout the graph's window shows.
void OvGraphGetView(Widget graph, OvGraphBounds* view);
/// Scrolls as little as needed to show node (when a layout is due, as soon
/// as it has placed the node).
void OvGraphShowNode(Widget graph, Widget node);

/// The selected nodes, in the order they were selected; the caller frees the
/// array with XtFree.  null when there are none.
WidgetList OvGraphGetSelectedNodes(Widget graph, int* count);
/// Unselects the listed nodes; with notify, calls the deselect callbacks if
/// anything changed.
void OvGraphUnselectNodes(Widget graph, WidgetList nodes, int count, Boolean notify);
/// Selects one node, scrolling it into view (as OvGraphShowNode does); with
/// notify, calls the select-node callbacks.
void OvGraphSelectNode(Widget graph, Widget node, Boolean notify);
/// Lays the whole graph out again (the subtree argument is accepted for
/// callers that changed only one subtree; the whole forest is placed).
void OvGraphLayout(Widget graph, Widget subtree);

#endif
