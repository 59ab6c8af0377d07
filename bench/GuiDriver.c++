// gui_driver WINDOW COMMAND ...: sends real input events (XTest, as xdotool
// does) to a Tamblin started with TAMBLIN_IDLE_PROBE set, and times each
// from the moment the first event is sent until the program answers its
// idle probe (its event loop has nothing left to do and the server has
// drawn what it sent).  Prints seconds, one figure a line.
//
//   where PATH            root geometry "x y w h" of the widget PATH
//   click X Y [MODS]      button 1 at root X Y (MODS: ctrl, shift, both "ctrl+shift")
//   key KEYSYM [MODS]     one key, e.g. Return, Next, slash
//   type TEXT             each character as a key, timed one by one
//   wheel X Y N           N turns down of the mouse wheel at root X Y, each
//                         timed on its own (one line each)
//   run COMMAND           a shell command that hands the program a request
//                         and waits for its answer (`tamblin-cli edit`)
//   idle                  the probe alone (the floor under every figure)
#include <X11/Xatom.h>
#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

Display* d = nullptr;
Window window = 0;
Atom probeAtom, answerAtom, widgetAtom;
long serial = 0;

double now() {
  using namespace std::chrono;
  return duration<double>(steady_clock::now().time_since_epoch()).count();
}

// Sends the probe and waits for its answer; the answer's text after the
// serial.
std::string probe(bool where) {
  ++serial;
  XEvent e{};
  e.xclient.type = ClientMessage;
  e.xclient.window = window;
  e.xclient.message_type = probeAtom;
  e.xclient.format = 32;
  e.xclient.data.l[0] = serial;
  e.xclient.data.l[1] = where ? 1 : 0;
  XSendEvent(d, window, False, NoEventMask, &e);
  XFlush(d);
  for (;;) {
    XEvent ev;
    XNextEvent(d, &ev);
    if (ev.type != PropertyNotify || ev.xproperty.atom != answerAtom) continue;
    Atom type;
    int format;
    unsigned long items, after;
    unsigned char* data = nullptr;
    if (XGetWindowProperty(d, window, answerAtom, 0, 1024, False, XA_STRING, &type, &format, &items,
                           &after, &data) != Success || !data)
      continue;
    std::string text(reinterpret_cast<char*>(data), items);
    XFree(data);
    char* end = nullptr;
    long got = std::strtol(text.c_str(), &end, 10);
    if (got == serial) return end;
  }
}

std::vector<KeyCode> modifierKeys(const char* mods) {
  std::vector<KeyCode> keys;
  if (!mods) return keys;
  if (std::strstr(mods, "ctrl")) keys.push_back(XKeysymToKeycode(d, XK_Control_L));
  if (std::strstr(mods, "shift")) keys.push_back(XKeysymToKeycode(d, XK_Shift_L));
  return keys;
}

void press(const std::vector<KeyCode>& keys, bool down) {
  for (KeyCode k : keys) XTestFakeKeyEvent(d, k, down, CurrentTime);
}

void key(KeySym sym, const char* mods) {
  std::vector<KeyCode> m = modifierKeys(mods);
  KeyCode code = XKeysymToKeycode(d, sym);
  // Characters that need Shift on this keyboard get it.
  if (code && XkbKeycodeToKeysym(d, code, 0, 0) != sym && XkbKeycodeToKeysym(d, code, 0, 1) == sym)
    m.push_back(XKeysymToKeycode(d, XK_Shift_L));
  press(m, true);
  XTestFakeKeyEvent(d, code, True, CurrentTime);
  XTestFakeKeyEvent(d, code, False, CurrentTime);
  press(m, false);
}

