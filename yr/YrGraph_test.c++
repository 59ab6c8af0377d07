// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <Xm/Form.h>
#include <Xm/PushBG.h>
#include <Xm/ScrolledW.h>
#include <Xm/Xm.h>

#include <memory>
#include <string>
#include <vector>

#include "ov/OvGraph.h"
#include "util/UiTestApp.h"
#include "yr/YrGraph.h"

namespace {

class YrGraphTest : public ::testing::Test {
 protected:
  void SetUp() override {
    shell = UiTestApp::newShell("yrGraphShell");
    Widget form = XtVaCreateManagedWidget("form", xmFormWidgetClass, shell, XmNwidth, 300,
                                          XmNheight, 200, nullptr);
    graph = std::make_unique<YrGraph>("graph", form);
    XtRealizeWidget(shell);
  }
  void TearDown() override {
    graph.reset();
    XtDestroyWidget(shell);
    UiTestApp::flush();
  }
  Widget shell = nullptr;
  std::unique_ptr<YrGraph> graph;
  int data[4] = {};
};

TEST_F(YrGraphTest, NodesCarryTheirDataAndFollowTheirParents) {
  EXPECT_TRUE(XmIsScrolledWindow(graph->baseWidget()));
  YrNode* root = graph->addNode("1", "top", "Top", nullptr, &data[0]);
  YrNode* child = graph->addNode("2", "kid", "Kid", root, &data[1]);
  YrNode* grandchild = graph->addNode("3", "grandkid", "Grandkid", child, &data[2]);
  EXPECT_EQ(3, graph->nodeCount());
  EXPECT_STREQ("kid", XtName(child->baseWidget()));
  EXPECT_EQ("Kid", child->label());
  EXPECT_EQ(&data[1], YrNode::userDataOf(child->baseWidget()));
  EXPECT_TRUE(XmIsPushButtonGadget(child->baseWidget()));
  Widget parentOfGrandchild = nullptr;
  XtVaGetValues(grandchild->baseWidget(), OvNparentNode, &parentOfGrandchild, nullptr);
  EXPECT_EQ(child->baseWidget(), parentOfGrandchild);

  child->setLabel("Renamed");
  EXPECT_EQ("Renamed", child->label());
  EXPECT_EQ(child, graph->find("2"));
  EXPECT_EQ(nullptr, graph->find("9"));

  graph->removeNode("3");
  UiTestApp::flush();
  EXPECT_EQ(nullptr, graph->find("3"));
  EXPECT_EQ(2, graph->nodeCount());
}

TEST_F(YrGraphTest, SelectionIsSingleAndQuiet) {
  int calls = 0;
  auto count = [](Widget, XtPointer c, XtPointer) { ++*static_cast<int*>(c); };
  XtAddCallback(graph->graphWidget(), OvNselectNodeCallback, count, &calls);
  XtAddCallback(graph->graphWidget(), OvNdeselectCallback, count, &calls);
  YrNode* a = graph->addNode("1", "a", "A", nullptr, &data[0]);
  YrNode* b = graph->addNode("2", "b", "B", nullptr, &data[1]);
  UiTestApp::flush();

  graph->select(a);
  EXPECT_EQ(&data[0], graph->selectedUserData());
  graph->select(b);
  EXPECT_EQ(1, graph->selectedCount());
  EXPECT_EQ(&data[1], graph->selectedUserData());
  graph->select(nullptr);
  EXPECT_EQ(0, graph->selectedCount());
  EXPECT_EQ(nullptr, graph->selectedUserData());
  EXPECT_EQ(0, calls);

  // A click still reports through the graph's callbacks.
  XmAnyCallbackStruct cbs{};
  cbs.reason = XmCR_ACTIVATE;
  XtCallCallbacks(a->baseWidget(), XmNactivateCallback, &cbs);
  EXPECT_EQ(1, calls);
  EXPECT_EQ(&data[0], graph->selectedUserData());
}

TEST_F(YrGraphTest, LabelsTooLongToDrawAreCutWithAMark) {
  const std::size_t most = YrNode::kShownLabelBytes;
  const std::string megabyte(1 << 20, 'a');
  struct Case {
    std::string label, shown;
  } cases[] = {
      {"Top", "Top"},
      {std::string(most, 'b'), std::string(most, 'b')},
      {megabyte, std::string(most, 'a') + "..."},
      // A character of two bytes across the limit is left out whole.
      {std::string(most - 1, 'c') + "\xc3\xa9\xc3\xa9", std::string(most - 1, 'c') + "..."},
  };
  for (const Case& c : cases) EXPECT_EQ(c.shown, YrNode::shownLabel(c.label)) << c.label.size();

  // Drawn in a window: the whole text would not fit one X request.
  YrNode* node = graph->addNode("1", "long", megabyte, nullptr, &data[0]);
  UiTestApp::flush();
  EXPECT_EQ(std::string(most, 'a') + "...", node->label());
  node->setLabel(std::string(2 << 20, 'z'));
  UiTestApp::flush();
  EXPECT_EQ(std::string(most, 'z') + "...", node->label());
  Dimension width = 0;
  XtVaGetValues(node->baseWidget(), XmNwidth, &width, nullptr);
  EXPECT_LT(width, 2000);
}

}  // namespace

