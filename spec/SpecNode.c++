#include "spec/SpecNode.h"

#include "spec/SpecGraphModel.h"

SpecNode::SpecNode() : _name("Name") {}

SpecNode::SpecNode(const std::string& identity, const std::string& label)
    : _identity(identity), _name(label) {}

SpecNode::~SpecNode() = default;

// Every edit goes through here so that the model's tag index and its
// observers hear of it.
void SpecNode::fieldChanged(bool nameChanged) {
  if (_graph) _graph->nodeChanged(this, nameChanged);
}

void SpecNode::setName(const std::string& name) {
  _name = name;
  fieldChanged(true);
}

void SpecNode::setId(const std::string& id) {
  _id = id;
  fieldChanged(false);
}

void SpecNode::setVersion(const std::string& version) {
  _version = version;
  fieldChanged(false);
}

void SpecNode::setOrder(int order) {
  _order = order;
  fieldChanged(false);
}

void SpecNode::setRequired(bool on) {
  _required = on;
  fieldChanged(false);
}

void SpecNode::setDefault(bool on) {
  _default = on;
  fieldChanged(false);
}

void SpecNode::setMiniroot(bool on) {
  _miniroot = on;
  fieldChanged(false);
}

void SpecNode::setPatch(bool on) {
  _patch = on;
  fieldChanged(false);
}

void SpecNode::setRules(const std::string& rules) {
  _rules = rules;
  fieldChanged(false);
}

void SpecNode::setMapping(const std::string& mapping) {
  _mapping = mapping;
  fieldChanged(false);
}

int SpecNode::level() const {
  int level = 1;
  for (const SpecNode* n = _parent; n; n = n->_parent) ++level;
  return level;
}

std::string SpecNode::getTag() const {
  // Tags are built for every node of large hierarchies: size once, copy once.
  std::size_t size = 0;
  for (const SpecNode* n = this; n; n = n->_parent) size += n->_name.size() + 1;
  std::string tag(size - 1, '.');
  std::size_t end = tag.size();
  for (const SpecNode* n = this; n; n = n->_parent) {
    end -= n->_name.size();
    tag.replace(end, n->_name.size(), n->_name);
    if (end > 0) --end;  // the point before this name
  }
  return tag;
}
