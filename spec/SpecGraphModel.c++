#include "spec/SpecGraphModel.h"

#include <sys/stat.h>

#include <cassert>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "build/DistDirCheck.h"
#include "idb/StringSet.h"
#include "spec/SpecReader.h"
#include "util/AtomicFile.h"
#include "util/BusyScope.h"
#include "util/Format.h"
#include "util/Reporter.h"
#include "util/Utils.h"

SpecGraphObserver::~SpecGraphObserver() = default;
void SpecGraphObserver::nodeAttached(SpecNode*) {}
void SpecGraphObserver::nodeRemoving(SpecNode*) {}
void SpecGraphObserver::nodeChanged(SpecNode*, bool) {}
void SpecGraphObserver::selectionChanged(SpecNode*) {}
void SpecGraphObserver::relayout() {}
void SpecGraphObserver::tagAdded(const std::string&) {}
void SpecGraphObserver::tagsChanged() {}
void SpecGraphObserver::refreshCreatePatchMenuAction() {}
void SpecGraphObserver::specFileNameChanged(const std::string&) {}

SpecGraphModel::SpecGraphModel(Reporter* reporter) : _reporter(reporter) {}

SpecGraphModel::~SpecGraphModel() {
  // Nodes are destroyed without notification: the view goes with the model.
  _observer = nullptr;
}

// ---- Structure -----------------------------------------------------------

std::unique_ptr<SpecNode> SpecGraphModel::add(const std::string& name) {
  ++_counter;
  auto node = std::make_unique<SpecNode>(std::to_string(_counter), name);
  node->_graph = this;
  return node;
}

SpecNode* SpecGraphModel::addRoot(std::unique_ptr<SpecNode> node) {
  return attach(nullptr, std::move(node));
}

SpecNode* SpecGraphModel::addChild(SpecNode* parent, std::unique_ptr<SpecNode> node) {
  assert(parent && parent->_graph == this && "SpecGraph.c++");
  return attach(parent, std::move(node));
}

SpecNode* SpecGraphModel::attach(SpecNode* parent, std::unique_ptr<SpecNode> owned) {
  assert(owned && !owned->_parent);
  SpecNode* node = owned.get();
  node->_graph = this;
  node->_parent = parent;
  if (parent)
    parent->_children.push_back(std::move(owned));
  else
    _roots.push_back(std::move(owned));
  indexSubtree(node);
  if (_observer) _observer->nodeAttached(node);
  return node;
}

void SpecGraphModel::indexSubtree(SpecNode* node) {
  if (!_indexValid) return;
  _identities.emplace(node->_identity, node);
  // A tag seen before may now belong to a node earlier in traversal order
  // (attached under an earlier product); let the next lookup sort it out.
  if (!_tagIndex.emplace(node->getTag(), node).second) _indexValid = false;
  for (auto& c : node->_children) indexSubtree(c.get());
}

void SpecGraphModel::remove(SpecNode* node) {
  assert(node && node->_graph == this);
  std::vector<std::unique_ptr<SpecNode>>& siblings =
      node->_parent ? node->_parent->_children : _roots;
  removeSubtree(node);
  // Searched from the end: removing everything goes from the last product.
  for (auto it = siblings.end(); it != siblings.begin();) {
    --it;
    if (it->get() == node) {
      siblings.erase(it);  // destroys the node
      break;
    }
  }
  _indexValid = false;
}

// Children go first, as the view expects, and the selection never points at
// a destroyed node.
void SpecGraphModel::removeSubtree(SpecNode* node) {
  std::vector<std::unique_ptr<SpecNode>> children;
  children.swap(node->_children);
  for (std::unique_ptr<SpecNode>& child : children) {
    removeSubtree(child.get());
    child.reset();
  }
  if (_selected == node) {
    _selected = nullptr;
    if (_observer) _observer->selectionChanged(nullptr);
  }
  if (_observer) _observer->nodeRemoving(node);
}

void SpecGraphModel::removeAll() {
  while (!_roots.empty()) remove(_roots.back().get());
}

std::vector<SpecNode*> SpecGraphModel::nodes() const {
  std::vector<SpecNode*> out;
  std::vector<SpecNode*> stack;
  for (auto it = _roots.rbegin(); it != _roots.rend(); ++it) stack.push_back(it->get());
  while (!stack.empty()) {
    SpecNode* n = stack.back();
    stack.pop_back();
    out.push_back(n);
    for (auto it = n->_children.rbegin(); it != n->_children.rend(); ++it)
      stack.push_back(it->get());
  }
  return out;
}

