#include "app/ui/LayoutFonts.h"

#include <X11/Xresource.h>

const char* const layoutFontResources[] = {
    "*renderTable:  xft",
    "*xft.fontType:  FONT_IS_XFT",
    "*xft.fontName:  Sans",
    "*xft.fontSize:  10",
    "*fileList.renderTable:  mono",
    "*filesList.renderTable:  mono",
    "*tagsList.renderTable:  mono",
    "*orderList.renderTable:  mono",
    "*mono.fontType:  FONT_IS_XFT",
    "*mono.fontName:  Monospace",
    "*mono.fontSize:  9",
    nullptr,
};

void installLayoutFonts(Widget anyWidget) {
  if (!anyWidget) return;
  Display* display = XtDisplay(anyWidget);
  XrmDatabase fonts = nullptr;
  for (const char* const* line = layoutFontResources; *line; ++line)
    XrmPutLineResource(&fonts, *line);
  XrmDatabase db = XtDatabase(display);
  XrmCombineDatabase(fonts, &db, False);
  XrmSetDatabase(display, db);
}
