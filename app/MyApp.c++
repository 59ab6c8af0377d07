#include "app/MyApp.h"

#include <X11/StringDefs.h>

#include "app/ui/LayoutFonts.h"

namespace {
// Where XtGetApplicationResources stores the resources.
struct Settings {
  Boolean nofork;
};
}  // namespace

XrmOptionDescRec MyApp::_cmdLineOptions[] = {
    {const_cast<char*>("-nofork"), const_cast<char*>("*nofork"), XrmoptionNoArg,
     const_cast<char*>("TRUE")},
};

XtResource MyApp::_resources[] = {
    {const_cast<char*>("nofork"), const_cast<char*>("NoFork"), XtRBoolean, sizeof(Boolean),
     XtOffsetOf(Settings, nofork), XtRString, const_cast<char*>("FALSE")},
};

MyApp::MyApp(const char* appClassName, int* argc, char** argv, XrmOptionDescRec* options,
             Cardinal numOptions, const char* msgServiceName)
    : YrMsgApp(appClassName, argc, argv, options, numOptions, msgServiceName,
               layoutFontResources) {
  loadOptions(argc, argv);
}

MyApp::MyApp(const char* appClassName, XtAppContext context, Display* display, int* argc,
             char** argv, const char* msgServiceName)
    : YrMsgApp(appClassName, context, display, msgServiceName, layoutFontResources) {
  loadOptions(argc, argv);
}

void MyApp::loadOptions(int* argc, char** argv) {
  parseCommandLine(_cmdLineOptions, XtNumber(_cmdLineOptions), argc, argv);
  Settings settings{};
  getResources(_resources, XtNumber(_resources), &settings);
  nofork = settings.nofork;
}
