// The tab images of the main view, as XPM data (generated at build time by
// app/tabs/MakeTabPixmaps).  Index = view number.  The background is the
// symbolic colour "buttonBackground" (normal) or "basicBackground"
// (selected).
#ifndef TAMBLIN_APP_TABPIXMAPS_H
#define TAMBLIN_APP_TABPIXMAPS_H

extern const char* const* const normalTabXpm[5];
extern const char* const* const selectedTabXpm[5];

#endif
