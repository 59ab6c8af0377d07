// YrIdleProbe: lets a benchmark driver outside the process see when the
// program has finished with what it was sent, and where a widget is.
//
// The driver sends a ClientMessage of type "TAMBLIN_PROBE" (format 32,
// l[0] a serial number, l[1] 0 or 1) to the shell's window.  The program
// answers once its event loop is idle again (an Xt work procedure runs
// only when no event is waiting), after an XSync so that everything it
// drew has reached the server, by setting the shell window's STRING
// property "TAMBLIN_PROBE_ANSWER" to the serial.  With l[1] = 1 the answer
// also carries "x y width height", the root position of the widget named by
// the window's STRING property "TAMBLIN_PROBE_WIDGET" (an XtNameToWidget
// path from the shell), or "-" when there is none.
//
// Installed only when the environment variable TAMBLIN_IDLE_PROBE is set;
// it changes nothing the user sees.
#ifndef TAMBLIN_YR_YRIDLEPROBE_H
#define TAMBLIN_YR_YRIDLEPROBE_H

#include <X11/Intrinsic.h>

namespace YrIdleProbe {
/// Installs the probe on shell when TAMBLIN_IDLE_PROBE is set.
void installFromEnvironment(Widget shell);
}  // namespace YrIdleProbe

#endif
