// YrMsgApp: the application that other desktop tools can talk to.
//
// Carries the name under which the program offers its requests on the
// desktop's message service.  Connecting to the service (the session bus)
// and dispatching requests inside the event loop belong here; until that
// service is wired up, the application runs as a plain YrApp.
#ifndef TAMBLIN_YR_YRMSGAPP_H
#define TAMBLIN_YR_YRMSGAPP_H

#include <string>

#include "yr/YrApp.h"

class YrMsgApp : public YrApp {
 public:
  YrMsgApp(const char* appClassName, int* argc, char** argv, XrmOptionDescRec* options,
           Cardinal numOptions, const char* msgServiceName,
           const char* const* fallback = nullptr);
  YrMsgApp(const char* appClassName, XtAppContext context, Display* display,
           const char* msgServiceName, const char* const* fallback = nullptr);

  const char* msgServiceName() const { return _msgServiceName.c_str(); }

 private:
  std::string _msgServiceName;
};

#endif
