#include "yr/YrGraph.h"

#include <Xm/Form.h>
#include <Xm/PushBG.h>
#include <Xm/ScrolledW.h>
#include <Xm/Xm.h>

#include "ov/OvGraph.h"

YrGraph::YrGraph(const char* name, Widget parent) : YrComponent(name) {
  Arg args[5];
  Cardinal n = 0;
  XtSetArg(args[n], OvNallowMultipleSelections, False); n++;
  XtSetArg(args[n], OvNeditableArcs, False); n++;
  XtSetArg(args[n], OvNselectableArcs, False); n++;
  XtSetArg(args[n], OvNdefaultNodeClass, xmPushButtonGadgetClass); n++;
  XtSetArg(args[n], OvNautoLayoutMode, 1); n++;
  _graph = OvCreateScrolledGraph(parent, name, args, n);
  // The scrolled window may hold the graph in a clip window of its own.
  _baseWidget = XtParent(_graph);
  while (_baseWidget && !XmIsScrolledWindow(_baseWidget)) _baseWidget = XtParent(_baseWidget);
  if (XmIsForm(parent))
    XtVaSetValues(_baseWidget, XmNtopAttachment, XmATTACH_FORM, XmNbottomAttachment,
                  XmATTACH_FORM, XmNleftAttachment, XmATTACH_FORM, XmNrightAttachment,
                  XmATTACH_FORM, nullptr);
  installDestroyHandler();
}

// Destroying the graph takes the node widgets with it.
YrGraph::~YrGraph() {
  if (_focusTimer) XtRemoveTimeOut(_focusTimer);
  forgetNodes();
}

void YrGraph::widgetDestroyed() {
  if (_focusTimer) XtRemoveTimeOut(_focusTimer);
  _focusTimer = 0;
  forgetNodes();
  _graph = nullptr;
  YrComponent::widgetDestroyed();
}

void YrGraph::forgetNodes() {
  for (auto& entry : _nodes) entry.second->forgetWidget();
  _nodes.clear();
}

YrNode* YrGraph::addNode(const std::string& key, const std::string& name,
                         const std::string& label, YrNode* parent, void* userData) {
  auto node = std::make_unique<YrNode>(_graph, key, name, label, parent, userData);
  YrNode* raw = node.get();
  _nodes[key] = std::move(node);
  return raw;
}

void YrGraph::removeNode(const std::string& key) { _nodes.erase(key); }

YrNode* YrGraph::find(const std::string& key) const {
  auto it = _nodes.find(key);
  return it == _nodes.end() ? nullptr : it->second.get();
}

void YrGraph::select(YrNode* node) {
  int count = 0;
  WidgetList selected = OvGraphGetSelectedNodes(_graph, &count);
  bool already = node && count == 1 && selected[0] == node->baseWidget();
  if (selected && !already) OvGraphUnselectNodes(_graph, selected, count, False);
  XtFree(reinterpret_cast<char*>(selected));
  if (!node) return;
  if (!already) OvGraphSelectNode(_graph, node->baseWidget(), False);
  // A graph not yet shown takes no focus (the window's first focus is
  // Motif's to give).
  if (XmProcessTraversal(node->baseWidget(), XmTRAVERSE_CURRENT) || !XtIsRealized(_graph)) return;
  // Out of sight until the graph's next layout scrolls to it: focused then
  // (the layout's timer was set first and runs first).
  _focusKey = node->key();
  if (!_focusTimer)
    _focusTimer = XtAppAddTimeOut(XtWidgetToApplicationContext(_graph), 0, &YrGraph::focusLater,
                                  this);
}

void YrGraph::focusLater(XtPointer self, XtIntervalId*) {
  auto* graph = static_cast<YrGraph*>(self);
  graph->_focusTimer = 0;
  int count = 0;
  WidgetList selected = OvGraphGetSelectedNodes(graph->_graph, &count);
  YrNode* node = graph->find(graph->_focusKey);
  // Only while it is still the one selected.
  if (node && count == 1 && node->hasWidget() && selected[0] == node->baseWidget())
    XmProcessTraversal(node->baseWidget(), XmTRAVERSE_CURRENT);
  XtFree(reinterpret_cast<char*>(selected));
}

void* YrGraph::selectedUserData() const {
  int count = 0;
  WidgetList selected = OvGraphGetSelectedNodes(_graph, &count);
  void* data = count == 1 ? YrNode::userDataOf(selected[0]) : nullptr;
  XtFree(reinterpret_cast<char*>(selected));
  return data;
}

int YrGraph::selectedCount() const {
  int count = 0;
  XtFree(reinterpret_cast<char*>(OvGraphGetSelectedNodes(_graph, &count)));
  return count;
}

void YrGraph::doLayout() { OvGraphLayout(_graph, nullptr); }
