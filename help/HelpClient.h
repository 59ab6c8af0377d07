// HelpClient: the client side of the desktop's help server.
//
// A request ("view" a topic, or "list" an index; see HelpRequest) goes to a
// running server by replacing the property "ORVEX_HELP_REQUEST" on the
// window that owns the server's selection ("ORVEX_HELP_SERVER", plus "_" and
// the locale name when one is set).  When no server runs, the server
// program is started with the request pending ("-pending REQUEST"), in a
// grandchild so that it never becomes our zombie; when the program is
// missing, the grandchild shows an error box with the desktop's notice
// utility, or with xmessage where that utility is missing.
//
// One client per process (module state).  Programs are started without a
// shell: values reach them as they are.
#ifndef TAMBLIN_HELP_HELPCLIENT_H
#define TAMBLIN_HELP_HELPCLIENT_H

#include <X11/Xlib.h>

#include <string>

/// Where the client finds the programs and resource files it uses.
struct HelpPrograms {
  std::string server = "/usr/sbin/orvexhelp";
  std::string notice = "/usr/bin/X11/xnotice";
  std::string message = "xmessage";       // the fallback notice, from PATH
  std::string resourceRoot = "/usr/lib/X11";  // app-defaults live below it
};

/// Sets up the client for display (null: every request is refused) under
/// clientName and the application class className (whose app-defaults file
/// may give "helpSubSys" and "helpTitle").
void OrvexHelpInit(Display* display, const char* clientName, const char* className,
                   const char* separator = ";");
/// Asks to view the topic key of book.  0 without a display, else 1.
int OrvexHelpMsg(const char* key, const char* book, const char* userData);
/// Asks for the index of book.  0 without a display, else 1.
int OrvexHelpIndexMsg(const char* key, const char* book);

/// Replaces the programs and resource root (sites and tests).
void OrvexHelpSetPrograms(const HelpPrograms& programs);
/// The request composed last ("" before the first).
const std::string& OrvexHelpLastRequest();

#endif
