// MyApp: the Tamblin application object.  Adds the "-nofork" option (and
// the "*nofork" resource it sets) to the framework application: without
// it, main() forks into the background.
#ifndef TAMBLIN_APP_MYAPP_H
#define TAMBLIN_APP_MYAPP_H

#include "yr/YrMsgApp.h"

class MyApp : public YrMsgApp {
 public:
  /// Opens the display; parses "-nofork" out of argv (updating *argc) and
  /// loads the nofork resource.
  MyApp(const char* appClassName, int* argc, char** argv, XrmOptionDescRec* options,
        Cardinal numOptions, const char* msgServiceName);
  /// The same on a display that is already open (the interface tests).
  MyApp(const char* appClassName, XtAppContext context, Display* display, int* argc, char** argv,
        const char* msgServiceName);

  /// False (the default): fork into the background at start-up.
  Boolean nofork = False;

  static XrmOptionDescRec _cmdLineOptions[];
  static XtResource _resources[];

 private:
  void loadOptions(int* argc, char** argv);
};

#endif
