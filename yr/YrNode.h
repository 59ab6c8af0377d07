// YrNode: one node of a YrGraph, shown as a push button in the graph
// widget.  The node's widget carries the caller's user data (XmNuserData),
// which is how a selected widget leads back to what it shows.
//
// The widget is made only when the graph's window first shows the node or
// someone asks for it (baseWidget()): a forest of twenty thousand nodes
// costs the buttons that have been on screen.  The node keeps its name,
// label and data until then.
//
// A label too long to read on a button (an identifier of a megabyte) is
// shown cut after kShownLabelBytes bytes and ends in "..."; the caller's
// model keeps it whole.  Cutting it also keeps the text within what one X
// text request may carry.
//
// Nodes are created and destroyed by their YrGraph only.
#ifndef TAMBLIN_YR_YRNODE_H
#define TAMBLIN_YR_YRNODE_H

#include <X11/Intrinsic.h>

#include <cstddef>
#include <string>

#include "ov/OvGraph.h"

class YrNode {
 public:
  /// A node in graph under parent (null: a root), named name (its
  /// widget's name) and showing label.
  YrNode(Widget graph, const std::string& key, const std::string& name, const std::string& label,
         YrNode* parent, void* userData);
  ~YrNode();
  YrNode(const YrNode&) = delete;
  YrNode& operator=(const YrNode&) = delete;

  const std::string& key() const { return _key; }
  /// The node's widget, made now if it has none yet (null once the graph
  /// has gone).
  Widget baseWidget() const;
  /// Whether the node has its widget yet.
  bool hasWidget() const;
  void setLabel(const std::string& label);
  /// The text the button shows.
  std::string label() const;
  /// The text the button shows for label.
  static std::string shownLabel(const std::string& label);
  static constexpr std::size_t kShownLabelBytes = 40;
  /// The user data of a node widget (null for any other widget).
  static void* userDataOf(Widget w);
  /// The widget went with its graph: do not destroy it again.
  void forgetWidget() { _node = nullptr; }

 private:
  static Widget make(Widget graph, Widget parentWidget, XtPointer self);

  std::string _key;
  std::string _name;
  std::string _label;
  void* _userData;
  Widget _graph;
  OvGraphLazyNode _node = nullptr;
};

#endif