SpecNode* SpecGraphModel::findIdentity(const std::string& identity) const {
  if (!_indexValid) rebuildIndex();
  auto it = _identities.find(identity);
  return it == _identities.end() ? nullptr : it->second;
}

void SpecGraphModel::nodeChanged(SpecNode* node, bool nameChanged) {
  if (nameChanged) _indexValid = false;
  if (_observer) _observer->nodeChanged(node, nameChanged);
}

// ---- Queries -------------------------------------------------------------

std::unique_ptr<StringSet> SpecGraphModel::getTags() const {
  auto tags = std::make_unique<StringSet>("Tags in Spec Graph");
  for (SpecNode* n : nodes())
    if (n->level() >= 3) tags->add(n->getTag());
  return tags;
}

std::string SpecGraphModel::getProductName() const {
  return _roots.empty() ? std::string() : _roots.front()->_name;
}

std::unique_ptr<StringSet> SpecGraphModel::getOrdering(const SpecNode* image,
                                                       std::string* out) const {
  auto set = std::make_unique<StringSet>("Image ordering");
  std::string product;
  for (SpecNode* n : nodes()) {
    int level = n->level();
    if (level == 1) product = n->_name;
    if (level != 2) continue;
    char order[16];
    std::snprintf(order, sizeof order, "%04d", n->_order);
    std::string entry = std::string(order) + " " + product + "." + n->_name;
    set->add(entry);
    if (n == image && out) *out = entry;
  }
  set->sort();
  return set;
}

void SpecGraphModel::rebuildIndex() const {
  std::vector<SpecNode*> all = nodes();
  _tagIndex.clear();
  _identities.clear();
  _tagIndex.reserve(all.size());
  _identities.reserve(all.size());
  for (SpecNode* n : all) {
    _tagIndex.emplace(n->getTag(), n);
    _identities.emplace(n->_identity, n);
  }
  _indexValid = true;
}

SpecNode* SpecGraphModel::getNode(const std::string& tag) const {
  if (!_indexValid) rebuildIndex();
  auto it = _tagIndex.find(tag);
  return it == _tagIndex.end() ? nullptr : it->second;
}

bool SpecGraphModel::productExists(const std::string& name) const {
  for (auto& r : _roots)
    if (r->_name == name) return true;
  return false;
}

void SpecGraphModel::deleteProduct(const std::string& name) {
  for (std::size_t i = _roots.size(); i-- > 0;)
    if (_roots[i]->_name == name) remove(_roots[i].get());
  _changed = true;
}

bool SpecGraphModel::subsystemExists() const {
  for (auto& r : _roots)
    for (auto& image : r->_children)
      if (!image->_children.empty()) return true;
  return false;
}

// ---- Selection and edits from the view -------------------------------------

void SpecGraphModel::select(SpecNode* node) {
  assert(!node || node->_graph == this);
  _selected = node;
  if (_observer) _observer->selectionChanged(node);
}

void SpecGraphModel::relayout() {
  if (_observer) _observer->relayout();
}

// A new node for parent, inheriting its patch flag; fields are filled in
// before it is attached so that the view sees the finished node.
std::unique_ptr<SpecNode> SpecGraphModel::makeNode(const SpecNode* parent, const std::string& name,
                                                   const char* id) {
  std::unique_ptr<SpecNode> node = add(name);
  node->_id = id;
  if (parent && parent->_patch) node->_patch = true;
  return node;
}

SpecNode* SpecGraphModel::addUnderSelection() {
  BusyScope busy(_busy);
  SpecNode* parent = _selected;
  if (!parent) {
    SpecNode* product = addRoot(makeNode(nullptr, "my_product", "\"My Product\""));
    select(product);
    _changed = true;
    return product;
  }
  SpecNode* added = nullptr;
  switch (parent->level()) {
    case 1:
      added = addChild(parent, makeNode(parent, "my_image", "\"My Image\""));
      break;
    case 2: {
      std::unique_ptr<SpecNode> node = makeNode(parent, "my_subsys", "\"My Subsystem\"");
      node->_rules = "replaces self";
      added = addChild(parent, std::move(node));
      std::string tag = added->getTag();
      if (_observer) _observer->tagAdded(tag);
      added->setMapping(tag);
      break;
    }
    default:
      _reporter->bell();
      break;
  }
  if (added) {
    select(added);
    _changed = true;
  }
  if (_observer) _observer->refreshCreatePatchMenuAction();
  return added;
}

