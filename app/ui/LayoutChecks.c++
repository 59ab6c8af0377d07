#include <gtest/gtest.h>

#include "app/ui/LayoutChecks.h"

#include <X11/IntrinsicP.h>
#include <X11/Shell.h>
#include <X11/Xresource.h>
#include <Xm/Xm.h>

#include <cstring>
#include <functional>
#include <map>
#include <regex>

#include "util/UiTestApp.h"

namespace {

void visit(Widget w, const std::function<void(Widget)>& f) {
  f(w);
  if (XtIsWidget(w))
    for (Cardinal i = 0; i < w->core.num_popups; ++i) visit(w->core.popup_list[i], f);
  if (XtIsComposite(w)) {
    CompositeWidget c = reinterpret_cast<CompositeWidget>(w);
    for (Cardinal i = 0; i < c->composite.num_children; ++i) visit(c->composite.children[i], f);
  }
}

std::vector<Widget> childrenOf(Widget w) {
  std::vector<Widget> out;
  if (XtIsWidget(w))
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
    if (!w) {
      Widget elsewhere = findWidget(base, e.name);
      ADD_FAILURE() << e.name << " is not under " << e.parent << " but under "
                    << (elsewhere ? XtName(XtParent(elsewhere)) : "nothing");
      continue;
    }
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
  // Line breaks come back as "\n".
  Arg args[4];
  XmString separator = XmStringSeparatorCreate();
  XtSetArg(args[0], XmNpattern, const_cast<char*>("\n"));
  XtSetArg(args[1], XmNpatternType, XmCHARSET_TEXT);
  XtSetArg(args[2], XmNincludeStatus, XmINSERT);
  XtSetArg(args[3], XmNsubstitute, separator);
  XmParseMapping newline = XmParseMappingCreate(args, 4);
  XmStringFree(separator);
  char* t = static_cast<char*>(
      XmStringUnparse(s, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, &newline, 1, XmOUTPUT_ALL));
  XmParseMappingFree(newline);
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

Widget newApplicationShell(const char* name) {
  return XtVaAppCreateShell(name, "Tamblin", applicationShellWidgetClass, UiTestApp::display(),
                            XmNallowShellResize, True, nullptr);
}

void expectResourceLinesWellFormed(const char* const* table) {
  ASSERT_NE(nullptr, table);
  static const std::regex line(R"(\*[A-Za-z0-9]+\.[A-Za-z]+:  \S.*|\*[A-Za-z]+:  \S.*|.*:   )");
  int n = 0;
  for (; table[n]; ++n) EXPECT_TRUE(std::regex_match(table[n], line)) << "'" << table[n] << "'";
  EXPECT_GT(n, 0);
}
