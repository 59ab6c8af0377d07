// AppDefaultsPath: lets libXt find the app-defaults file installed with the
// program, wherever it was installed.
//
// libXt looks for app-defaults only in its compiled-in directories (on
// Debian /usr/lib/X11/app-defaults and /etc/X11/app-defaults) or along
// XFILESEARCHPATH, never under another installation prefix.  An installed
// program lives in PREFIX/bin and its file in PREFIX/share/X11/app-defaults,
// or, for the prefix /usr, in /etc/X11/app-defaults (beside PREFIX/..).
// Those places go into XFILESEARCHPATH before the display is opened:
// behind the user's own XFILESEARCHPATH when one is set, else in front of
// libXt's default directories.  A program that is not in a "bin" directory
// (a build tree) leaves the path alone.
#ifndef TAMBLIN_APP_APPDEFAULTSPATH_H
#define TAMBLIN_APP_APPDEFAULTSPATH_H

#include <string>

/// libXt's default search path for app-defaults on Debian.
extern const char kXtDefaultFileSearchPath[];

/// The XFILESEARCHPATH for the program file exe given the present value
/// (null when unset); "" when it should stay as it is.
std::string appDefaultsSearchPath(const std::string& exe, const char* current);

/// Sets XFILESEARCHPATH for the running program (/proc/self/exe).  Must
/// come before the display is opened, which reads the app-defaults.
void useInstalledAppDefaults();

#endif
