// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <Xm/ArrowB.h>
#include <Xm/Form.h>
#include <Xm/Frame.h>
#include <Xm/Label.h>
#include <Xm/List.h>
#include <Xm/PanedW.h>
#include <Xm/PushB.h>
#include <Xm/ScrolledW.h>
#include <Xm/Text.h>
#include <Xm/TextF.h>
#include <Xm/ToggleB.h>

#include "app/ui/LayoutChecks.h"
#include "app/ui/SpecDetailUI.h"
#include "ov/OvGrid.h"
#include "ov/OvSpringBox.h"

namespace {

#define RECORD(method) \
  void method(Widget w, XtPointer d) override { log.add(#method, w, d); }

class RecordingSpecDetail : public SpecDetailUI {
 public:
  using SpecDetailUI::SpecDetailUI;
  RECORD(applyArrowButton)
  RECORD(browseSelection)
  RECORD(incompatPushButton)
  RECORD(prereqPushButton)
  RECORD(replacesPushButton)
  bool showRequired() const { return _showRequiredToggleButton; }
  CallLog log;
};

class SpecDetailUITest : public ::testing::Test {
 protected:
  void SetUp() override { _shell = newApplicationShell("detailShell"); }
  void TearDown() override { XtDestroyWidget(_shell); }
  Widget _shell = nullptr;
};

TEST_F(SpecDetailUITest, BuildsTheNamedWidgetsInOrderUnderTheirParents) {
  SpecDetailUI ui("SpecDetail", _shell);
  EXPECT_STREQ("SpecDetailUI", ui.className());
  WidgetClass grid = ovGridWidgetClass, label = xmLabelWidgetClass,
              field = xmTextFieldWidgetClass, toggle = xmToggleButtonWidgetClass,
              form = xmFormWidgetClass, push = xmPushButtonWidgetClass;
  expectWidgetTree(ui.baseWidget(),
                   {
                       {"SpecDetail", grid, "detailShell"},
                       {"applySpringBox", ovSpringBoxWidgetClass, "SpecDetail"},
                       {"applyArrowButton", xmArrowButtonWidgetClass, "applySpringBox"},
                       {"applyLabel", label, "applySpringBox"},
                       {"frame", xmFrameWidgetClass, "SpecDetail"},
                       {"form", form, "frame"},
                       {"productForm", form, "form"},
                       {"productGrid", grid, "productForm"},
                       {"nameGrid", grid, "productGrid"},
                       {"productNameLabel", label, "nameGrid"},
                       {"productNameTextField", field, "nameGrid"},
                       {"idGrid", grid, "productGrid"},
                       {"productIdLabel", label, "idGrid"},
                       {"productIdTextField", field, "idGrid"},
                       {"subsysForm", form, "form"},
                       {"subsysGrid", grid, "subsysForm"},
                       {"nameGrid2", grid, "subsysGrid"},
                       {"subsysNameLabel", label, "nameGrid2"},
                       {"subsysNameTextField", field, "nameGrid2"},
                       {"idGrid2", grid, "subsysGrid"},
                       {"subsysIdLabel", label, "idGrid2"},
                       {"subsysIdTextField", field, "idGrid2"},
                       {"flagsGrid", grid, "subsysGrid"},
                       {"flagsLabel", label, "flagsGrid"},
                       {"flagsGrid1", grid, "subsysGrid"},
                       {"defaultToggleButton", toggle, "flagsGrid1"},
                       {"requiredToggleButton", toggle, "flagsGrid1"},
                       {"minirootToggleButton", toggle, "flagsGrid1"},
                       {"patchToggleButton", toggle, "flagsGrid1"},
                       {"panedWindow", xmPanedWindowWidgetClass, "subsysGrid"},
                       {"mappingGrid", grid, "panedWindow"},
                       {"mappingLabel", label, "mappingGrid"},
                       {"mappingText", xmTextWidgetClass, "mappingGrid"},
                       {"rulesGrid", grid, "panedWindow"},
                       {"rulesLabel", label, "rulesGrid"},
                       {"rulesText", xmTextWidgetClass, "rulesGrid"},
                       {"ruleButtonsLabel", label, "rulesGrid"},
                       {"prereqPushButton", push, "rulesGrid"},
                       {"incompatPushButton", push, "rulesGrid"},
                       {"replacesPushButton", push, "rulesGrid"},
                       {"imageForm", form, "form"},
                       {"imageGrid", grid, "imageForm"},
                       {"nameGrid1", grid, "imageGrid"},
                       {"imageNameLabel", label, "nameGrid1"},
                       {"imageNameTextField", field, "nameGrid1"},
                       {"idGrid1", grid, "imageGrid"},
                       {"imageIdLabel", label, "idGrid1"},
                       {"imageIdTextField", field, "idGrid1"},
                       {"versionGrid", grid, "imageGrid"},
                       {"versionLabel", label, "versionGrid"},
                       {"versionTextField", field, "versionGrid"},
                       {"orderGrid", grid, "imageGrid"},
                       {"orderLabel", label, "orderGrid"},
                       {"orderTextField", field, "orderGrid"},
                       {"scrolledWindow", xmScrolledWindowWidgetClass, "orderGrid"},
                       {"orderList", xmListWidgetClass, "scrolledWindow"},
                       {"noneForm", form, "form"},
                       {"noneGrid", grid, "noneForm"},
                       {"noneLabel", label, "noneGrid"},
                   });
}

TEST_F(SpecDetailUITest, EveryCallbackReachesItsMethod) {
  RecordingSpecDetail ui("SpecDetail", _shell);
  expectCallbacksRouted(ui.baseWidget(),
                        {
                            {"applyArrowButton", XmNactivateCallback, "applyArrowButton"},
                            {"orderList", XmNbrowseSelectionCallback, "browseSelection"},
                            {"prereqPushButton", XmNactivateCallback, "prereqPushButton"},
                            {"incompatPushButton", XmNactivateCallback, "incompatPushButton"},
                            {"replacesPushButton", XmNactivateCallback, "replacesPushButton"},
                        },
                        ui.log);
}

TEST_F(SpecDetailUITest, FallbackTextsAndTheUsersOwn) {
  expectResourceLinesWellFormed(SpecDetailUI::_defaultSpecDetailUIResources);
  {
    RecordingSpecDetail ui("SpecDetail", _shell);
    EXPECT_FALSE(ui.showRequired());
    expectLabelTexts(
        ui.baseWidget(),
        {
            {"applyLabel", "Assign"},
            {"noneLabel",
             "No node selected.  Click on a node to select.\n  Create nodes using the Add button."},
            {"productNameLabel", "Product Name"},
            {"productIdLabel", "Description"},
            {"subsysNameLabel", "Subsystem Name"},
            {"subsysIdLabel", "Description"},
            {"requiredToggleButton", "Required (Make a prerequisite to install Kardos)"},
            {"defaultToggleButton", "Default (Installed by default)"},
            {"minirootToggleButton", "Miniroot (Must be installed from miniroot)"},
            {"patchToggleButton", "Patch (Follows original subsystem)"},
            {"mappingLabel", "Mapping"},
            {"rulesLabel", "Rules"},
            {"prereqPushButton", "Prerequisite"},
            {"incompatPushButton", "Incompatible"},
            {"replacesPushButton", "Replaces"},
            {"imageNameLabel", "Image Name"},
            {"imageIdLabel", "Description"},
            {"versionLabel", "Version"},
            {"orderLabel", "Installation Order"},
            {"flagsLabel", "Installation Options"},
            {"ruleButtonsLabel", "Insert Rule Template"},
        });
  }
  // A site that offers the Required toggle says so under the class name.
  putUserResource(_shell, "Tamblin*userSpecDetail*showRequiredToggleButton: True");
  putUserResource(_shell, "Tamblin*userSpecDetail*versionLabel.labelString: Release");
  RecordingSpecDetail ui("userSpecDetail", _shell);
  EXPECT_TRUE(ui.showRequired());
  expectLabelTexts(ui.baseWidget(), {{"versionLabel", "Release"}, {"orderLabel",
                                                                   "Installation Order"}});
}

}  // namespace
