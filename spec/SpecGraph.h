// SpecGraph: the "Create Product Hierarchy" panel.  It owns the product
// hierarchy (a SpecGraphModel) and mirrors it into a graph of push-button
// nodes: nodes appear, vanish, are renamed and selected as the model says.
// Add and Delete edit the model; a click on a node selects it in the model,
// which then feeds the node detail panel and the tags panel.
//
// It is also the spec document of the main window's File menus (open,
// append, save, save as, new) and the file list's view of the hierarchy.
// The window it reports to is given when it is made; the detail and tags
// panels, made after it, are connected once with connect().
#ifndef TAMBLIN_SPEC_SPECGRAPH_H
#define TAMBLIN_SPEC_SPECGRAPH_H

#include <memory>
#include <string>

#include "app/ui/SpecGraphUI.h"
#include "filelist/SpecGraphPartner.h"
#include "spec/SpecDocument.h"
#include "spec/SpecGraphModel.h"
#include "spec/SpecGraphWindow.h"

class FileListTags;
class Reporter;
class SpecDetail;
class YrGraph;
struct OvGraphCallbackStruct;

class SpecGraph : public SpecGraphUI,
                  public SpecDocument,
                  public SpecGraphPartner,
                  private SpecGraphObserver {
 public:
  /// reporter and window must outlive the panel.
  SpecGraph(const char* name, Widget parent, Reporter& reporter, SpecGraphWindow& window);
  ~SpecGraph() override;
  const char* className() const override { return "SpecGraph"; }

  SpecGraphModel& model() { return *_model; }
  YrGraph& graph() { return *_graph; }
  /// The panels that show the selected node and offer its tag; both must
  /// outlive this one.
  void connect(SpecDetail& detail, FileListTags& tags) {
    _detail = &detail;
    _tagsPanel = &tags;
  }

  /// The node shown by a node widget (null for any other widget).
  SpecNode* nodeOf(Widget w) const;
  /// The widget showing node (null when it has none).
  Widget widgetOf(const SpecNode* node) const;
  /// The text of the spec file label.
  std::string specFileLabel() const;
  Widget addButton() const { return _addPushButton; }
  Widget deleteButton() const { return _deletePushButton; }

  // The main window's spec file commands.
  int abandonChanges() override;
  int open(const char* fileName) override;
  int showOpenBrowser() override;
  int showReadBrowser() override;
  int showSaveBrowser() override;
  int save(const char* fileName) override;
  std::string getProductName() override;
  bool subsystemExists() override;

  // What the file list asks of the hierarchy.
  std::string createPatchSubsystem(const std::string& patchName,
                                   const std::string& sourceTag) override;
  void deleteProduct(const std::string& name) override;

 protected:
  void addPushButton(Widget, XtPointer callData) override;
  void deletePushButton(Widget, XtPointer callData) override;
  /// The graph widget's callbacks.
  void selectNode(OvGraphCallbackStruct* cb);
  void deselect();

 private:
  static void selectNodeCallback(Widget, XtPointer clientData, XtPointer callData);
  static void deselectCallback(Widget, XtPointer clientData, XtPointer callData);
  static bool chooseFile(const std::string& title, const std::string& filter,
                         const std::string& proposed, std::string* chosen);

  // What the model reports, mirrored into the widgets and the other panels.
  void nodeAttached(SpecNode* node) override;
  void nodeRemoving(SpecNode* node) override;
  void nodeChanged(SpecNode* node, bool nameChanged) override;
  void selectionChanged(SpecNode* node) override;
  void relayout() override;
  void tagAdded(const std::string& tag) override;
  void tagsChanged() override;
  void refreshCreatePatchMenuAction() override;
  void specFileNameChanged(const std::string& name) override;

  Reporter& _reporter;
  SpecGraphWindow& _window;
  std::unique_ptr<SpecGraphModel> _model;
  std::unique_ptr<YrGraph> _graph;
  SpecDetail* _detail = nullptr;
  FileListTags* _tagsPanel = nullptr;
};

#endif
