// The source-tree browser at scale.  Targets on this machine:
//   - adding a directory of 100,000 files (1,000 directories of 100) reaches
//     the idb and a list showing it in under 3 s;
//   - a directory of 20,000 entries, half of them in the idb, is shown with
//     its marks in under 1 s.
// The trees are made once, outside the timings.
#include <benchmark/benchmark.h>

#include <X11/Intrinsic.h>
#include <X11/Shell.h>
#include <Xm/Form.h>
#include <Xm/List.h>
#include <Xm/Xm.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "filelist/FileListAdd.h"
#include "filelist/FileListModel.h"
#include "util/Reporter.h"
#include "util/TempDir.h"
#include "util/XvfbServer.h"
#include "yr/YrApp.h"

namespace {

XtAppContext gContext;
Display* gDisplay;

void flush() {
  XSync(gDisplay, False);
  while (XtAppPending(gContext)) XtAppProcessEvent(gContext, XtIMAll);
}

TempDir& bigTree() {
  static TempDir* tree = [] {
    auto* t = new TempDir;
    for (int d = 0; d < 1000; d++) {
      std::string dir = t->mkdir("big/d" + std::to_string(d));
      for (int f = 0; f < 100; f++)
        std::fclose(std::fopen((dir + "/file" + std::to_string(f) + ".o").c_str(), "w"));
    }
    return t;
  }();
  return *tree;
}

TempDir& wideTree() {
  static TempDir* tree = [] {
    auto* t = new TempDir;
    std::string dir = t->mkdir("wide");
    for (int f = 0; f < 20000; f++)
      std::fclose(std::fopen((dir + "/entry" + std::to_string(f) + ".c").c_str(), "w"));
    return t;
  }();
  return *tree;
}

// A shell with the browser and, beside it, a plain list standing for the
// file list's.
struct Panels {
  explicit Panels(FileListModel& model, Reporter& reporter) {
    shell = XtVaAppCreateShell("bench", "Tamblin", topLevelShellWidgetClass, gDisplay, XmNwidth,
                               900, XmNheight, 700, nullptr);
    Widget form = XtVaCreateManagedWidget("form", xmFormWidgetClass, shell, nullptr);
    add = std::make_unique<FileListAdd>("FileListAdd", form);
    add->show();
    list = XmCreateScrolledList(form, const_cast<char*>("fileList"), nullptr, 0);
    XtManageChild(list);
    model.setAddFilesPartner(add.get());
    add->connect(model, reporter);
    XtRealizeWidget(shell);
    flush();
  }
  ~Panels() {
    add.reset();
    XtDestroyWidget(shell);
    flush();
  }
  void showLines(const FileListModel& model) {
    std::vector<XmString> items(model.lineCount());
    for (int p = 1; p <= model.lineCount(); p++) {
      std::string line(model.line(p));
      items[p - 1] = XmStringCreateLocalized(const_cast<char*>(line.c_str()));
    }
    XmListDeleteAllItems(list);
    XmListAddItemsUnselected(list, items.data(), static_cast<int>(items.size()), 0);
    for (XmString s : items) XmStringFree(s);
  }
  Widget shell = nullptr;
  Widget list = nullptr;
  std::unique_ptr<FileListAdd> add;
};

void BM_AddDirectoryOf100000Files(benchmark::State& state) {
  TempDir& tree = bigTree();
  int records = 0;
  for (auto _ : state) {
    state.PauseTiming();
    StreamReporter reporter(stderr);
    FileListModel model(reporter);
    model.setSourceRoot(tree.path());
    model.setView(FileListModel::kTagView);
    auto panels = std::make_unique<Panels>(model, reporter);
    panels->add->setBrowsingDirectory(tree.path().c_str());
    int pos = panels->add->getEntryPos("big");
    XmListSelectPos(XtNameToWidget(panels->add->baseWidget(), "*filesList"), pos, False);
    state.ResumeTiming();
    panels->add->addSelectedFiles();
    panels->showLines(model);
    flush();
    state.PauseTiming();
    records = model.idb().count();
    model.setAddFilesPartner(nullptr);
    panels.reset();
    state.ResumeTiming();
  }
  state.counters["records"] = records;
}
BENCHMARK(BM_AddDirectoryOf100000Files)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_ShowDirectoryOf20000EntriesWithMarks(benchmark::State& state) {
  TempDir& tree = wideTree();
  StreamReporter reporter(stderr);
  FileListModel model(reporter);
  model.setSourceRoot(tree.path());
  std::vector<std::string> half;
  for (int f = 0; f < 20000; f += 2) half.push_back(tree.file("wide/entry" + std::to_string(f) + ".c"));
  model.add(half);
  auto panels = std::make_unique<Panels>(model, reporter);
  const std::string dir = tree.file("wide");
  int shown = 0;
  for (auto _ : state) {
    panels->add->setBrowsingDirectory(dir.c_str());
    flush();
    state.PauseTiming();
    bool marked = false;
    panels->add->getEntryText(panels->add->getEntryPos("entry0.c"), &marked);
    if (!marked) state.SkipWithError("entry0.c is not marked");
    XtVaGetValues(XtNameToWidget(panels->add->baseWidget(), "*filesList"), XmNitemCount, &shown,
                  nullptr);
    panels->add->setBrowsingDirectory(tree.path().c_str());
    flush();
    state.ResumeTiming();
  }
  state.counters["entries"] = shown;
  model.setAddFilesPartner(nullptr);
}
BENCHMARK(BM_ShowDirectoryOf20000EntriesWithMarks)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace

int main(int argc, char** argv) {
  XvfbServer server(XVFB_PATH);
  if (server.display().empty()) {
    std::fprintf(stderr, "cannot start Xvfb\n");
    return 1;
  }
  XtToolkitInitialize();
  gContext = XtCreateApplicationContext();
  int xargc = 1;
  static char name[] = "tamblin_addfiles_bench";
  char* xargv[] = {name, nullptr};
  gDisplay = XtOpenDisplay(gContext, nullptr, name, "Tamblin", nullptr, 0, &xargc, xargv);
  if (!gDisplay) return 1;
  YrApp app("Tamblin", gContext, gDisplay);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
