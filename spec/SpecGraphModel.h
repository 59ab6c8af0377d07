// SpecGraphModel: the product hierarchy (products > images > subsystems) with
// its queries, edits and spec file commands, independent of any widget.
//
// The model owns every attached node.  Roots are products; traversal order is
// depth first: roots in the order they were attached, each node before its
// children, children in the order they were attached.  A view mirrors the
// model through a SpecGraphObserver; everything a view needs (identities,
// child order, selection, the changed flag) lives here.
//
// Messages for the user go through the Reporter given at construction; its
// texts are fixed and tests compare them exactly.
#ifndef TAMBLIN_SPEC_SPECGRAPHMODEL_H
#define TAMBLIN_SPEC_SPECGRAPHMODEL_H

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "idb/StringSet.h"
#include "spec/SpecNode.h"
#include "util/Outcome.h"

class BusyIndicator;
class Reporter;


/// What a view of the model hears about.  Every method has an empty default.
class SpecGraphObserver {
 public:
  virtual ~SpecGraphObserver();
  /// node (with anything below it) is now in the hierarchy.
  virtual void nodeAttached(SpecNode* node);
  /// node is about to be destroyed; its children have already gone.
  virtual void nodeRemoving(SpecNode* node);
  /// A field of node changed (nameChanged: its label and tags too).
  virtual void nodeChanged(SpecNode* node, bool nameChanged);
  /// The selected node is now node (null: nothing selected).
  virtual void selectionChanged(SpecNode* node);
  /// The hierarchy should be laid out again.
  virtual void relayout();
  /// A new subsystem tag exists (the tags panel adds it).
  virtual void tagAdded(const std::string& tag);
  /// The set of tags may have changed in any way (the tags panel re-reads it).
  virtual void tagsChanged();
  /// Whether a patch can be created may have changed.
  virtual void refreshCreatePatchMenuAction();
  /// The spec file name shown to the user changed.
  virtual void specFileNameChanged(const std::string& name);
};

/// What the last read of a spec file met.  A file that could be entered is
/// read as far as possible even when errors are reported.
struct SpecReadReport {
  bool entered = false;     // the outermost file could be read at all
  int errors = 0;           // syntax and lexical errors reported
  int includeFailures = 0;  // includes that could not be entered
  int includeCycles = 0;    // includes not followed because they close a cycle
  int syntaxLine = 0;       // line of the outermost file where a syntax error ended the read
  std::string firstError;   // the first error's message ("syntax error") ...
  std::string firstErrorAt; // ... and the text of the token it was met at
  int prereqCarry = 0;      // prereq words of an unfinished triple at the end
  std::string lastMessage;  // the last line the read logged (why a file was not entered)
  bool clean() const {
    return entered && errors == 0 && includeFailures == 0 && includeCycles == 0;
  }
  /// Whether some text of the files was not taken into the hierarchy, so
  /// that saving over the file would lose it.  (A cycle loses nothing: the
  /// file it would enter again has been read.)
  bool incomplete() const { return entered && (errors > 0 || includeFailures > 0); }
};

class SpecGraphModel {
 public:
  /// Asked for a file name: title, filter pattern and proposed selection;
  /// returns false when cancelled, else stores the chosen path.
  using FileChooser = std::function<bool(const std::string& title, const std::string& filter,
                                         const std::string& proposed, std::string* chosen)>;

  /// reporter must outlive the model.
  explicit SpecGraphModel(Reporter* reporter);
  ~SpecGraphModel();
  SpecGraphModel(const SpecGraphModel&) = delete;
  SpecGraphModel& operator=(const SpecGraphModel&) = delete;

  void setObserver(SpecGraphObserver* observer) { _observer = observer; }
  /// Busy during long operations (null: not shown).
  void setBusyIndicator(BusyIndicator* indicator) { _busy = indicator; }
  void setReporter(Reporter* reporter) { _reporter = reporter; }
  Reporter* reporter() const { return _reporter; }
  /// Where save-as dialogs come from; without one a save needing a name fails.
  void setFileChooser(FileChooser chooser) { _chooser = std::move(chooser); }
  /// The build panel's distribution directory ("" when not known).
  void setDistDirSource(std::function<std::string()> source) { _distDir = std::move(source); }

  // ---- Structure -------------------------------------------------------
  /// A new, unattached node named name with the next identity.
  std::unique_ptr<SpecNode> add(const std::string& name);
  /// Attaches node as the last product; returns it.
  SpecNode* addRoot(std::unique_ptr<SpecNode> node);
  /// Attaches node as the last child of parent (which must be attached).
  SpecNode* addChild(SpecNode* parent, std::unique_ptr<SpecNode> node);
  /// Destroys node and everything below it, children first.
  void remove(SpecNode* node);
  /// Removes every product.
  void removeAll();

  int rootCount() const { return static_cast<int>(_roots.size()); }
  SpecNode* root(int i) const { return _roots[i].get(); }
  /// Every attached node in traversal order.
  std::vector<SpecNode*> nodes() const;
  /// The node with the given identity, or null.
  SpecNode* findIdentity(const std::string& identity) const;

