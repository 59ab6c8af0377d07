// gtest first: Xlib's macros (None, Bool, Status) break its headers.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include <X11/IntrinsicP.h>
#include <X11/Shell.h>
#include <Xm/Form.h>
#include <Xm/PushB.h>
#include <Xm/ScrollBar.h>
#include <Xm/PushBG.h>
#include <Xm/ScrolledW.h>

#include "ov/OvGraph.h"
#include "util/UiTestApp.h"

namespace {

struct Box {
  int x, y, w, h;
  int right() const { return x + w; }
  int bottom() const { return y + h; }
  int middle() const { return y + h / 2; }
};

Box boxOf(Widget w) {
  Position x = 0, y = 0;
  Dimension width = 0, height = 0;
  XtVaGetValues(w, XmNx, &x, XmNy, &y, XmNwidth, &width, XmNheight, &height, nullptr);
  return {x, y, width, height};
}

// What the callbacks saw.
struct Seen {
  std::vector<std::string> calls;  // "select name" / "deselect"
  std::vector<int> counts;          // num_selected_widgets each time
};

void recordSelect(Widget, XtPointer client, XtPointer call) {
  auto* seen = static_cast<Seen*>(client);
  auto* cb = static_cast<OvGraphCallbackStruct*>(call);
  seen->calls.push_back(std::string("select ") + XtName(cb->node));
  seen->counts.push_back(cb->num_selected_widgets);
}

void recordDeselect(Widget, XtPointer client, XtPointer call) {
  auto* seen = static_cast<Seen*>(client);
  seen->calls.push_back("deselect");
  seen->counts.push_back(static_cast<OvGraphCallbackStruct*>(call)->num_selected_widgets);
}

class OvGraphTest : public ::testing::Test {
 protected:
  void SetUp() override {
    _shell = UiTestApp::newShell("graphShell");
    XtVaSetValues(_shell, XmNallowShellResize, True, nullptr);
  }
  void TearDown() override { XtDestroyWidget(_shell); }

  Widget makeGraph(Boolean multiple = False) {
    Widget graph = XtVaCreateManagedWidget("graph", ovGraphWidgetClass, _shell,
                                           OvNallowMultipleSelections, multiple, nullptr);
    XtAddCallback(graph, OvNselectNodeCallback, &recordSelect, &_seen);
    XtAddCallback(graph, OvNdeselectCallback, &recordDeselect, &_seen);
    return graph;
  }
  // Builds a forest from (name, parent name) pairs; "" is a root.
  std::map<std::string, Widget> build(Widget graph,
                                      const std::vector<std::pair<const char*, const char*>>& nodes) {
    std::map<std::string, Widget> byName;
    for (const auto& [name, parent] : nodes)
      byName[name] = OvGraphAddNode(graph, name, *parent ? byName.at(parent) : nullptr);
    return byName;
  }
  void realize() {
    XtRealizeWidget(_shell);
    UiTestApp::flush();
  }
  std::vector<std::string> selectedNames(Widget graph) {
    int n = 0;
    WidgetList list = OvGraphGetSelectedNodes(graph, &n);
    std::vector<std::string> names;
    for (int i = 0; i < n; ++i) names.push_back(XtName(list[i]));
    XtFree(reinterpret_cast<char*>(list));
    return names;
  }

