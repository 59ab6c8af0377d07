// tamblin: the interactive program.
#include <unistd.h>

#include <cstdio>
#include <string>

#include "app/AppDefaultsPath.h"
#include "app/MainWindow.h"
#include "app/MyApp.h"
#include "util/BusyScope.h"
#include "util/Format.h"
#include "yr/YrBusyIndicator.h"
#include "yr/YrIdleProbe.h"

namespace {

const char kVersion[] = "03/09/96";

std::string banner() {
  std::string text = format("Tamblin %22s%s\n", " ", kVersion);
  text += std::string(20, ' ') + "Copyright (c) 1995 The Tamblin Authors\n";
  text += std::string(3, ' ') + "The Tamblin Project\n";
  text += "        Initializing,  Please Wait...";
  return text;
}

}  // namespace

int main(int argc, char** argv) {
  useInstalledAppDefaults();
  auto* app = new MyApp("Tamblin", &argc, argv, nullptr, 0, "ORVEX_TAMBLIN");
  if (!app->nofork) {
    std::fflush(nullptr);
    pid_t pid = fork();
    // The parent ends here and the child carries on.  A failed fork (-1)
    // ends the program too.
    if (pid != 0) return static_cast<int>(pid);
  }
  app->setVersionString(kVersion);
  std::string text = banner();
  std::printf("%s\n", text.c_str());
  std::fflush(stdout);
  {
    BusyScope starting(YrBusyIndicator::application(), text);
    auto* window = new MainWindow("tamblin");
    window->initialize();
    window->setTitle("Tamblin");
    window->show();
    YrIdleProbe::installFromEnvironment(window->shell());
  }
  return app->run();
}
