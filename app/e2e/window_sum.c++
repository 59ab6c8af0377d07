// window_sum WINDOW: prints a checksum of what the window shows now (its
// pixels as the screen has them, windows over it included), or nothing
// and status 1 when it is not viewable.  The end-to-end tests compare two
// sums to see whether the window changed: a screenshot through ImageMagick
// costs ten times as long, and the tests wait on such looks hundreds of
// times.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

int ignoreErrors(Display*, XErrorEvent*) { return 0; }

}  // namespace

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
  // A window that goes away meanwhile is an answer (status 1), not a crash.
  XSetErrorHandler(&ignoreErrors);
  Window window = std::strtoul(argv[1], nullptr, 0);
  XWindowAttributes attributes{};
  if (!XGetWindowAttributes(display, window, &attributes) || attributes.map_state != IsViewable)
    return 1;
  XImage* image = XGetImage(display, window, 0, 0, attributes.width, attributes.height, AllPlanes,
                            ZPixmap);
  if (!image) return 1;
  // FNV-1a over the rows (the padding at their ends left out).
  std::uint64_t sum = 14695981039346656037ull;
  const int rowBytes = (image->width * image->bits_per_pixel + 7) / 8;
  for (int y = 0; y < image->height; y++) {
    const auto* row = reinterpret_cast<const unsigned char*>(image->data) +
                      static_cast<long>(y) * image->bytes_per_line;
    for (int x = 0; x < rowBytes; x++) {
      sum ^= row[x];
      sum *= 1099511628211ull;
    }
  }
  std::printf("%016llx %dx%d\n", static_cast<unsigned long long>(sum), image->width,
              image->height);
  XDestroyImage(image);
  XCloseDisplay(display);
  return 0;
}