bool SpecGraphModel::deleteSelection() {
  SpecNode* node = _selected;
  if (!node) return false;
  if (node->_parent) select(node->_parent);
  remove(node);
  _changed = true;
  if (_observer) {
    _observer->tagsChanged();
    _observer->refreshCreatePatchMenuAction();
  }
  return true;
}

void SpecGraphModel::defaultGraph() {
  struct Row {
    const char* name;
    const char* id;
    int parent;  // index into this table, -1 for the product
  };
  static const Row kRows[] = {
      {"my_product", "\"My Product Description\"", -1},
      {"sw", "\"Software\"", 0},
      {"man", "\"Man Pages\"", 0},
      {"books", "\"Books\"", 0},
      {"base", "\"Base Software\"", 1},
      {"optional", "\"Optional Software\"", 1},
      {"manpages", "\"Man Pages\"", 2},
      {"relnotes", "\"Release Notes\"", 2},
      {"userguide", "\"User Guide\"", 3},
  };
  const int n = sizeof kRows / sizeof kRows[0];
  std::unique_ptr<SpecNode> made[n];
  SpecNode* nodes[n];
  for (int i = 0; i < n; ++i) {
    made[i] = add(kRows[i].name);
    made[i]->_id = kRows[i].id;
    if (i >= 4) made[i]->_rules = "replaces self";
  }
  for (int i = 0; i < n; ++i) {
    int p = kRows[i].parent;
    nodes[i] = p < 0 ? addRoot(std::move(made[i])) : addChild(nodes[p], std::move(made[i]));
  }
  relayout();
  select(nodes[0]);
  if (_observer) _observer->tagsChanged();
  for (int i = 4; i < n; ++i) nodes[i]->setMapping(nodes[i]->getTag());
  _changed = false;
}

std::string SpecGraphModel::createPatchSubsystem(const std::string& patchProduct,
                                                 const std::string& sourceTag) {
  std::string::size_type dot1 = sourceTag.find('.');
  std::string op = sourceTag.substr(0, dot1);
  std::string oi, os;
  if (dot1 != std::string::npos) {
    std::string::size_type dot2 = sourceTag.find('.', dot1 + 1);
    oi = sourceTag.substr(dot1 + 1, dot2 == std::string::npos ? dot2 : dot2 - dot1 - 1);
    if (dot2 != std::string::npos) os = sourceTag.substr(dot2 + 1);
  }

  if (!productExists(patchProduct)) {
    std::unique_ptr<SpecNode> node = makeNode(nullptr, patchProduct, "\"My Patch Product\"");
    node->_patch = true;
    SpecNode* product = addRoot(std::move(node));
    relayout();
    select(product);
    setSpecFileName("");
    _reporter->logMessage(format("Created patch product '%s'.", patchProduct.c_str()));
  }

  const SpecNode* sourceImage = getNode(op + "." + oi);
  std::string imageName = op + "_" + oi;
  std::string imageTag = patchProduct + "." + imageName;
  SpecNode* image = getNode(imageTag);
  if (!image) {
    SpecNode* product = nullptr;
    for (auto& r : _roots)
      if (r->_name == patchProduct) {
        product = r.get();
        break;
      }
    std::unique_ptr<SpecNode> node = makeNode(product, imageName, "\"My Patch Image\"");
    node->_patch = true;
    image = addChild(product, std::move(node));
    relayout();
    select(image);
  }

  std::string subsysTag = imageTag + "." + os;
  if (!getNode(subsysTag)) {
    std::unique_ptr<SpecNode> node = makeNode(image, os, "\"My Patch Subsystem\"");
    std::string follows = "follows " + op + "." + oi + "." + os;
    if (sourceImage)
      follows += " " + sourceImage->_version + " " + sourceImage->_version;
    else
      follows += " 0 maxint";
    node->_rules = follows;
    node->_patch = true;
    SpecNode* subsys = addChild(image, std::move(node));
    relayout();
    if (_observer) _observer->tagAdded(subsysTag);
    subsys->setMapping(subsysTag);
    select(subsys);
  }
  _changed = true;
  return subsysTag;
}

