#include <gtest/gtest.h>

#include <string>

#include <Xm/Form.h>
#include <Xm/Label.h>

#include "util/UiTestApp.h"
#include "yr/YrComponent.h"

namespace {

class Probe : public YrComponent {
 public:
  Probe(const char* name, Widget parent, const char* const* resources) : YrComponent(name) {
    setDefaultResources(parent, resources);
    _baseWidget = XmCreateForm(parent, const_cast<char*>(name), nullptr, 0);
    installDestroyHandler();
    label = XmCreateLabel(_baseWidget, const_cast<char*>("label"), nullptr, 0);
    XtManageChild(label);
  }
  const char* className() const override { return "Probe"; }
  Widget label;
};

std::string labelText(Widget w) {
  XmString s = nullptr;
  XtVaGetValues(w, XmNlabelString, &s, nullptr);
  char* t = static_cast<char*>(
      XmStringUnparse(s, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
  std::string out = t;
  XtFree(t);
  XmStringFree(s);
  return out;
}

TEST(YrComponentTest, FallbackResourcesAreScopedPerComponentAndYieldToTheUser) {
  Widget shell = UiTestApp::newShell("componentShell");
  // The user's own setting for one of the two panels.
  XrmDatabase db = XtDatabase(UiTestApp::display());
  XrmPutLineResource(&db, "componentShell*second*label.labelString: user text");
  static const char* first[] = {"*label.labelString:  First", nullptr};
  static const char* second[] = {"*label.labelString:  Second", nullptr};
  Probe a("first", shell, first);
  Probe b("second", shell, second);
  EXPECT_EQ("First", labelText(a.label));
  EXPECT_EQ("user text", labelText(b.label));
  EXPECT_STREQ("Probe", a.className());
  XtDestroyWidget(shell);
}

TEST(YrComponentTest, ForgetsWidgetsDestroyedWithTheirParent) {
  Widget shell = UiTestApp::newShell("componentShell2");
  auto* p = new Probe("probe", shell, nullptr);
  EXPECT_TRUE(YrComponent::isComponent(p));
  EXPECT_NE(nullptr, p->baseWidget());
  XtDestroyWidget(shell);
  UiTestApp::flush();  // phase two of destruction runs from the event loop
  EXPECT_EQ(nullptr, p->baseWidget());
  delete p;  // must not touch the destroyed widget
  EXPECT_FALSE(YrComponent::isComponent(p));
}

}  // namespace