  Widget _shell = nullptr;
  Seen _seen;
};

// The default product hierarchy, and a second product.
const std::vector<std::pair<const char*, const char*>> kForest = {
    {"my_product", ""},   {"sw", "my_product"}, {"man", "my_product"},  {"books", "my_product"},
    {"base", "sw"},       {"optional", "sw"},   {"manpages", "man"},    {"relnotes", "man"},
    {"userguide", "books"}, {"other", ""},      {"img", "other"},
};

void expectTreeLayout(const std::map<std::string, Widget>& nodes,
                      const std::vector<std::pair<const char*, const char*>>& forest) {
  std::vector<Box> boxes;
  for (const auto& [name, parent] : forest) {
    Box b = boxOf(nodes.at(name));
    boxes.push_back(b);
    if (!*parent) continue;
    Box p = boxOf(nodes.at(parent));
    EXPECT_GT(b.x, p.right()) << name << " is not right of " << parent;
  }
  for (size_t i = 0; i < boxes.size(); ++i)
    for (size_t j = i + 1; j < boxes.size(); ++j) {
      const Box &a = boxes[i], &b = boxes[j];
      bool apart = a.right() <= b.x || b.right() <= a.x || a.bottom() <= b.y || b.bottom() <= a.y;
      EXPECT_TRUE(apart) << forest[i].first << " overlaps " << forest[j].first;
    }
  // Siblings stand in creation order, top to bottom; a parent is centred on
  // the span of its children.
  std::map<std::string, std::vector<std::string>> children;
  for (const auto& [name, parent] : forest) children[parent].push_back(name);
  for (const auto& [parent, kids] : children) {
    for (size_t k = 1; k < kids.size(); ++k)
      EXPECT_LT(boxOf(nodes.at(kids[k - 1])).y, boxOf(nodes.at(kids[k])).y) << kids[k];
    if (parent.empty()) continue;
    int span = (boxOf(nodes.at(kids.front())).middle() + boxOf(nodes.at(kids.back())).middle()) / 2;
    EXPECT_NEAR(span, boxOf(nodes.at(parent)).middle(), 2) << parent;
  }
}

TEST_F(OvGraphTest, LaysTheForestOutLeftToRightWithoutOverlaps) {
  Widget graph = makeGraph();
  auto nodes = build(graph, kForest);
  realize();
  expectTreeLayout(nodes, kForest);
  // Levels share columns.
  EXPECT_EQ(boxOf(nodes["sw"]).x, boxOf(nodes["img"]).x);
  EXPECT_EQ(boxOf(nodes["base"]).x, boxOf(nodes["userguide"]).x);
  // The graph is as large as its layout.
  Box g = boxOf(graph);
  for (const auto& [name, w] : nodes) {
    EXPECT_LE(boxOf(w).right(), g.w) << name;
    EXPECT_LE(boxOf(w).bottom(), g.h) << name;
  }
}

TEST_F(OvGraphTest, LaysOutAgainAfterRenameAddAndDelete) {
  Widget graph = makeGraph();
  auto nodes = build(graph, kForest);
  realize();
  int baseX = boxOf(nodes["base"]).x;
  // A longer image name widens its column and moves the next one right.
  XmString longName = XmStringCreateLocalized(const_cast<char*>("a much longer image name"));
  XtVaSetValues(nodes["man"], XmNlabelString, longName, nullptr);
  XmStringFree(longName);
  UiTestApp::flush();
  EXPECT_GT(boxOf(nodes["base"]).x, baseX);
  expectTreeLayout(nodes, kForest);

  // A node appended under sw comes last among its children.
  auto forest = kForest;
  forest.insert(forest.begin() + 6, {"extra", "sw"});
  nodes["extra"] = OvGraphAddNode(graph, "extra", nodes["sw"]);
  UiTestApp::flush();
  expectTreeLayout(nodes, forest);
  EXPECT_GT(boxOf(nodes["extra"]).y, boxOf(nodes["optional"]).y);

  // Deleting the man subtree closes the gap: books moves up.
  int booksY = boxOf(nodes["books"]).y;
  for (const char* gone : {"manpages", "relnotes", "man"}) {
    XtDestroyWidget(nodes[gone]);
    nodes.erase(gone);
  }
  UiTestApp::flush();
  EXPECT_LT(boxOf(nodes["books"]).y, booksY);
  std::vector<std::pair<const char*, const char*>> left;
  for (const auto& entry : forest)
    if (nodes.count(entry.first)) left.push_back(entry);
  expectTreeLayout(nodes, left);
}

TEST_F(OvGraphTest, SingleSelectionAndItsCallbacks) {
  Widget graph = makeGraph();
  auto nodes = build(graph, kForest);
  realize();
  XmAnyCallbackStruct click{XmCR_ACTIVATE, nullptr};
  XtCallCallbacks(nodes["sw"], XmNactivateCallback, &click);  // as a click on the button
  EXPECT_EQ(std::vector<std::string>{"sw"}, selectedNames(graph));
  XtCallCallbacks(nodes["base"], XmNactivateCallback, &click);
  EXPECT_EQ(std::vector<std::string>{"base"}, selectedNames(graph));
  EXPECT_EQ((std::vector<std::string>{"select sw", "select base"}), _seen.calls);
  EXPECT_EQ((std::vector<int>{1, 1}), _seen.counts);

  // Without notification nothing is called; with it, the deselect callback.
  OvGraphSelectNode(graph, nodes["man"], False);
  EXPECT_EQ(std::vector<std::string>{"man"}, selectedNames(graph));
  EXPECT_EQ(2u, _seen.calls.size());
  Widget man = nodes["man"];
  OvGraphUnselectNodes(graph, &man, 1, True);
  EXPECT_TRUE(selectedNames(graph).empty());
  EXPECT_EQ("deselect", _seen.calls.back());
  EXPECT_EQ(0, _seen.counts.back());
  // Unselecting what is not selected changes nothing and calls nothing.
  OvGraphUnselectNodes(graph, &man, 1, True);
  EXPECT_EQ(3u, _seen.calls.size());

  // A destroyed node leaves the selection.
  OvGraphSelectNode(graph, nodes["userguide"], True);
  XtDestroyWidget(nodes["userguide"]);
  UiTestApp::flush();
  EXPECT_TRUE(selectedNames(graph).empty());
}

TEST_F(OvGraphTest, MultipleSelectionAndBackgroundClick) {
  Widget graph = makeGraph(True);
  auto nodes = build(graph, kForest);
  realize();
  OvGraphSelectNode(graph, nodes["sw"], True);
  OvGraphSelectNode(graph, nodes["man"], True);
  EXPECT_EQ((std::vector<std::string>{"sw", "man"}), selectedNames(graph));
  EXPECT_EQ(2, _seen.counts.back());

  // A click on the empty top right corner unselects all.
  XEvent press{};
  press.xbutton.type = ButtonPress;
  press.xbutton.display = XtDisplay(graph);
  press.xbutton.window = XtWindow(graph);
  press.xbutton.button = Button1;
  press.xbutton.x = boxOf(graph).w - 2;
  press.xbutton.y = 1;
  XtDispatchEvent(&press);
  EXPECT_TRUE(selectedNames(graph).empty());
  EXPECT_EQ("deselect", _seen.calls.back());
}

// A forest of about `total` nodes in products of images of subsystems, with
// names of one to forty characters; (name, parent index) pairs, -1 a root.
std::vector<std::pair<std::string, int>> generatedForest(int total) {
  std::vector<std::pair<std::string, int>> nodes;
  auto name = [](const char* kind, int i) {
    std::string n = kind + std::to_string(i);
    n += std::string(static_cast<size_t>((i * 7919) % 40), 'x');
    return n;
  };
  int product = -1, image = -1;
  for (int i = 0; static_cast<int>(nodes.size()) < total; ++i) {
    if (i % 1000 == 0) {
      product = static_cast<int>(nodes.size());
      nodes.push_back({name("p", i), -1});
    } else if (i % 100 == 0 || image < 0) {
      image = static_cast<int>(nodes.size());
      nodes.push_back({name("i", i), product});
    } else {
      nodes.push_back({name("s", i), image});
    }
  }
  return nodes;
}

TEST_F(OvGraphTest, ForestsOfAnySizeNeverOverlapAndShowWhatTheWindowHolds) {
  XtVaSetValues(_shell, XmNwidth, 600, XmNheight, 400, XmNallowShellResize, False, nullptr);
  for (int total : {2, 2000, 20000}) {
    Widget sw = XtVaCreateManagedWidget("holder", xmFormWidgetClass, _shell, nullptr);
    Widget graph = OvCreateScrolledGraph(sw, "graph", nullptr, 0);
    XtVaSetValues(XtParent(graph), XmNtopAttachment, XmATTACH_FORM, XmNbottomAttachment,
                  XmATTACH_FORM, XmNleftAttachment, XmATTACH_FORM, XmNrightAttachment,
                  XmATTACH_FORM, nullptr);
    auto forest = generatedForest(total);
    std::vector<Widget> widgets;
    for (const auto& [name, parent] : forest) {
      // The names go to the labels; widget names stay few (every distinct
      // widget name is kept for the life of the process).
      XmString label = XmStringCreateLocalized(const_cast<char*>(name.c_str()));
      Arg args[1];
      XtSetArg(args[0], XmNlabelString, label);
      widgets.push_back(OvGraphAddNodeWithArgs(graph, parent < 0 ? "product" : "node",
                                               parent < 0 ? nullptr : widgets[parent], args, 1));
      XmStringFree(label);
    }
    realize();

    // Every node is placed at its widget's size, right of its parent, and
    // no two placements meet (a sweep over them sorted by top edge).
    std::vector<OvGraphBounds> bounds(widgets.size());
    for (size_t i = 0; i < widgets.size(); ++i) {
      ASSERT_TRUE(OvGraphNodeBounds(graph, widgets[i], &bounds[i])) << forest[i].first;
      Box w = boxOf(widgets[i]);
      ASSERT_EQ(w.w, bounds[i].width) << forest[i].first;
      ASSERT_EQ(w.h, bounds[i].height) << forest[i].first;
      if (forest[i].second >= 0) {
        const OvGraphBounds& p = bounds[forest[i].second];
        ASSERT_GT(bounds[i].x, p.x + p.width) << forest[i].first;
      }
    }
    std::vector<size_t> byTop(widgets.size());
    for (size_t i = 0; i < byTop.size(); ++i) byTop[i] = i;
    std::sort(byTop.begin(), byTop.end(), [&](size_t a, size_t b) { return bounds[a].y < bounds[b].y; });
    for (size_t k = 0; k < byTop.size(); ++k) {
      const OvGraphBounds& a = bounds[byTop[k]];
      for (size_t j = k + 1; j < byTop.size() && bounds[byTop[j]].y < a.y + a.height; ++j) {
        const OvGraphBounds& b = bounds[byTop[j]];
        ASSERT_TRUE(a.x + a.width <= b.x || b.x + b.width <= a.x)
            << total << ": " << forest[byTop[k]].first << " overlaps " << forest[byTop[j]].first;
      }
    }
    if (total == 20000) {
      EXPECT_GT(bounds[byTop.back()].y, 65535);  // beyond X coordinates
    }

    // The widgets inside the window stand where their placement is, seen
    // from the scrolled corner; the others are out of any window.  Checked
    // at the top, and again scrolled to the bottom by the scroll bar.
    Widget vertical = nullptr;
    XtVaGetValues(XtParent(graph), XmNverticalScrollBar, &vertical, nullptr);
    ASSERT_NE(nullptr, vertical);
    for (bool bottom : {false, true}) {
      if (bottom) {
        int maximum = 0, slider = 0;
        XtVaGetValues(vertical, XmNmaximum, &maximum, XmNsliderSize, &slider, nullptr);
        XmScrollBarSetValues(vertical, maximum - slider, slider, 0, 0, True);
        UiTestApp::flush();
      }
      OvGraphBounds view{};
      OvGraphGetView(graph, &view);
      Box g = boxOf(graph);
      EXPECT_EQ(g.w, view.width);
      int shown = 0;
      for (size_t i = 0; i < widgets.size(); ++i) {
        const OvGraphBounds& b = bounds[i];
        bool inside = b.x < view.x + view.width && b.x + b.width > view.x &&
                      b.y < view.y + view.height && b.y + b.height > view.y;
        Box w = boxOf(widgets[i]);
        if (inside) {
          ++shown;
          ASSERT_EQ(b.x - view.x, w.x) << forest[i].first;
          ASSERT_EQ(b.y - view.y, w.y) << forest[i].first;
        } else {
          ASSERT_TRUE(w.right() <= 0 || w.bottom() <= 0) << forest[i].first << " left in sight";
        }
      }
      EXPECT_GT(shown, 0) << total << (bottom ? " at the bottom" : " at the top");
      if (bottom) {
        const OvGraphBounds& last = bounds[byTop.back()];
        EXPECT_LE(last.y + last.height, view.y + view.height) << total;
      }
    }
    XtDestroyWidget(sw);
    UiTestApp::flush();
  }
}

TEST_F(OvGraphTest, KeyboardFocusStillMovesAfterManyNodesAreDestroyed) {
  XtVaSetValues(_shell, XmNwidth, 300, XmNheight, 600, XmNallowShellResize, False, nullptr);
  Widget graph = OvCreateScrolledGraph(_shell, "graph", nullptr, 0);
  Widget product = OvGraphAddNode(graph, "product", nullptr);
  std::vector<Widget> images;
  for (int i = 0; i < 40; ++i) {
    std::string name = "image" + std::to_string(i);
    images.push_back(OvGraphAddNode(graph, name.c_str(), product));
  }
  realize();
  ASSERT_TRUE(XmProcessTraversal(images[0], XmTRAVERSE_CURRENT));
  EXPECT_EQ(images[0], XmGetFocusWidget(graph));
  for (int i = 0; i < 30; ++i) XtDestroyWidget(images[i]);  // the focused one first
  UiTestApp::flush();
  for (Widget w : {images[35], images[30], product}) {
    OvGraphShowNode(graph, w);
    EXPECT_TRUE(XmProcessTraversal(w, XmTRAVERSE_CURRENT)) << XtName(w);
    EXPECT_EQ(w, XmGetFocusWidget(graph)) << XtName(w);
  }
}

TEST_F(OvGraphTest, SelectingANodeScrollsItIntoView) {
  XtVaSetValues(_shell, XmNwidth, 300, XmNheight, 200, XmNallowShellResize, False, nullptr);
  Widget graph = OvCreateScrolledGraph(_shell, "graph", nullptr, 0);
  Widget product = OvGraphAddNode(graph, "product", nullptr);
  std::vector<Widget> images;
  for (int i = 0; i < 40; ++i) {
    std::string name = "image" + std::to_string(i);
    images.push_back(OvGraphAddNode(graph, name.c_str(), product));
  }
  realize();
  Widget sw = XtParent(graph);
  ASSERT_TRUE(XmIsScrolledWindow(sw));
  Widget vertical = nullptr;
  XtVaGetValues(sw, XmNverticalScrollBar, &vertical, nullptr);
  ASSERT_NE(nullptr, vertical);
  EXPECT_TRUE(XtIsManaged(vertical));
  OvGraphBounds last{}, view{};
  ASSERT_TRUE(OvGraphNodeBounds(graph, images.back(), &last));
  int maximum = 0, value = -1;
  XtVaGetValues(vertical, XmNmaximum, &maximum, XmNvalue, &value, nullptr);
  EXPECT_GT(maximum, boxOf(graph).h);
  EXPECT_EQ(0, value);
  EXPECT_LT(boxOf(images.back()).bottom(), 0);  // out of sight

  OvGraphSelectNode(graph, images.back(), False);
  OvGraphGetView(graph, &view);
  XtVaGetValues(vertical, XmNvalue, &value, nullptr);
  EXPECT_EQ(view.y, value);
  Box shown = boxOf(images.back());
  EXPECT_EQ(last.y - view.y, shown.y);
  EXPECT_LE(shown.bottom(), boxOf(graph).h);
  EXPECT_GE(shown.y, 0);
}


// A lazy node of the tests: the label it shows and how often its widget
// was made.
struct LazyLabel {
  std::string name, label;
  int* made;
};

Widget makeLazy(Widget graph, Widget parentWidget, XtPointer closure) {
  auto* l = static_cast<LazyLabel*>(closure);
  ++*l->made;
  XmString s = XmStringCreateLtoR(const_cast<char*>(l->label.c_str()),
                                  const_cast<char*>(XmFONTLIST_DEFAULT_TAG));
  Arg args[1];
  XtSetArg(args[0], XmNlabelString, s);
  Widget w = OvGraphAddNodeWithArgs(graph, l->name.c_str(), parentWidget, args, 1);
  XmStringFree(s);
  return w;
}

TEST_F(OvGraphTest, LazyNodesGetWidgetsOnlyInSightAndNeverOverlap) {
  XtVaSetValues(_shell, XmNwidth, 900, XmNheight, 400, XmNallowShellResize, False, nullptr);
  Widget form = XtVaCreateManagedWidget("holder", xmFormWidgetClass, _shell, nullptr);
  Widget graph = OvCreateScrolledGraph(form, "graph", nullptr, 0);
  XtVaSetValues(XtParent(graph), XmNtopAttachment, XmATTACH_FORM, XmNbottomAttachment,
                XmATTACH_FORM, XmNleftAttachment, XmATTACH_FORM, XmNrightAttachment,
                XmATTACH_FORM, nullptr);
  // 20 products of 9 images of 10 subsystems; labels of every length, some
  // of two lines, one empty.
  int made = 0;
  std::vector<LazyLabel> labels;
  std::vector<int> parentOf;
  labels.reserve(2000);
  for (int p = 0; p < 20; ++p) {
    int product = static_cast<int>(labels.size());
    labels.push_back({"product", "product" + std::to_string(p), &made});
    parentOf.push_back(-1);
    for (int i = 0; i < 9; ++i) {
      int image = static_cast<int>(labels.size());
      std::string twoLines = std::string(1 + (i * 7) % 30, 'W') + "\n" + std::to_string(i);
      labels.push_back({"image", twoLines, &made});
      parentOf.push_back(product);
      for (int k = 0; k < 10; ++k) {
        std::string label = k == 3 ? "" : std::string(1 + (p + k * 11) % 37, 'i');
        labels.push_back({"subsystem", label, &made});
        parentOf.push_back(image);
      }
    }
  }
  std::vector<OvGraphLazyNode> nodes;
  for (size_t i = 0; i < labels.size(); ++i) {
    XmString s = XmStringCreateLtoR(const_cast<char*>(labels[i].label.c_str()),
                                    const_cast<char*>(XmFONTLIST_DEFAULT_TAG));
    nodes.push_back(OvGraphAddLazyNode(graph, parentOf[i] < 0 ? nullptr : nodes[parentOf[i]], s,
                                       &makeLazy, &labels[i]));
    XmStringFree(s);
  }
  realize();
  EXPECT_GT(made, 0);
  EXPECT_LT(made, 100) << "widgets made for nodes out of sight";

  // Placements at the size the widgets take, children right of their
  // parent, none meeting another; checked before and after every widget
  // is made (a measure that missed would move them).
  Widget vertical = nullptr;
  XtVaGetValues(XtParent(graph), XmNverticalScrollBar, &vertical, nullptr);
  ASSERT_NE(nullptr, vertical);
  auto check = [&](const char* when) {
    std::vector<OvGraphBounds> bounds(nodes.size());
    for (size_t i = 0; i < nodes.size(); ++i) {
      ASSERT_TRUE(OvGraphLazyNodeBounds(graph, nodes[i], &bounds[i])) << i;
      if (parentOf[i] >= 0) {
        const OvGraphBounds& p = bounds[parentOf[i]];
        ASSERT_GT(bounds[i].x, p.x + p.width) << when << i;
      }
    }
    std::vector<size_t> byTop(nodes.size());
    for (size_t i = 0; i < byTop.size(); ++i) byTop[i] = i;
    std::sort(byTop.begin(), byTop.end(), [&](size_t a, size_t b) { return bounds[a].y < bounds[b].y; });
    for (size_t k = 0; k < byTop.size(); ++k) {
      const OvGraphBounds& a = bounds[byTop[k]];
      for (size_t j = k + 1; j < byTop.size() && bounds[byTop[j]].y < a.y + a.height; ++j) {
        const OvGraphBounds& b = bounds[byTop[j]];
        ASSERT_TRUE(a.x + a.width <= b.x || b.x + b.width <= a.x)
            << when << byTop[k] << " overlaps " << byTop[j];
      }
    }
    // In sight: a widget where the placement is, of its size; out of sight:
    // none, or one out of any window.
    OvGraphBounds view{};
    OvGraphGetView(graph, &view);
    int shown = 0;
    for (size_t i = 0; i < nodes.size(); ++i) {
      const OvGraphBounds& b = bounds[i];
      bool inside = b.x < view.x + view.width && b.x + b.width > view.x &&
                    b.y < view.y + view.height && b.y + b.height > view.y;
      Widget w = OvGraphLazyNodeWidget(graph, nodes[i], False);
      if (inside) {
        ++shown;
        ASSERT_NE(nullptr, w) << when << i;
        Box box = boxOf(w);
        ASSERT_EQ(b.x - view.x, box.x) << when << i;
        ASSERT_EQ(b.y - view.y, box.y) << when << i;
        ASSERT_EQ(b.width, box.w) << when << i;
        ASSERT_EQ(b.height, box.h) << when << i;
        ASSERT_STREQ(labels[i].name.c_str(), XtName(w));
      } else if (w) {
        Box box = boxOf(w);
        ASSERT_TRUE(box.right() <= 0 || box.bottom() <= 0) << when << i << " left in sight";
      }
    }
    EXPECT_GT(shown, 0) << when;
  };
  check("at the top: ");
  int maximum = 0, slider = 0;
  XtVaGetValues(vertical, XmNmaximum, &maximum, XmNsliderSize, &slider, nullptr);
  XmScrollBarSetValues(vertical, maximum / 2, slider, 0, 0, True);
  UiTestApp::flush();
  check("half way: ");
  EXPECT_LT(made, 200);

  // Asked for, a widget is made under its parent's (made first).
  OvGraphLazyNode last = nodes.back();
  Widget w = OvGraphLazyNodeWidget(graph, last, True);
  ASSERT_NE(nullptr, w);
  Widget parentWidget = nullptr;
  XtVaGetValues(w, OvNparentNode, &parentWidget, nullptr);
  EXPECT_EQ(OvGraphLazyNodeWidget(graph, nodes[parentOf.back()], False), parentWidget);
  for (OvGraphLazyNode n : nodes) OvGraphLazyNodeWidget(graph, n, True);
  UiTestApp::flush();
  check("every widget made: ");

  // A new label is measured without a widget; a removed node's widget goes
  // and its parent centres on the children left.
  OvGraphBounds before{}, after{};
  ASSERT_TRUE(OvGraphLazyNodeBounds(graph, nodes[0], &before));
  XmString wide = XmStringCreateLocalized(const_cast<char*>("a far wider label than before"));
  OvGraphSetLazyNodeLabel(graph, nodes[0], wide);
  XmStringFree(wide);
  ASSERT_TRUE(OvGraphLazyNodeBounds(graph, nodes[0], &after));
  EXPECT_GT(after.width, before.width);
  OvGraphLazyNode image = nodes[parentOf.back()];
  ASSERT_TRUE(OvGraphLazyNodeBounds(graph, image, &before));
  Widget gone = OvGraphLazyNodeWidget(graph, last, False);
  bool destroyed = false;
  XtAddCallback(gone, XmNdestroyCallback,
                [](Widget, XtPointer flag, XtPointer) { *static_cast<bool*>(flag) = true; },
                &destroyed);
  OvGraphRemoveLazyNode(graph, last);
  nodes.pop_back();
  UiTestApp::flush();
  EXPECT_TRUE(destroyed);
  ASSERT_TRUE(OvGraphLazyNodeBounds(graph, image, &after));
  EXPECT_LT(after.y, before.y);
  parentOf.pop_back();
  check("after a removal: ");
}

}  // namespace
