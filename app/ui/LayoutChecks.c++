#include <gtest/gtest.h>

#include "app/ui/LayoutChecks.h"

#include <X11/IntrinsicP.h>
#include <X11/Xresource.h>
#include <Xm/Xm.h>

#include <cstring>
#include <functional>
#include <map>

namespace {

void visit(Widget w, const std::function<void(Widget)>& f) {
  f(w);
  for (Cardinal i = 0; i < w->core.num_popups; ++i) visit(w->core.popup_list[i], f);
  if (XtIsComposite(w)) {
    CompositeWidget c = reinterpret_cast<CompositeWidget>(w);
    for (Cardinal i = 0; i < c->composite.num_children; ++i) visit(c->composite.children[i], f);
  }
}

std::vector<Widget> childrenOf(Widget w) {
  std::vector<Widget> out;
  for (Cardinal i = 0; i < w->core.num_popups; ++i) out.push_back(w->core.popup_list[i]);
  if (XtIsComposite(w)) {
    CompositeWidget c = reinterpret_cast<CompositeWidget>(w);
    for (Cardinal i = 0; i < c->composite.num_children; ++i) out.push_back(c->composite.children[i]);
  }
  return out;
}

}  // namespace

Widget findWidget(Widget base, const char* name, const char* parent) {
  Widget found = nullptr;
  visit(base, [&](Widget w) {
    if (found || std::strcmp(XtName(w), name) != 0) return;
    if (parent && (!XtParent(w) || std::strcmp(XtName(XtParent(w)), parent) != 0)) return;
    found = w;
  });
  return found;
}

void expectWidgetTree(Widget base, const std::vector<ExpectedWidget>& expected) {
  std::map<Widget, std::vector<std::string>> expectedOrder;
  for (const ExpectedWidget& e : expected) {
    Widget w = findWidget(base, e.name, e.parent);
    EXPECT_NE(nullptr, w) << e.name << " under " << e.parent;
    if (!w) continue;
    EXPECT_EQ(e.widgetClass, XtClass(w))
        << e.name << " is a " << XtClass(w)->core_class.class_name << ", expected "
        << e.widgetClass->core_class.class_name;
    EXPECT_TRUE(XtIsManaged(w) || w == base || XtIsShell(w) || XtIsShell(XtParent(w)))
        << e.name << " is not managed";
    if (w != base) expectedOrder[XtParent(w)].push_back(e.name);
  }
  for (const auto& [parent, names] : expectedOrder) {
    std::vector<std::string> actual;
    for (Widget child : childrenOf(parent))
      for (const std::string& n : names)
        if (n == XtName(child)) actual.push_back(n);
    EXPECT_EQ(names, actual) << "children of " << XtName(parent);
  }
}

std::string labelText(Widget w) {
  XmString s = nullptr;
  XtVaGetValues(w, XmNlabelString, &s, nullptr);
  if (!s) return "<none>";
  char* t = static_cast<char*>(
      XmStringUnparse(s, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
  std::string out = t ? t : "";
  XtFree(t);
  XmStringFree(s);
  return out;
}

void expectLabelTexts(Widget base, const std::vector<ExpectedText>& expected) {
  for (const ExpectedText& e : expected) {
    Widget w = findWidget(base, e.widget);
    EXPECT_NE(nullptr, w) << e.widget;
    if (w) {
      EXPECT_EQ(e.text, labelText(w)) << e.widget;
    }
  }
}

void expectCallbacksRouted(Widget base, const std::vector<ExpectedRoute>& routes, CallLog& log) {
  for (const ExpectedRoute& r : routes) {
    Widget w = findWidget(base, r.widget);
    EXPECT_NE(nullptr, w) << r.widget;
    if (!w) continue;
    log.calls.clear();
    XmAnyCallbackStruct data{};
    data.reason = XmCR_ACTIVATE;
    XtCallCallbacks(w, r.callbackName, &data);
    EXPECT_EQ(1u, log.calls.size()) << r.widget << " " << r.callbackName;
    if (log.calls.empty()) continue;
    EXPECT_EQ(r.method, log.calls[0].method) << r.widget << " " << r.callbackName;
    EXPECT_EQ(w, log.calls[0].widget) << r.widget;
    EXPECT_EQ(static_cast<XtPointer>(&data), log.calls[0].callData) << r.widget;
  }
}

void putUserResource(Widget anyWidget, const char* line) {
  XrmDatabase db = XtDatabase(XtDisplay(anyWidget));
  XrmPutLineResource(&db, line);
}
