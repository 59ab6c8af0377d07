// send_wm_close WINDOW: does what a window manager's Close does to a
// top-level window: sends it the WM_PROTOCOLS client message carrying
// WM_DELETE_WINDOW.  The end-to-end tests run without a window manager.
#include <X11/Xlib.h>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s WINDOW\n", argv[0]);
    return 2;
  }
  Display* display = XOpenDisplay(nullptr);
  if (!display) {
    std::fprintf(stderr, "%s: can't open display\n", argv[0]);
    return 1;
  }
  Window window = std::strtoul(argv[1], nullptr, 0);
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = window;
  event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
  event.xclient.data.l[1] = CurrentTime;
  XSendEvent(display, window, False, NoEventMask, &event);
  XSync(display, False);
  XCloseDisplay(display);
  return 0;
}
