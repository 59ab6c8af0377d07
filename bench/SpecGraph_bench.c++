// How long a spec file of 2,000 nodes takes to open into the product
// hierarchy panel and appear, laid out, in its graph.  Target: under a
// second.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <string>

#include <X11/Intrinsic.h>
#include <X11/Shell.h>
#include <Xm/Xm.h>

#include "spec/SpecGraph.h"
#include "util/RecordingReporter.h"
#include "util/TempDir.h"
#include "util/XvfbServer.h"
#include "yr/YrGraph.h"

namespace {

XtAppContext gContext;
Display* gDisplay;

void flush() {
  XSync(gDisplay, False);
  while (XtAppPending(gContext)) XtAppProcessEvent(gContext, XtIMAll);
}

// 20 products of 9 images of 10 subsystems: 20 + 180 + 1,800 nodes.
std::string hierarchyText() {
  std::string t;
  for (int p = 0; p < 20; ++p) {
    std::string product = "product" + std::to_string(p);
    t += "product " + product + "\n    id \"P\"\n";
    for (int i = 0; i < 9; ++i) {
      std::string image = "image" + std::to_string(i);
      t += "    image " + image + "\n        id \"I\"\n        version 1\n        order 9999\n";
      for (int s = 0; s < 10; ++s) {
        std::string subsys = "subsys" + std::to_string(s);
        t += "        subsys " + subsys + "\n            id \"S\"\n            exp " + product +
             "." + image + "." + subsys + "\n        endsubsys\n";
      }
      t += "    endimage\n";
    }
    t += "endproduct\n";
  }
  return t;
}

void BM_SpecOf2000NodesOpenedInThePanel(benchmark::State& state) {
  TempDir dir;
  const std::string path = dir.write("big.spec", hierarchyText());
  RecordingReporter reporter;
  int nodes = 0;
  for (auto _ : state) {
    state.PauseTiming();
    Widget shell = XtVaAppCreateShell("bench", "Tamblin", topLevelShellWidgetClass, gDisplay,
                                      XmNwidth, 800, XmNheight, 600, nullptr);
    auto panel =
        std::make_unique<SpecGraph>("specGraph", shell, reporter, SpecGraphWindow::none());
    panel->show();
    XtRealizeWidget(shell);
    flush();
    state.ResumeTiming();
    if (!panel->open(path.c_str())) state.SkipWithError("the spec did not open");
    flush();
    state.PauseTiming();
    nodes = panel->graph().nodeCount();
    panel.reset();
    XtDestroyWidget(shell);
    flush();
    state.ResumeTiming();
  }
  state.counters["nodes"] = nodes;
}
BENCHMARK(BM_SpecOf2000NodesOpenedInThePanel)->Unit(benchmark::kMillisecond);

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
  static char name[] = "tamblin_panel_bench";
  char* xargv[] = {name, nullptr};
  gDisplay = XtOpenDisplay(gContext, nullptr, name, "Tamblin", nullptr, 0, &xargc, xargv);
  if (!gDisplay) return 1;
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
