// How long a product hierarchy of 2,000 and 20,000 nodes takes to appear in
// the graph: built before the window is shown (one layout), and grown node
// by node in a shown window (one layout once the event loop runs again).
// Target: under a second for 20,000 nodes.  The whole program is timed
// through its window by graph_open_bench.sh.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include <X11/Intrinsic.h>
#include <X11/Shell.h>
#include <Xm/Xm.h>

#include "ov/OvGraph.h"
#include "util/XvfbServer.h"

namespace {

XtAppContext gContext;
Display* gDisplay;

void flush() {
  XSync(gDisplay, False);
  while (XtAppPending(gContext)) XtAppProcessEvent(gContext, XtIMAll);
}

// PRODUCTS products of 9 images of 10 subsystems: 100 nodes a product.
int addHierarchy(Widget graph, int products) {
  int n = 0;
  for (int p = 0; p < products; ++p) {
    Widget product = OvGraphAddNode(graph, ("product" + std::to_string(p)).c_str(), nullptr);
    ++n;
    for (int i = 0; i < 9; ++i) {
      Widget image = OvGraphAddNode(graph, ("image" + std::to_string(i)).c_str(), product);
      ++n;
      for (int s = 0; s < 10; ++s, ++n)
        OvGraphAddNode(graph, ("subsystem" + std::to_string(s)).c_str(), image);
    }
  }
  return n;
}

Widget newShell() {
  return XtVaAppCreateShell("bench", "Tamblin", topLevelShellWidgetClass, gDisplay, XmNwidth, 800,
                            XmNheight, 600, nullptr);
}

void BM_GraphBuiltThenShown(benchmark::State& state) {
  int nodes = 0;
  for (auto _ : state) {
    Widget shell = newShell();
    Widget graph = OvCreateScrolledGraph(shell, "graph", nullptr, 0);
    nodes = addHierarchy(graph, static_cast<int>(state.range(0)) / 100);
    XtRealizeWidget(shell);
    flush();
    state.PauseTiming();
    XtDestroyWidget(shell);
    flush();
    state.ResumeTiming();
  }
  state.counters["nodes"] = nodes;
}
BENCHMARK(BM_GraphBuiltThenShown)->Arg(2000)->Arg(20000)->Unit(benchmark::kMillisecond);

void BM_GraphGrownWhileShown(benchmark::State& state) {
  int nodes = 0;
  for (auto _ : state) {
    Widget shell = newShell();
    Widget graph = OvCreateScrolledGraph(shell, "graph", nullptr, 0);
    XtRealizeWidget(shell);
    flush();
    nodes = addHierarchy(graph, static_cast<int>(state.range(0)) / 100);
    flush();
    state.PauseTiming();
    XtDestroyWidget(shell);
    flush();
    state.ResumeTiming();
  }
  state.counters["nodes"] = nodes;
}
BENCHMARK(BM_GraphGrownWhileShown)->Arg(2000)->Arg(20000)->Unit(benchmark::kMillisecond);

// The same hierarchy as lazy nodes in a shown window: measured from their
// labels, laid out, and widgets made only for the nodes in sight.
Widget makeNode(Widget graph, Widget parentWidget, XtPointer name) {
  return OvGraphAddNode(graph, static_cast<const char*>(name), parentWidget);
}

void BM_LazyGraphGrownWhileShown(benchmark::State& state) {
  static char product[] = "product", image[] = "image", subsystem[] = "subsystem";
  int nodes = 0;
  for (auto _ : state) {
    Widget shell = newShell();
    Widget graph = OvCreateScrolledGraph(shell, "graph", nullptr, 0);
    XtRealizeWidget(shell);
    flush();
    nodes = 0;
    auto text = [](const std::string& t) {
      return XmStringCreateLocalized(const_cast<char*>(t.c_str()));
    };
    for (int p = 0; p < static_cast<int>(state.range(0)) / 100; ++p) {
      XmString label = text("product" + std::to_string(p));
      OvGraphLazyNode pn = OvGraphAddLazyNode(graph, nullptr, label, &makeNode, product);
      XmStringFree(label);
      ++nodes;
      for (int i = 0; i < 9; ++i) {
        label = text("image" + std::to_string(i));
        OvGraphLazyNode in = OvGraphAddLazyNode(graph, pn, label, &makeNode, image);
        XmStringFree(label);
        ++nodes;
        for (int k = 0; k < 10; ++k, ++nodes) {
          label = text("subsystem" + std::to_string(k));
          OvGraphAddLazyNode(graph, in, label, &makeNode, subsystem);
          XmStringFree(label);
        }
      }
    }
    flush();
    state.PauseTiming();
    XtDestroyWidget(shell);
    flush();
    state.ResumeTiming();
  }
  state.counters["nodes"] = nodes;
}
BENCHMARK(BM_LazyGraphGrownWhileShown)->Arg(2000)->Arg(20000)->Unit(benchmark::kMillisecond);

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
  static char name[] = "tamblin_ui_bench";
  char* xargv[] = {name, nullptr};
  gDisplay = XtOpenDisplay(gContext, nullptr, name, "Tamblin", nullptr, 0, &xargc, xargv);
  if (!gDisplay) return 1;
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
