// What one message costs the message log, drawn in a shown window (append,
// then everything the X server and the event loop do until they wait
// again), by how much the log already holds and by the message's length.
// The reference in the same run is a short message into an empty log.
// Target: the same cost whatever the log holds and whatever the message's
// length (a wrapped line of 10 MB took minutes before lines were cut).
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include <X11/Intrinsic.h>
#include <X11/Shell.h>
#include <Xm/ScrolledW.h>
#include <Xm/Text.h>
#include <Xm/Xm.h>

#include "app/MessageLog.h"
#include "util/XvfbServer.h"

namespace {

XtAppContext gContext;
Display* gDisplay;

void flush() {
  XSync(gDisplay, False);
  while (XtAppPending(gContext)) XtAppProcessEvent(gContext, XtIMAll);
}

const char kLine[] = "Couldn't open idb '/usr/people/me/work/product/build/product.idb' (No such file).";

// The log as the main window lays it out: word-wrapped in 830 by 91 pixels.
struct ShownLog {
  ShownLog() {
    shell = XtVaAppCreateShell("bench", "Tamblin", topLevelShellWidgetClass, gDisplay, nullptr);
    Widget scrolled = XtVaCreateManagedWidget(
        "scrolledWindow", xmScrolledWindowWidgetClass, shell, XmNscrollingPolicy,
        XmAPPLICATION_DEFINED, XmNvisualPolicy, XmVARIABLE, XmNscrollBarDisplayPolicy, XmSTATIC,
        XmNwidth, 830, XmNheight, 91, nullptr);
    Widget text = XtVaCreateManagedWidget(
        "messageText", xmTextWidgetClass, scrolled, XmNeditMode, XmMULTI_LINE_EDIT, XmNeditable,
        False, XmNwordWrap, True, XmNrows, 5, XmNscrollHorizontal, False,
        XmNcursorPositionVisible, False, nullptr);
    XtRealizeWidget(shell);
    flush();
    log = new MessageLog(text);
  }
  ~ShownLog() {
    delete log;
    XtDestroyWidget(shell);
    flush();
  }
  Widget shell;
  MessageLog* log;
};

void BM_AppendToALogHolding(benchmark::State& state) {
  ShownLog shown;
  for (int64_t i = 0; i < state.range(0); ++i) shown.log->append(kLine);
  flush();
  for (auto _ : state) {
    shown.log->append(kLine);
    flush();
  }
  state.counters["held"] = static_cast<double>(shown.log->lines());
}
BENCHMARK(BM_AppendToALogHolding)
    ->Arg(0)
    ->Arg(1000)
    ->Arg(4999)
    ->Arg(50000)
    ->Unit(benchmark::kMicrosecond);

void BM_AppendAMessageOfBytes(benchmark::State& state) {
  ShownLog shown;
  std::string message(static_cast<size_t>(state.range(0)), 'x');
  // Words, so that wrapping has somewhere to break.
  for (size_t i = 60; i < message.size(); i += 61) message[i] = ' ';
  for (auto _ : state) {
    shown.log->append(message.c_str());
    flush();
  }
}
BENCHMARK(BM_AppendAMessageOfBytes)
    ->Arg(100)
    ->Arg(100 << 10)
    ->Arg(10 << 20)
    ->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
  XvfbServer server(XVFB_PATH);
  if (server.display().empty()) {
    std::fprintf(stderr, "cannot start Xvfb\n");
    return 1;
  }
  XtToolkitInitialize();
  gContext = XtCreateApplicationContext();
  // The program's fonts: anti-aliased text through Xft.
  static const char* fallback[] = {"*renderTable: xft", "*xft.fontType: FONT_IS_XFT",
                                   "*xft.fontName: Sans", "*xft.fontSize: 10", nullptr};
  XtAppSetFallbackResources(gContext, const_cast<String*>(fallback));
  int xargc = 1;
  static char name[] = "tamblin_log_bench";
  char* xargv[] = {name, nullptr};
  gDisplay = XtOpenDisplay(gContext, nullptr, name, "Tamblin", nullptr, 0, &xargc, xargv);
  if (!gDisplay) return 1;
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
