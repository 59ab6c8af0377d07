#include "spec/SpecGraph.h"

#include <Xm/Xm.h>

#include <cassert>

#include "filelist/FileListTags.h"
#include "ov/OvGraph.h"
#include "spec/SpecDetail.h"
#include "util/Reporter.h"
#include "util/Utils.h"
#include "yr/YrBusyIndicator.h"
#include "yr/YrFileSelectionDialog.h"
#include "yr/YrGraph.h"

SpecGraph::SpecGraph(const char* name, Widget parent, Reporter& reporter,
                     SpecGraphWindow& window)
    : SpecGraphUI(name, parent), _reporter(reporter), _window(window) {
  _model = std::make_unique<SpecGraphModel>(&reporter);
  _graph = std::make_unique<YrGraph>("graph", _form);
  XtAddCallback(_graph->graphWidget(), OvNselectNodeCallback, &SpecGraph::selectNodeCallback,
                this);
  XtAddCallback(_graph->graphWidget(), OvNdeselectCallback, &SpecGraph::deselectCallback, this);
  _model->setObserver(this);
  _model->setBusyIndicator(YrBusyIndicator::application());
  _model->setFileChooser(&SpecGraph::chooseFile);
  specFileNameChanged("");
}

SpecGraph::~SpecGraph() {
  // The widgets go with the panel; the model must not report into them.
  _model->setObserver(nullptr);
  _model.reset();
  _graph.reset();
}

SpecNode* SpecGraph::nodeOf(Widget w) const {
  return static_cast<SpecNode*>(YrNode::userDataOf(w));
}

Widget SpecGraph::widgetOf(const SpecNode* node) const {
  YrNode* n = node ? _graph->find(node->identity()) : nullptr;
  return n ? n->baseWidget() : nullptr;
}

std::string SpecGraph::specFileLabel() const {
  XmString s = nullptr;
  XtVaGetValues(_label, XmNlabelString, &s, nullptr);
  std::string out;
  if (char* text = static_cast<char*>(
          XmStringUnparse(s, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL))) {
    out = text;
    XtFree(text);
  }
  XmStringFree(s);
  return out;
}

// ---- Add, Delete and selection -----------------------------------------------

void SpecGraph::addPushButton(Widget, XtPointer) {
  // The model's selection is the graph's; both are single.
  assert(_graph->selectedCount() <= 1 && "total == 1");
  _model->addUnderSelection();
}

void SpecGraph::deletePushButton(Widget, XtPointer) {
  if (_graph->selectedCount() != 1) return;
  _model->deleteSelection();
}

void SpecGraph::selectNode(OvGraphCallbackStruct* cb) {
  assert(cb->num_selected_widgets <= 1 && "cb->num_selected_widgets <= 1");
  if (cb->num_selected_widgets < 1) return;
  SpecNode* node = nodeOf(cb->selected_widgets[0]);
  if (node) _model->select(node);
}

void SpecGraph::deselect() { _model->select(nullptr); }

void SpecGraph::selectNodeCallback(Widget, XtPointer clientData, XtPointer callData) {
  static_cast<SpecGraph*>(clientData)->selectNode(static_cast<OvGraphCallbackStruct*>(callData));
}

void SpecGraph::deselectCallback(Widget, XtPointer clientData, XtPointer) {
  static_cast<SpecGraph*>(clientData)->deselect();
}

// ---- Mirroring the model -------------------------------------------------------

void SpecGraph::nodeAttached(SpecNode* node) {
  if (_graph->find(node->identity())) return;
  YrNode* parent = node->parent() ? _graph->find(node->parent()->identity()) : nullptr;
  _graph->addNode(node->identity(), node->name(), node->label(), parent, node);
  for (int i = 0; i < node->childCount(); ++i) nodeAttached(node->child(i));
}

void SpecGraph::nodeRemoving(SpecNode* node) { _graph->removeNode(node->identity()); }

void SpecGraph::nodeChanged(SpecNode* node, bool nameChanged) {
  if (!nameChanged) return;
  if (YrNode* n = _graph->find(node->identity())) n->setLabel(node->label());
}

void SpecGraph::selectionChanged(SpecNode* node) {
  _graph->select(node ? _graph->find(node->identity()) : nullptr);
  if (!node) {
    XtSetSensitive(_addPushButton, True);
    XtSetSensitive(_deletePushButton, False);
    if (_detail) _detail->setCurrent(nullptr);
    return;
  }
  if (_detail) _detail->setCurrent(node);
  bool subsystem = _model->getLevel(node) == 3;
  // Subsystems have no children.
  XtSetSensitive(_addPushButton, !subsystem);
  if (subsystem && _tagsPanel) _tagsPanel->setCurrent(node->getTag());
  XtSetSensitive(_deletePushButton, True);
}

void SpecGraph::relayout() { _graph->doLayout(); }

void SpecGraph::tagAdded(const std::string& tag) {
  if (_tagsPanel) _tagsPanel->add(tag);
}

void SpecGraph::tagsChanged() {
  if (_tagsPanel) _tagsPanel->refresh();
}

void SpecGraph::refreshCreatePatchMenuAction() {
  _window.refreshCreatePatchMenuAction();
}

void SpecGraph::specFileNameChanged(const std::string& name) {
  std::string text = "Spec File:  " + name;
  XmString s = XmStringCreateLocalized(const_cast<char*>(text.c_str()));
  XtVaSetValues(_label, XmNlabelString, s, nullptr);
  XmStringFree(s);
  _window.specFileLabelChanged(text);
}

// ---- Spec file commands ---------------------------------------------------------

bool SpecGraph::chooseFile(const std::string& title, const std::string& filter,
                           const std::string& proposed, std::string* chosen) {
  return getTheFileSelectionDialog()->postAndWait(title.c_str(), filter.c_str(),
                                                  proposed.c_str(), chosen) == YrDialogManager::Ok;
}

int SpecGraph::abandonChanges() { return _model->abandonChanges(); }

int SpecGraph::open(const char* fileName) {
  return _model->open(fileName ? fileName : "").ok() ? 1 : 0;
}

int SpecGraph::showOpenBrowser() {
  if (!_model->abandonChanges()) return 0;
  std::string chosen;
  if (!chooseFile("Open Spec", "*spec", "", &chosen)) return 0;
  std::string name = trimCurrent(chosen);
  if (!_model->open(name).ok()) return 0;
  _reporter.logMessage("Opened spec '" + name + "'.");
  return 1;
}

int SpecGraph::showReadBrowser() {
  std::string chosen;
  if (!chooseFile("Append Spec", "*spec", "", &chosen)) return 0;
  std::string name = trimCurrent(chosen);
  if (!_model->read(name).ok()) return 0;
  _reporter.logMessage("Appended spec '" + name + "'.");
  return 1;
}

int SpecGraph::showSaveBrowser() {
  std::string chosen;
  if (!chooseFile("Save Spec", "*spec", _model->getProductName() + ".spec", &chosen)) return 0;
  return _model->save(chosen.c_str()).ok() ? 1 : 0;
}

int SpecGraph::save(const char* fileName) { return _model->save(fileName).ok() ? 1 : 0; }

std::string SpecGraph::getProductName() { return _model->getProductName(); }

bool SpecGraph::subsystemExists() { return _model->subsystemExists(); }

std::string SpecGraph::createPatchSubsystem(const std::string& patchName,
                                            const std::string& sourceTag) {
  return _model->createPatchSubsystem(patchName, sourceTag);
}

void SpecGraph::deleteProduct(const std::string& name) { _model->deleteProduct(name); }
