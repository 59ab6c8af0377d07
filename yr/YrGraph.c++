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
YrGraph::~YrGraph() { forgetNodes(); }

void YrGraph::widgetDestroyed() {
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
  XmProcessTraversal(node->baseWidget(), XmTRAVERSE_CURRENT);
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
