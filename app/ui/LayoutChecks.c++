#include <gtest/gtest.h>

#include "app/ui/LayoutChecks.h"

#include <X11/IntrinsicP.h>
#include <X11/Shell.h>
#include <X11/Xresource.h>
#include <Xm/Xm.h>

#include <cstring>
#include <functional>
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

namespace {

void expectRouted(Widget w, const LayoutContract& c, CallLog& log) {
  log.calls.clear();
  XmAnyCallbackStruct data{};
  data.reason = XmCR_ACTIVATE;
  XtCallCallbacks(w, c.callbackList, &data);
  ASSERT_EQ(1u, log.calls.size()) << c.widget << " " << c.callbackList;
  EXPECT_EQ(c.method, log.calls[0].method) << c.widget << " " << c.callbackList;
  EXPECT_EQ(w, log.calls[0].widget) << c.widget;
  EXPECT_EQ(static_cast<XtPointer>(&data), log.calls[0].callData) << c.widget;
}

// The widget's names from below base (or from below its popup shell) down
// to it, joined by dots: the tail of its help key.
std::string pathBelow(Widget base, Widget w) {
  std::string path;
  for (; w && w != base && !XtIsShell(w); w = XtParent(w))
    path = path.empty() ? std::string(XtName(w)) : XtName(w) + ("." + path);
  return path;
}

void expectFallbacksWellFormed(Widget base, const char* const* fallbacks) {
  static const std::regex line(R"(\*[A-Za-z0-9]+\.[A-Za-z]+:  \S.*|\*[A-Za-z]+:  \S.*|.*:   )");
  static const std::regex widgetResource(R"(\*([A-Za-z0-9]+)\..*)");
  int n = 0;
  for (; fallbacks[n]; ++n) {
    EXPECT_TRUE(std::regex_match(fallbacks[n], line)) << "'" << fallbacks[n] << "'";
    std::cmatch m;
    if (std::regex_match(fallbacks[n], m, widgetResource)) {
      EXPECT_NE(nullptr, findWidget(base, m[1].str().c_str()))
          << "no widget for '" << fallbacks[n] << "'";
    }
  }
  EXPECT_GT(n, 0);
}

}  // namespace

void expectLayoutContract(Widget base, const char* const* fallbacks,
                          const std::vector<LayoutContract>& table, CallLog& log) {
  if (fallbacks) expectFallbacksWellFormed(base, fallbacks);
  for (const LayoutContract& c : table) {
    const char* dot = std::strrchr(c.widget, '.');
    Widget w = findWidget(base, dot ? dot + 1 : c.widget);
    EXPECT_NE(nullptr, w) << c.widget;
    if (!w) continue;
    EXPECT_EQ(c.widget, pathBelow(base, w));
    if (c.text) {
      EXPECT_EQ(c.text, labelText(w)) << c.widget;
    }
    if (c.callbackList) expectRouted(w, c, log);
  }
}

int heightOf(Widget w) {
  Dimension h = 0;
  XtVaGetValues(w, XmNheight, &h, nullptr);
  return h;
}

void expectExtraHeightGoesTo(Widget base, const char* grower, const std::vector<const char*>& fixed,
                             int extra) {
  std::vector<int> before;
  for (const char* name : fixed) before.push_back(heightOf(findWidget(base, name)));
  Widget growing = findWidget(base, grower);
  int growerBefore = heightOf(growing);
  Dimension width = 0, height = 0;
  XtVaGetValues(base, XmNwidth, &width, XmNheight, &height, nullptr);
  XtResizeWidget(base, width, height + extra, 0);
  UiTestApp::flush();
  EXPECT_EQ(growerBefore + extra, heightOf(growing)) << grower;
  for (size_t i = 0; i < fixed.size(); ++i)
    EXPECT_EQ(before[i], heightOf(findWidget(base, fixed[i]))) << fixed[i];
}

void putUserResource(Widget anyWidget, const char* line) {
  XrmDatabase db = XtDatabase(XtDisplay(anyWidget));
  XrmPutLineResource(&db, line);
}

Widget newApplicationShell(const char* name) {
  return XtVaAppCreateShell(name, "Tamblin", applicationShellWidgetClass, UiTestApp::display(),
                            XmNallowShellResize, True, nullptr);
}