int usage() {
  std::fprintf(stderr, "usage: gui_driver WINDOW where PATH | click X Y [MODS] | key KEYSYM [MODS] | type TEXT"
                       " | wheel X Y N | run COMMAND | idle\n");
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return usage();
  d = XOpenDisplay(nullptr);
  if (!d) {
    std::fprintf(stderr, "gui_driver: no display\n");
    return 1;
  }
  window = static_cast<Window>(std::strtoul(argv[1], nullptr, 0));
  probeAtom = XInternAtom(d, "TAMBLIN_PROBE", False);
  answerAtom = XInternAtom(d, "TAMBLIN_PROBE_ANSWER", False);
  widgetAtom = XInternAtom(d, "TAMBLIN_PROBE_WIDGET", False);
  XSelectInput(d, window, PropertyChangeMask);
  const std::string command = argv[2];
  if (command == "where" && argc == 4) {
    XChangeProperty(d, window, widgetAtom, XA_STRING, 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(argv[3]),
                    static_cast<int>(std::strlen(argv[3])));
    std::string place = probe(true);
    std::printf("%s\n", place.c_str() + (place.empty() ? 0 : 1));
    return place == " -" ? 1 : 0;
  }
  double start = now();
  if (command == "idle") {
    probe(false);
  } else if (command == "click" && argc >= 5) {
    std::vector<KeyCode> m = modifierKeys(argc > 5 ? argv[5] : nullptr);
    XTestFakeMotionEvent(d, -1, std::atoi(argv[3]), std::atoi(argv[4]), CurrentTime);
    XFlush(d);
    probe(false);  // the pointer is there before the clock starts
    start = now();
    press(m, true);
    XTestFakeButtonEvent(d, 1, True, CurrentTime);
    XTestFakeButtonEvent(d, 1, False, CurrentTime);
    press(m, false);
    probe(false);
  } else if (command == "wheel" && argc == 6) {
    XTestFakeMotionEvent(d, -1, std::atoi(argv[3]), std::atoi(argv[4]), CurrentTime);
    XFlush(d);
    probe(false);
    for (int turn = std::atoi(argv[5]); turn > 0; --turn) {
      double t = now();
      XTestFakeButtonEvent(d, 5, True, CurrentTime);
      XTestFakeButtonEvent(d, 5, False, CurrentTime);
      probe(false);
      std::printf("%.4f\n", now() - t);
    }
    return 0;
  } else if (command == "run" && argc == 4) {
    if (std::system(argv[3]) != 0) {
      std::fprintf(stderr, "gui_driver: '%s' failed\n", argv[3]);
      return 1;
    }
    probe(false);
  } else if (command == "key" && argc >= 4) {
    KeySym sym = XStringToKeysym(argv[3]);
    if (sym == NoSymbol) return usage();
    key(sym, argc > 4 ? argv[4] : nullptr);
    probe(false);
  } else if (command == "type" && argc == 4) {
    double total = 0, worst = 0;
    int n = 0;
    for (const char* c = argv[3]; *c; ++c) {
      char name[2] = {*c, 0};
      KeySym sym = XStringToKeysym(name);
      if (sym == NoSymbol) {
        static const struct { char c; const char* name; } names[] = {
            {'.', "period"}, {'*', "asterisk"}, {'^', "asciicircum"}, {'$', "dollar"},
            {'(', "parenleft"}, {')', "parenright"}, {'|', "bar"}, {'/', "slash"},
            {' ', "space"}, {'\\', "backslash"}, {'_', "underscore"}, {'-', "minus"}};
        for (const auto& k : names)
          if (k.c == *c) sym = XStringToKeysym(k.name);
      }
      if (sym == NoSymbol) return usage();
      double t = now();
      key(sym, nullptr);
      probe(false);
      double one = now() - t;
      total += one;
      worst = std::max(worst, one);
      ++n;
    }
    std::printf("%.4f %.4f\n", n ? total / n : 0.0, worst);  // mean and worst per key
    return 0;
  } else {
    return usage();
  }
  std::printf("%.4f\n", now() - start);
  XCloseDisplay(d);
  return 0;
}
