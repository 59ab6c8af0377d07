#include "yr/YrNode.h"

#include <Xm/Xm.h>

#include "util/Utils.h"

namespace {

XmString labelString(const std::string& shown) {
  return XmStringCreateLtoR(const_cast<char*>(shown.c_str()),
                            const_cast<char*>(XmFONTLIST_DEFAULT_TAG));
}

}  // namespace

YrNode::YrNode(Widget graph, const std::string& key, const std::string& name,
               const std::string& label, YrNode* parent, void* userData)
    : _key(key), _name(name), _label(shownLabel(label)), _userData(userData), _graph(graph) {
  XmString s = labelString(_label);
  _node = OvGraphAddLazyNode(graph, parent ? parent->_node : nullptr, s, &YrNode::make, this);
  XmStringFree(s);
}

YrNode::~YrNode() {
  if (_node) OvGraphRemoveLazyNode(_graph, _node);
}

Widget YrNode::make(Widget graph, Widget parentWidget, XtPointer self) {
  auto* node = static_cast<YrNode*>(self);
  XmString s = labelString(node->_label);
  Arg args[2];
  XtSetArg(args[0], XmNuserData, node->_userData);
  XtSetArg(args[1], XmNlabelString, s);
  Widget w = OvGraphAddNodeWithArgs(graph, node->_name.c_str(), parentWidget, args, 2);
  XmStringFree(s);
  return w;
}

Widget YrNode::baseWidget() const {
  return _node ? OvGraphLazyNodeWidget(_graph, _node, True) : nullptr;
}

bool YrNode::hasWidget() const {
  return _node && OvGraphLazyNodeWidget(_graph, _node, False);
}

std::string YrNode::shownLabel(const std::string& label) {
  if (label.size() <= kShownLabelBytes) return label;
  return label.substr(0, utf8Prefix(label, kShownLabelBytes)) + "...";
}

void YrNode::setLabel(const std::string& label) {
  _label = shownLabel(label);
  if (!_node) return;
  XmString s = labelString(_label);
  OvGraphSetLazyNodeLabel(_graph, _node, s);
  XmStringFree(s);
}

std::string YrNode::label() const {
  if (!hasWidget()) return _label;
  XmString s = nullptr;
  XtVaGetValues(baseWidget(), XmNlabelString, &s, nullptr);
  std::string out;
  if (s) {
    char* text = static_cast<char*>(XmStringUnparse(s, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT,
                                                    nullptr, 0, XmOUTPUT_ALL));
    if (text) out = text;
    XtFree(text);
    XmStringFree(s);
  }
  return out;
}

void* YrNode::userDataOf(Widget w) {
  XtPointer data = nullptr;
  if (w) XtVaGetValues(w, XmNuserData, &data, nullptr);
  return data;
}