TEST_F(YrGraphTest, NodesOutOfSightHaveNoWidgetUntilShownOrSelected) {
  YrNode* root = graph->addNode("root", "product", "Product", nullptr, &data[0]);
  std::vector<YrNode*> images;
  for (int i = 0; i < 200; ++i) {
    std::string key = std::to_string(i);
    images.push_back(graph->addNode(key, "image", "Image " + key, root, &data[1]));
  }
  UiTestApp::flush();
  int withWidget = 0;
  for (YrNode* n : images) withWidget += n->hasWidget();
  EXPECT_GT(withWidget, 0);
  EXPECT_LT(withWidget, 50);
  YrNode* last = images.back();
  ASSERT_FALSE(last->hasWidget());
  EXPECT_EQ("Image 199", last->label());
  last->setLabel("Renamed " + std::string(60, 'x'));
  EXPECT_FALSE(last->hasWidget());

  // Selected by the model: made, scrolled into sight, focused, and showing
  // the cut label.
  graph->select(last);
  UiTestApp::flush();
  ASSERT_TRUE(last->hasWidget());
  Widget w = last->baseWidget();
  EXPECT_STREQ("image", XtName(w));
  EXPECT_EQ(&data[1], YrNode::userDataOf(w));
  EXPECT_EQ(&data[1], graph->selectedUserData());
  EXPECT_EQ(YrNode::shownLabel("Renamed " + std::string(60, 'x')), last->label());
  Position y = -1;
  Dimension height = 0, viewHeight = 0;
  XtVaGetValues(w, XmNy, &y, XmNheight, &height, nullptr);
  XtVaGetValues(graph->graphWidget(), XmNheight, &viewHeight, nullptr);
  EXPECT_GE(y, 0);
  EXPECT_LE(y + height, viewHeight);
  EXPECT_EQ(w, XmGetFocusWidget(graph->graphWidget()));
  // The keys move the focus among the nodes in sight.
  for (XmTraversalDirection direction : {XmTRAVERSE_UP, XmTRAVERSE_PREV}) {
    ASSERT_TRUE(XmProcessTraversal(XmGetFocusWidget(graph->graphWidget()), direction));
    Widget now = XmGetFocusWidget(graph->graphWidget());
    ASSERT_NE(w, now);
    ASSERT_EQ(graph->graphWidget(), XtParent(now));
    XtVaGetValues(now, XmNy, &y, nullptr);
    EXPECT_GE(y, 0) << XtName(now);
    EXPECT_LE(y, viewHeight) << XtName(now);
  }

  // Removed, made or not, they leave the root alone.
  for (int i = 0; i < 200; ++i) graph->removeNode(std::to_string(i));
  UiTestApp::flush();
  EXPECT_EQ(1, graph->nodeCount());
  EXPECT_TRUE(root->hasWidget());
}
