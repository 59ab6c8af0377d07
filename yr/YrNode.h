// YrNode: one node of a YrGraph, shown as a push button in the graph
// widget.  The node's widget carries the caller's user data (XmNuserData),
// which is how a selected widget leads back to what it shows.
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

class YrNode {
 public:
  /// Creates the node's widget in graph under parentWidget (null: a root),
  /// named name and showing label.
  YrNode(Widget graph, const std::string& key, const std::string& name, const std::string& label,
         Widget parentWidget, void* userData);
  ~YrNode();
  YrNode(const YrNode&) = delete;
  YrNode& operator=(const YrNode&) = delete;

  const std::string& key() const { return _key; }
  Widget baseWidget() const { return _widget; }
  void setLabel(const std::string& label);
  /// The text the button shows.
  std::string label() const;
  /// The text the button shows for label.
  static std::string shownLabel(const std::string& label);
  static constexpr std::size_t kShownLabelBytes = 40;
  /// The user data of a node widget (null for any other widget).
  static void* userDataOf(Widget w);
  /// The widget went with its graph: do not destroy it again.
  void forgetWidget() { _widget = nullptr; }

 private:
  std::string _key;
  Widget _widget = nullptr;
};

#endif
