#include "yr/YrMsgApp.h"

YrMsgApp::YrMsgApp(const char* appClassName, int* argc, char** argv, XrmOptionDescRec* options,
                   Cardinal numOptions, const char* msgServiceName, const char* const* fallback)
    : YrApp(appClassName, argc, argv, options, numOptions, fallback),
      _msgServiceName(msgServiceName ? msgServiceName : "") {}

YrMsgApp::YrMsgApp(const char* appClassName, XtAppContext context, Display* display,
                   const char* msgServiceName, const char* const* fallback)
    : YrApp(appClassName, context, display, fallback),
      _msgServiceName(msgServiceName ? msgServiceName : "") {}