  // ---- Queries ---------------------------------------------------------
  int getLevel(const SpecNode* node) const { return node->level(); }
  /// Tags of every subsystem in traversal order (set "Tags in Spec Graph").
  std::unique_ptr<StringSet> getTags() const;
  /// Name of the first product, "" when there is none.
  std::string getProductName() const;
  /// One "%04d %s.%s" entry (order, product, image) per image, sorted (set
  /// "Image ordering"); image's own entry is also stored in *out.
  std::unique_ptr<StringSet> getOrdering(const SpecNode* image, std::string* out) const;
  /// The first node in traversal order whose tag is tag, or null.
  SpecNode* getNode(const std::string& tag) const;
  bool productExists(const std::string& name) const;
  /// Removes every product called name.
  void deleteProduct(const std::string& name);
  bool subsystemExists() const;

  // ---- Selection and edits made from the hierarchy view ------------------
  SpecNode* selected() const { return _selected; }
  /// Selects node (null: nothing).
  void select(SpecNode* node);
  void relayout();
  /// Adds a default-named child under the selected node (a product when
  /// nothing is selected) and selects it.  Under a subsystem nothing is
  /// added and the bell rings; returns null then.
  SpecNode* addUnderSelection();
  /// Deletes the selected node and everything below it; its parent, if any,
  /// becomes selected.  Returns false when nothing was selected.
  bool deleteSelection();
  /// Replaces nothing: adds the default hierarchy and clears changed.
  void defaultGraph();
  /// Creates what is missing of patch product patchProduct for the
  /// subsystem sourceTag (product.image.subsys); returns the tag of the
  /// patch subsystem.
  std::string createPatchSubsystem(const std::string& patchProduct, const std::string& sourceTag);

  // ---- State -----------------------------------------------------------
  bool changed() const { return _changed; }
  void setChanged(bool on) { _changed = on; }
  /// The last identity handed out; identities are never reused.
  int nodeCounter() const { return _counter; }
  const std::string& specFileName() const { return _specFileName; }
  void setSpecFileName(const std::string& path);
  /// True when nothing changed or the user agrees to lose the changes.
  bool abandonChanges();

  // ---- Spec files ------------------------------------------------------
  /// Writes node and its subtree in spec file form.
  void saveTree(std::FILE* fp, const SpecNode* node) const;
  /// Writes text, 12 blanks before each non-empty line.
  static void saveRules(std::FILE* fp, const std::string& text);
  /// Writes text as one exp item: "exp " before the first line, 16 blanks
  /// before the others.
  static void saveExp(std::FILE* fp, const std::string& text);
  /// Writes each string of set as a line: 12 blanks, prefix, string, suffix.
  static void saveSet(std::FILE* fp, const StringSet& set, const std::string& prefix,
                      const std::string& suffix);
  /// Writes every product in traversal order.
  void writeAll(std::FILE* fp) const;
  /// Writes every product to standard error.
  void print() const;

  /// Replaces the hierarchy with the file's (an empty path: the default one).
  /// Fails with the message the user was given when the file is not a
  /// regular file or cannot be read at all; a file read with errors is
  /// read (lastReadReport says what was skipped).
  Outcome open(const std::string& path);
  /// Adds the file's products after the present ones; fails as open does.
  Outcome read(const std::string& path);
  /// Parses path into the hierarchy; "" builds the default hierarchy.
  Outcome append(const std::string& path);
  /// Writes the spec file: to path, or to the stored name when path is
  /// null, asking for a name when there is none.  A file that was opened or
  /// appended only in part (its read met errors) is saved over only after
  /// the user agreed to lose the rest of it.  Fails with the message the
  /// user was given, or an empty one when no file was chosen or the user
  /// declined.
  Outcome save(const char* path);
  const SpecReadReport& lastReadReport() const { return _lastRead; }
  /// Whether path is a file that was read only in part into the hierarchy.
  bool readInPart(const std::string& path) const;

 private:
  friend class SpecNode;
  void nodeChanged(SpecNode* node, bool nameChanged);
  SpecNode* attach(SpecNode* parent, std::unique_ptr<SpecNode> node);
  void removeSubtree(SpecNode* node);
  void indexSubtree(SpecNode* node);
  void rebuildIndex() const;
  /// Warns when path exists and is not a regular file; that failure.
  Outcome checkRegularFile(const std::string& path);
  Outcome refuseNotRegular(const std::string& path);
  std::unique_ptr<SpecNode> makeNode(const SpecNode* parent, const std::string& name,
                                     const char* id);
  std::string chooseSaveName();
  void noteReadInPart(const std::string& path);

  // A file read only in part: its name and, to know it under any name, its
  // device and inode at the time.
  struct PartRead {
    std::string path;
    unsigned long long dev = 0, ino = 0;
  };
  static bool isFile(const PartRead& part, const std::string& path);

  Reporter* _reporter;
  SpecGraphObserver* _observer = nullptr;
  BusyIndicator* _busy = nullptr;
  FileChooser _chooser;
  std::function<std::string()> _distDir;

  std::vector<std::unique_ptr<SpecNode>> _roots;
  SpecNode* _selected = nullptr;
  int _counter = 0;
  bool _changed = false;
  std::string _specFileName;
  SpecReadReport _lastRead;
  std::vector<PartRead> _partReads;

  // Tag -> first node in traversal order with that tag, and identity ->
  // node.  Built by the first lookup (reading a file needs none); once built,
  // attaching nodes with new tags updates them in place, while renames,
  // removals and duplicate tags mark them stale for the next lookup.
  mutable std::unordered_map<std::string, SpecNode*> _tagIndex;
  mutable std::unordered_map<std::string, SpecNode*> _identities;
  mutable bool _indexValid = false;
};

#endif
