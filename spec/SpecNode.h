// SpecNode: one product, image or subsystem of the product hierarchy.
//
// A node belongs to at most one SpecGraphModel, which owns it once it is
// attached (as a root or under a parent).  Its identity is the decimal
// counter string the model gave it: unique within that model and never
// reused, so a view that mirrors the model can key its widgets on it.
//
// `id` is stored with whatever quotes it was written with ("\"Base\"" keeps
// its double quotes); `rules` and `mapping` may hold several lines separated
// by newlines.  These are written to spec files verbatim.
#ifndef TAMBLIN_SPEC_SPECNODE_H
#define TAMBLIN_SPEC_SPECNODE_H

#include <memory>
#include <string>
#include <vector>

class SpecGraphModel;

class SpecNode {
 public:
  /// A node with no identity named "Name".
  SpecNode();
  /// A node with the given identity whose name (and label) is label.
  SpecNode(const std::string& identity, const std::string& label);
  ~SpecNode();
  SpecNode(const SpecNode&) = delete;
  SpecNode& operator=(const SpecNode&) = delete;

  const std::string& identity() const { return _identity; }
  /// The text shown for the node; always equal to name().
  const std::string& label() const { return _name; }
  const std::string& name() const { return _name; }
  const std::string& id() const { return _id; }
  const std::string& version() const { return _version; }
  int order() const { return _order; }
  bool required() const { return _required; }
  bool isDefault() const { return _default; }
  bool miniroot() const { return _miniroot; }
  bool patch() const { return _patch; }
  const std::string& rules() const { return _rules; }
  const std::string& mapping() const { return _mapping; }

  /// Where the node was read from: the file (an include's path for nodes
  /// read from an include) and the line of its name; "" and 0 for a node
  /// made in the program.  Problems found later point there.
  const std::string& sourceFile() const { return _sourceFile; }
  int sourceLine() const { return _sourceLine; }
  void setSource(const std::string& file, int line) {
    _sourceFile = file;
    _sourceLine = line;
  }

  /// Renames the node; the tags of the node and everything below change.
  void setName(const std::string& name);
  void setId(const std::string& id);
  void setVersion(const std::string& version);
  void setOrder(int order);
  void setRequired(bool on);
  void setDefault(bool on);
  void setMiniroot(bool on);
  void setPatch(bool on);
  void setRules(const std::string& rules);
  void setMapping(const std::string& mapping);

  /// The parent, or null for a product (or a node not yet attached).
  SpecNode* parent() const { return _parent; }
  /// Children in the order they were attached.
  int childCount() const { return static_cast<int>(_children.size()); }
  SpecNode* child(int i) const { return _children[i].get(); }
  /// 1 + the number of steps up to the root: 1 product, 2 image, 3 subsystem.
  int level() const;
  /// The dotted path of names from the root: product.image.subsys.
  std::string getTag() const;

 private:
  friend class SpecGraphModel;
  void fieldChanged(bool nameChanged);

  std::string _identity;
  std::string _name;
  std::string _id = "\"Description\"";
  std::string _version = "1";
  int _order = 9999;
  bool _required = false;
  bool _default = false;
  bool _miniroot = false;
  bool _patch = false;
  std::string _rules;
  std::string _mapping;
  std::string _sourceFile;
  int _sourceLine = 0;

  SpecGraphModel* _graph = nullptr;  // set when the model created the node
  SpecNode* _parent = nullptr;
  std::vector<std::unique_ptr<SpecNode>> _children;
};

#endif
