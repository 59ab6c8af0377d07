#include "yr/YrNode.h"

#include <Xm/Xm.h>

#include "ov/OvGraph.h"

namespace {

XmString labelString(const std::string& label) {
  return XmStringCreateLtoR(const_cast<char*>(YrNode::shownLabel(label).c_str()),
                            const_cast<char*>(XmFONTLIST_DEFAULT_TAG));
}

}  // namespace

YrNode::YrNode(Widget graph, const std::string& key, const std::string& name,
               const std::string& label, Widget parentWidget, void* userData)
    : _key(key) {
  XmString s = labelString(label);
  Arg args[2];
  XtSetArg(args[0], XmNuserData, userData);
  XtSetArg(args[1], XmNlabelString, s);
  _widget = OvGraphAddNodeWithArgs(graph, name.c_str(), parentWidget, args, 2);
  XmStringFree(s);
}

YrNode::~YrNode() {
  if (_widget) XtDestroyWidget(_widget);
}

std::string YrNode::shownLabel(const std::string& label) {
  if (label.size() <= kShownLabelBytes) return label;
  std::size_t cut = kShownLabelBytes;
  // Not inside a UTF-8 sequence: back to the start of its character.
  while (cut > 0 && (static_cast<unsigned char>(label[cut]) & 0xC0) == 0x80) --cut;
  return label.substr(0, cut) + "...";
}

void YrNode::setLabel(const std::string& label) {
  XmString s = labelString(label);
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
