#include "yr/YrNode.h"

#include <Xm/Xm.h>

#include "ov/OvGraph.h"

YrNode::YrNode(Widget graph, const std::string& key, const std::string& name,
               const std::string& label, Widget parentWidget, void* userData)
    : _key(key) {
  _widget = OvGraphAddNode(graph, name.c_str(), parentWidget);
  XtVaSetValues(_widget, XmNuserData, userData, nullptr);
  setLabel(label);
}

YrNode::~YrNode() {
  if (_widget) XtDestroyWidget(_widget);
}

void YrNode::setLabel(const std::string& label) {
  XmString s = XmStringCreateLtoR(const_cast<char*>(label.c_str()),
                                  const_cast<char*>(XmFONTLIST_DEFAULT_TAG));
  XtVaSetValues(_widget, XmNlabelString, s, nullptr);
  XmStringFree(s);
}

std::string YrNode::label() const {
  XmString s = nullptr;
  XtVaGetValues(_widget, XmNlabelString, &s, nullptr);
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
