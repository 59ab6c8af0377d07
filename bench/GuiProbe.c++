// guiprobe: times what a program does for one input event, from outside,
// through the X server (used by bench/graph_open_bench.sh).
//
//   guiprobe MENU_X MENU_Y EVENT...
//
// Each EVENT is one of: key:NAME (a keysym name such as Return, sent with
// XTest), wheel:X,Y (one turn down of the mouse wheel at X,Y) or
// wheeln:N:X,Y (N turns, each timed on its own), run:COMMAND (a shell
// command that hands the program a request and waits for its answer, such
// as `tamblin-cli edit`).  After each event the probe asks the
// program twice for something only its event loop can do: a click at
// MENU_X,MENU_Y (a menu bar entry) must map the menu's window, then Escape
// must unmap it.  The program handles its input in order, so the menu opens
// once everything up to the event is done, including timers run after it
// (a deferred layout); the second step also waits for the exposures those
// caused (the drawing).  Prints the seconds from the event to the menu's
// closing, one line per event.
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <time.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

Display* gDisplay;

double now() {
  timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return t.tv_sec + t.tv_nsec / 1e9;
}

void key(const char* name) {
  KeySym sym = XStringToKeysym(name);
  KeyCode code = sym == NoSymbol ? 0 : XKeysymToKeycode(gDisplay, sym);
  if (!code) {
    std::fprintf(stderr, "guiprobe: unknown key %s\n", name);
    std::exit(2);
  }
  XTestFakeKeyEvent(gDisplay, code, True, 0);
  XTestFakeKeyEvent(gDisplay, code, False, 0);
  XFlush(gDisplay);
}

void click(int x, int y, unsigned button) {
  XTestFakeMotionEvent(gDisplay, -1, x, y, 0);
  XTestFakeButtonEvent(gDisplay, button, True, 0);
  XTestFakeButtonEvent(gDisplay, button, False, 0);
  XFlush(gDisplay);
}

// Waits for an override-redirect window (a menu) to be mapped (or, with
// mapped false, unmapped); returns it.
Window waitForMenu(bool mapped, Window which, double deadline) {
  for (;;) {
    while (XPending(gDisplay)) {
      XEvent e;
      XNextEvent(gDisplay, &e);
      if (mapped && e.type == MapNotify && e.xmap.override_redirect) return e.xmap.window;
      if (!mapped && e.type == UnmapNotify && e.xunmap.window == which) return which;
    }
    if (now() > deadline) {
      std::fprintf(stderr, "guiprobe: the program did not answer within 300 s\n");
      std::exit(1);
    }
    struct timespec pause = {0, 200000};  // 0.2 ms
    nanosleep(&pause, nullptr);
  }
}

// Seconds from just before send() to the program having handled it.
template <typename Send>
double timed(Send send, int menuX, int menuY) {
  double start = now();
  send();
  click(menuX, menuY, Button1);
  Window menu = waitForMenu(true, None, start + 300);
  key("Escape");
  waitForMenu(false, menu, start + 300);
  return now() - start;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) {
    std::fprintf(stderr, "usage: guiprobe MENU_X MENU_Y EVENT...\n");
    return 2;
  }
  gDisplay = XOpenDisplay(nullptr);
  int ev, err, major, minor;
  if (!gDisplay || !XTestQueryExtension(gDisplay, &ev, &err, &major, &minor)) {
    std::fprintf(stderr, "guiprobe: no display with XTest\n");
    return 1;
  }
  int menuX = std::atoi(argv[1]), menuY = std::atoi(argv[2]);
  XSelectInput(gDisplay, DefaultRootWindow(gDisplay), SubstructureNotifyMask);
  XSync(gDisplay, False);
  for (int i = 3; i < argc; ++i) {
    std::string event = argv[i];
    int x = 0, y = 0, turns = 1;
    if (event.rfind("key:", 0) == 0) {
      std::string name = event.substr(4);
      std::printf("%s %.4f\n", event.c_str(), timed([&] { key(name.c_str()); }, menuX, menuY));
    } else if (event.rfind("run:", 0) == 0) {
      std::string command = event.substr(4);
      int status = 0;
      double seconds = timed([&] { status = std::system(command.c_str()); }, menuX, menuY);
      if (status != 0) {
        std::fprintf(stderr, "guiprobe: %s failed (%d)\n", command.c_str(), status);
        return 1;
      }
      std::printf("run %.4f\n", seconds);
    } else if (std::sscanf(event.c_str(), "wheel:%d,%d", &x, &y) == 2 ||
               std::sscanf(event.c_str(), "wheeln:%d:%d,%d", &turns, &x, &y) == 3) {
      for (int t = 0; t < turns; ++t)
        std::printf("wheel %.4f\n", timed([&] { click(x, y, Button5); }, menuX, menuY));
    } else {
      std::fprintf(stderr, "guiprobe: unknown event %s\n", argv[i]);
      return 2;
    }
    std::fflush(stdout);
  }
  XCloseDisplay(gDisplay);
  return 0;
}
