// HierarchyTestBench: the fixture of the hierarchy panel tests: the
// product hierarchy, node detail and tags panels with a file list model,
// connected as the view connects them, showing the default hierarchy.
// Include after <gtest/gtest.h>.
#ifndef TAMBLIN_SPEC_HIERARCHYTESTBENCH_H
#define TAMBLIN_SPEC_HIERARCHYTESTBENCH_H

#include <Xm/Form.h>
#include <Xm/PushB.h>
#include <Xm/Xm.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "filelist/FileListModel.h"
#include "filelist/FileListTags.h"
#include "ov/OvGraph.h"
#include "spec/SpecDetail.h"
#include "spec/SpecGraph.h"
#include "util/RecordingReporter.h"
#include "util/TempDir.h"
#include "util/UiTestApp.h"
#include "yr/YrApp.h"
#include "yr/YrFileSelectionDialog.h"
#include "yr/YrGraph.h"

class HierarchyTestBench : public ::testing::Test {
 protected:
  void SetUp() override {
    // The shared dialogs live under the application's shell.
    app = std::make_unique<YrApp>("Tamblin", UiTestApp::context(), UiTestApp::display());
    shell = UiTestApp::newShell("hierarchyShell");
    Widget form = XtVaCreateManagedWidget("form", xmFormWidgetClass, shell, nullptr);
    fileList = std::make_unique<FileListModel>(reporter);
    tags = std::make_unique<FileListTags>("fileListTags", form, reporter);
    graph =
        std::make_unique<SpecGraph>("specGraph", form, reporter, SpecGraphWindow::none());
    detail = std::make_unique<SpecDetail>("specDetail", form, reporter);
    tags->connect(*fileList, graph->model());
    graph->connect(*detail, *tags);
    detail->connect(*graph, *fileList, *tags);
    fileList->setTagsPartner(tags.get());
    for (YrComponent* c : {static_cast<YrComponent*>(tags.get()),
                           static_cast<YrComponent*>(graph.get()),
                           static_cast<YrComponent*>(detail.get())})
      c->show();
    XtRealizeWidget(shell);
    graph->model().defaultGraph();
    UiTestApp::flush();
  }
  void TearDown() override {
    detail.reset();
    graph.reset();
    tags.reset();
    XtDestroyWidget(shell);
    app.reset();
    YrDialogManager::clearResponders();
    UiTestApp::flush();
  }

  SpecGraphModel& model() { return graph->model(); }
  Widget widget(const char* tag) { return graph->widgetOf(model().getNode(tag)); }
  // A click on a node, as the graph reports it.
  void click(const char* tag) {
    Widget w = widget(tag);
    ASSERT_NE(nullptr, w) << tag;
    XmAnyCallbackStruct cbs{};
    cbs.reason = XmCR_ACTIVATE;
    XtCallCallbacks(w, XmNactivateCallback, &cbs);
    UiTestApp::flush();
  }
  void clickBackground() {
    OvGraphCallbackStruct cbs{};
    cbs.reason = OvCR_DESELECT;
    XtCallCallbacks(graph->graph().graphWidget(), OvNdeselectCallback, &cbs);
  }
  void press(Widget button) {
    XmAnyCallbackStruct cbs{};
    cbs.reason = XmCR_ACTIVATE;
    XtCallCallbacks(button, XmNactivateCallback, &cbs);
    UiTestApp::flush();
  }
  // The graph's selected node, by tag ("" for none).
  std::string selectedTag() {
    auto* node = static_cast<SpecNode*>(graph->graph().selectedUserData());
    return node ? node->getTag() : "";
  }
  std::string written() {
    char* buf = nullptr;
    size_t size = 0;
    std::FILE* fp = open_memstream(&buf, &size);
    model().writeAll(fp);
    std::fclose(fp);
    std::string out(buf, size);
    std::free(buf);
    return out;
  }
  static std::string slurp(const std::string& path) {
    std::ifstream in(path);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
  }
  // Answers the next file dialog with path (or cancels with ""), noting
  // what it was asked.
  void answerFileDialog(const std::string& path) {
    YrDialogManager::queueResponder([this, path](YrDialogManager& d) {
      auto& f = static_cast<YrFileSelectionDialog&>(d);
      XmString t = nullptr;
      XtVaGetValues(f.baseWidget(), XmNdialogTitle, &t, nullptr);
      char* s = static_cast<char*>(
          XmStringUnparse(t, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
      dialogTitle = s ? s : "";
      XtFree(s);
      XmStringFree(t);
      proposed = f.selection();
      if (path.empty()) {
        f.press(YrDialogManager::Cancel);
      } else {
        f.setSelection(path);
        f.press(YrDialogManager::Ok);
      }
    });
  }

  std::unique_ptr<YrApp> app;
  Widget shell = nullptr;
  RecordingReporter reporter;
  std::unique_ptr<FileListModel> fileList;
  std::unique_ptr<FileListTags> tags;
  std::unique_ptr<SpecGraph> graph;
  std::unique_ptr<SpecDetail> detail;
  std::string dialogTitle, proposed;
};

#endif