// ---- State ---------------------------------------------------------------

void SpecGraphModel::setSpecFileName(const std::string& path) {
  _specFileName = path;
  if (_observer) _observer->specFileNameChanged(path);
}

bool SpecGraphModel::abandonChanges() {
  if (!_changed) return true;
  if (_specFileName.empty())
    return _reporter->question(
        "There have been changes since you last saved.\nAbandon changes to spec file?\n");
  return _reporter->question(
      format("There have been changes since you last saved.\nAbandon changes to spec file "
             "'%s'?\n",
             _specFileName.c_str()));
}

// ---- Writing -------------------------------------------------------------

void SpecGraphModel::saveTree(std::FILE* fp, const SpecNode* node) const {
  int level = node->level();
  // Checked in every build: the level picks the layout below.
  if (!((level >= 1) && (level <= 3))) {
    std::fprintf(stderr, "SpecGraph.c++: assertion failed: (level >= 1) && (level <= 3)\n");
    std::abort();
  }
  const char* name = node->label().c_str();
  const char* id = node->_id.c_str();
  switch (level) {
    case 1:
      std::fprintf(fp, "product %s\n    id %s\n", name, id);
      break;
    case 2:
      std::fprintf(fp, "    image %s\n        id %s\n        version %s\n        order %d\n", name,
                   id, node->_version.c_str(), node->_order);
      break;
    default:
      std::fprintf(fp, "        subsys %s%s%s%s%s\n            id %s\n", name,
                   node->_required ? " required" : "", node->_default ? " default" : "",
                   node->_miniroot ? " miniroot" : "", node->_patch ? " patch" : "", id);
      saveRules(fp, node->_rules);
      saveExp(fp, node->_mapping);
      break;
  }
  for (auto& c : node->_children) saveTree(fp, c.get());
  static const char* const kEnd[] = {"endproduct\n", "    endimage\n", "        endsubsys\n"};
  std::fputs(kEnd[level - 1], fp);
}

namespace {

// Writes text line by line with a prefix before each non-empty line; empty
// lines vanish and every written line ends in a newline.
void saveLines(std::FILE* fp, const std::string& text, const char* first, const char* later) {
  bool atStart = true;
  const char* prefix = first;
  for (char c : text) {
    if (c == '\n') {
      if (!atStart) {
        std::fputc('\n', fp);
        atStart = true;
      }
      continue;
    }
    if (atStart) {
      std::fputs(prefix, fp);
      prefix = later;
      atStart = false;
    }
    std::fputc(c, fp);
  }
  if (!atStart) std::fputc('\n', fp);
}

}  // namespace

void SpecGraphModel::saveRules(std::FILE* fp, const std::string& text) {
  saveLines(fp, text, "            ", "            ");
}

void SpecGraphModel::saveExp(std::FILE* fp, const std::string& text) {
  saveLines(fp, text, "            exp ", "                ");
}

void SpecGraphModel::saveSet(std::FILE* fp, const StringSet& set, const std::string& prefix,
                             const std::string& suffix) {
  for (int i = 0; i < set.count(); ++i)
    std::fprintf(fp, "%12s%s%s%s\n", " ", prefix.c_str(), set[i], suffix.c_str());
}

void SpecGraphModel::writeAll(std::FILE* fp) const {
  for (auto& r : _roots) saveTree(fp, r.get());
}

void SpecGraphModel::print() const { writeAll(stderr); }

// ---- Spec file commands ----------------------------------------------------

Outcome SpecGraphModel::checkRegularFile(const std::string& path) {
  struct stat st;
  if (::stat(path.c_str(), &st) == 0 && !S_ISREG(st.st_mode)) return refuseNotRegular(path);
  return Outcome::success();
}

Outcome SpecGraphModel::refuseNotRegular(const std::string& path) {
  Outcome refused = Outcome::error(format("'%s' is not a regular file.\nTry again.", path.c_str()));
  _reporter->warning(refused.message());
  return refused;
}

Outcome SpecGraphModel::open(const std::string& path) {
  if (Outcome refused = checkRegularFile(path); !refused.ok()) return refused;
  BusyScope busy(_busy);
  removeAll();
  _partReads.clear();
  Outcome status = append(path);
  if (status.ok()) setSpecFileName(path);
  _changed = false;
  return status;
}

