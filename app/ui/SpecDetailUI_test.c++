// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <Xm/Xm.h>

#include "app/ui/LayoutChecks.h"
#include "app/ui/SpecDetailUI.h"

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

#define PRODUCT "frame.form.productForm.productGrid."
#define SUBSYS "frame.form.subsysForm.subsysGrid."
#define RULES SUBSYS "panedWindow.rulesGrid."
#define IMAGE "frame.form.imageForm.imageGrid."

TEST_F(SpecDetailUITest, NamesTextsAndCallbacks) {
  RecordingSpecDetail ui("SpecDetail", _shell);
  EXPECT_FALSE(ui.showRequired());
  const char* activate = XmNactivateCallback;
  expectLayoutContract(
      ui.baseWidget(), SpecDetailUI::_defaultSpecDetailUIResources,
      {
          {"applySpringBox.applyArrowButton", nullptr, activate, "applyArrowButton"},
          {"applySpringBox.applyLabel", "Assign"},
          {PRODUCT "nameGrid.productNameLabel", "Product Name"},
          {PRODUCT "nameGrid.productNameTextField"},
          {PRODUCT "idGrid.productIdLabel", "Description"},
          {PRODUCT "idGrid.productIdTextField"},
          {SUBSYS "nameGrid2.subsysNameLabel", "Subsystem Name"},
          {SUBSYS "nameGrid2.subsysNameTextField"},
          {SUBSYS "idGrid2.subsysIdLabel", "Description"},
          {SUBSYS "idGrid2.subsysIdTextField"},
          {SUBSYS "flagsGrid.flagsLabel", "Installation Options"},
          {SUBSYS "flagsGrid1.defaultToggleButton", "Default (Installed by default)"},
          {SUBSYS "flagsGrid1.requiredToggleButton",
           "Required (Make a prerequisite to install Kardos)"},
          {SUBSYS "flagsGrid1.minirootToggleButton", "Miniroot (Must be installed from miniroot)"},
          {SUBSYS "flagsGrid1.patchToggleButton", "Patch (Follows original subsystem)"},
          {SUBSYS "panedWindow.mappingGrid.mappingLabel", "Mapping"},
          {SUBSYS "panedWindow.mappingGrid.mappingText"},
          {RULES "rulesLabel", "Rules"},
          {RULES "rulesText"},
          {RULES "ruleButtonsLabel", "Insert Rule Template"},
          {RULES "prereqPushButton", "Prerequisite", activate, "prereqPushButton"},
          {RULES "incompatPushButton", "Incompatible", activate, "incompatPushButton"},
          {RULES "replacesPushButton", "Replaces", activate, "replacesPushButton"},
          {IMAGE "nameGrid1.imageNameLabel", "Image Name"},
          {IMAGE "nameGrid1.imageNameTextField"},
          {IMAGE "idGrid1.imageIdLabel", "Description"},
          {IMAGE "idGrid1.imageIdTextField"},
          {IMAGE "versionGrid.versionLabel", "Version"},
          {IMAGE "versionGrid.versionTextField"},
          {IMAGE "orderGrid.orderLabel", "Installation Order"},
          {IMAGE "orderGrid.orderTextField"},
          {IMAGE "orderGrid.scrolledWindow.orderList", nullptr, XmNbrowseSelectionCallback,
           "browseSelection"},
          {"frame.form.noneForm.noneGrid.noneLabel",
           "No node selected.  Click on a node to select.\n  Create nodes using the Add button."},
      },
      ui.log);

  // A site that offers the Required toggle says so under the class name;
  // a user's label wins over the fallback.
  putUserResource(_shell, "Tamblin*userSpecDetail*showRequiredToggleButton: True");
  putUserResource(_shell, "Tamblin*userSpecDetail*versionLabel.labelString: Release");
  RecordingSpecDetail user("userSpecDetail", _shell);
  EXPECT_TRUE(user.showRequired());
  EXPECT_EQ("Release", labelText(findWidget(user.baseWidget(), "versionLabel")));
}

}  // namespace
