// YrMsgWindow: the window through which the program answers requests from
// other desktop tools (see YrMsgApp).  Registering and answering requests
// arrives with the message-service connection; until then it is a YrWindow
// that knows the service name it will answer under.
#ifndef TAMBLIN_YR_YRMSGWINDOW_H
#define TAMBLIN_YR_YRMSGWINDOW_H

#include "yr/YrWindow.h"

class YrMsgWindow : public YrWindow {
 public:
  explicit YrMsgWindow(const char* name);
  const char* className() const override { return "YrMsgWindow"; }
  /// The application's message-service name ("" without a YrMsgApp).
  const char* msgServiceName() const;
};

#endif