Outcome SpecGraphModel::read(const std::string& path) {
  if (Outcome refused = checkRegularFile(path); !refused.ok()) return refused;
  BusyScope busy(_busy);
  Outcome status = append(path);
  _changed = true;
  return status;
}

Outcome SpecGraphModel::append(const std::string& path) {
  _lastRead = SpecReadReport();
  if (path.empty()) {
    defaultGraph();
    _lastRead.entered = true;
    return Outcome::success();
  }
  Outcome status = readSpecFile(*this, *_reporter, path, &_lastRead);
  relayout();
  if (_observer) _observer->tagsChanged();
  if (status.ok() && _lastRead.incomplete()) noteReadInPart(path);
  return status;
}

// Says how much of the file the hierarchy holds, and remembers the file so
// that a save over it asks first.
void SpecGraphModel::noteReadInPart(const std::string& path) {
  const SpecReadReport& r = _lastRead;
  if (r.syntaxLine > 0) {
    _reporter->logMessage(format("Read %s up to line %d; the rest was skipped.", path.c_str(),
                                 r.syntaxLine));
  } else {
    std::string skipped;
    if (r.errors > 0) skipped = "the text in error";
    if (r.includeFailures > 0)
      skipped += std::string(skipped.empty() ? "" : " and ") + "the includes that failed";
    _reporter->logMessage(format("Read %s without %s.", path.c_str(), skipped.c_str()));
  }
  _reporter->showMessages();
  PartRead part;
  part.path = path;
  struct stat st;
  if (::stat(path.c_str(), &st) == 0) {
    part.dev = st.st_dev;
    part.ino = st.st_ino;
  }
  _partReads.push_back(part);
}

bool SpecGraphModel::readInPart(const std::string& path) const {
  for (const PartRead& part : _partReads)
    if (isFile(part, path)) return true;
  return false;
}

// By name, or by device and inode (another name, a link to it).
bool SpecGraphModel::isFile(const PartRead& part, const std::string& path) {
  if (part.path == path) return true;
  struct stat st;
  return part.ino != 0 && ::stat(path.c_str(), &st) == 0 && part.dev == st.st_dev &&
         part.ino == st.st_ino;
}

std::string SpecGraphModel::chooseSaveName() {
  std::string chosen;
  if (!_chooser || !_chooser("Save Spec", "*spec", getProductName() + ".spec", &chosen))
    return std::string();
  return trimCurrent(chosen);
}

Outcome SpecGraphModel::save(const char* path) {
  std::string name = path ? path : _specFileName;
  if (name.empty()) name = chooseSaveName();
  if (name.empty()) return Outcome::error("");

  if (Outcome refused = checkDistDir(DistDirUse::Save, name, _distDir ? _distDir() : std::string());
      !refused.ok()) {
    _reporter->error(refused.message());
    return refused;
  }
  if (Outcome regular = checkRegularFile(name); !regular.ok()) return regular;
  if (readInPart(name) &&
      !_reporter->question(format(
          "'%s' was read only in part: the message log says where reading stopped.\n"
          "Saving over it keeps only what was read; the rest of the file would be lost.\n\n"
          "Save anyway?",
          name.c_str())))
    return Outcome::error("");

  BusyScope busy(_busy);
  AtomicFile file(name);
  Outcome status = file.open();
  // Became something else since the check above.
  if (status.code() == AtomicFile::kNotRegular) return refuseNotRegular(name);
  Outcome failure;
  if (status.ok()) {
    writeAll(file.stream());
    // The first write error is the one that names the cause (a full disk).
    status = file.commit();
    if (!status.ok())
      failure = Outcome::error(
          format("Couldn't write spec '%s' (%s).", name.c_str(), status.message().c_str()),
          status.code());
  } else {
    failure = Outcome::error(
        format("Couldn't open spec '%s' (%s).", name.c_str(), status.message().c_str()),
        status.code());
  }
  if (!failure.ok()) {
    _reporter->logMessage(failure.message());
    _reporter->showMessages();
    return failure;
  }
  _changed = false;
  // The file now holds the hierarchy: nothing of it is left to lose.
  for (auto it = _partReads.begin(); it != _partReads.end();)
    it = isFile(*it, name) ? _partReads.erase(it) : it + 1;
  setSpecFileName(name);
  _reporter->logMessage(format("Saved spec '%s'.", name.c_str()));
  return Outcome::success();
}
