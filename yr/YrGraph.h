// YrGraph: a graph widget in a scrolled window and the nodes shown in it,
// each kept under a key the caller chooses (unique within the graph).
//
// The graph allows one selected node at a time; select() changes the
// selection without calling the graph's callbacks, so that a model that
// drives the selection is not told about its own change.  Node widgets
// are destroyed with their YrNode, and made only when the window first
// shows them (see YrNode).
#ifndef TAMBLIN_YR_YRGRAPH_H
#define TAMBLIN_YR_YRGRAPH_H

#include <memory>
#include <string>
#include <unordered_map>

#include "yr/YrComponent.h"
#include "yr/YrNode.h"

class YrGraph : public YrComponent {
 public:
  /// A scrolled graph named name, filling parent (a form).
  YrGraph(const char* name, Widget parent);
  ~YrGraph() override;
  const char* className() const override { return "YrGraph"; }

  /// The graph widget itself (the base widget is its scrolled window).
  Widget graphWidget() const { return _graph; }

  /// Adds a node under parent (null: a root) as its last child.
  YrNode* addNode(const std::string& key, const std::string& name, const std::string& label,
                  YrNode* parent, void* userData);
  /// Destroys the node with the key (its children must have gone first).
  void removeNode(const std::string& key);
  YrNode* find(const std::string& key) const;
  int nodeCount() const { return static_cast<int>(_nodes.size()); }

  /// Selects node alone (null: nothing) and gives it the keyboard focus
  /// (once it is in sight, if the graph has yet to scroll to it).
  void select(YrNode* node);
  /// The user data of the selected node (null when none or several).
  void* selectedUserData() const;
  int selectedCount() const;
  /// Lays the whole graph out now.
  void doLayout();

 protected:
  void widgetDestroyed() override;

 private:
  void forgetNodes();
  static void focusLater(XtPointer self, XtIntervalId*);

  Widget _graph = nullptr;
  XtIntervalId _focusTimer = 0;
  std::string _focusKey;
  std::unordered_map<std::string, std::unique_ptr<YrNode>> _nodes;
};

#endif
