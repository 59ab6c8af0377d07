// The fonts of the panel layouts.
//
// Text is drawn with Xft through render tables: the rendition "xft" (a
// proportional sans) for labels, buttons, menus and fields, and "mono" (a
// monospace) for the lists whose columns must line up (idb lines, the
// browser, tags, the image order).  The lines are fallbacks: a user's own
// renderTable or font resources under the class "Tamblin" win.
#ifndef TAMBLIN_APP_UI_LAYOUTFONTS_H
#define TAMBLIN_APP_UI_LAYOUTFONTS_H

#include <X11/Intrinsic.h>

/// Null-terminated resource lines, for an application's fallback table.
extern const char* const layoutFontResources[];

/// Merges layoutFontResources into the display's resource database under
/// whatever is already there.  Affects widgets created afterwards; calling
/// it again changes nothing.
void installLayoutFonts(Widget anyWidget);

#endif
