#include "app/PanelWiring.h"

#include <string>

#include "build/Generate.h"
#include "filelist/FileListAdd.h"
#include "filelist/FileListAttrs.h"
#include "filelist/FileListModel.h"
#include "filelist/FileListPerms.h"
#include "filelist/FileListTags.h"
#include "spec/SpecDetail.h"
#include "spec/SpecGraph.h"
#include "spec/SpecGraphModel.h"

void PanelWiring::connect() const {
  SpecGraphModel& graph = specGraph.model();

  // Tag Files: the tags panel assigns through the file list and offers the
  // hierarchy's tags; the file list tells it when the idb's tags changed
  // and which entry was double-clicked.
  tags.connect(fileList, graph);
  fileList.setTagsPartner(&tags);
  // The file list proposes idb names after the product and builds patches
  // in the hierarchy.
  fileList.setSpecGraphPartner(&specGraph);

  specGraph.connect(specDetail, tags);
  specDetail.connect(specGraph, fileList, tags);  // a renamed node retags the idb
  graph.defaultGraph();

  add.setBrowsingDirectory("");
  connectFilePanels(fileList);
  perms.setSourceRoot(fileList.sourceRoot());
  perms.setDestRoot(fileList.destRoot() ? *fileList.destRoot() : std::string());
  attrs.hideInternalNames();

  // Build Product: reads the roots, the idb and the spec, and keeps the
  // text files out of its distribution directory.
  build.connect(fileList, graph);
  fileList.setBuildPartner(&build);
  Generate* buildPanel = &build;
  graph.setDistDirSource([buildPanel] { return buildPanel->getDistDir(); });
  build.setSourceRoot(fileList.sourceRoot());
  build.setDestRoot(fileList.destRoot() ? *fileList.destRoot() : std::string());
  build.setSpecFileLabel(specGraph.specFileLabel());
}

void PanelWiring::connectFilePanels(FileListModel& model) const {
  model.setAddFilesPartner(&add);
  model.setPermsPartner(&perms);
  model.setAttrsPartner(&attrs);
  add.connect(model, reporter);
  perms.connect(model, reporter);
  attrs.connect(model, reporter);
  add.newSourceRootDirectory(model.sourceRoot());
}
