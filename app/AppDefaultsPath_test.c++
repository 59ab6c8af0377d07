#include "app/AppDefaultsPath.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

TEST(AppDefaultsPathTest, InstalledPlacesComeBeforeXtsOwnOrAfterTheUsers) {
  const std::string xt = kXtDefaultFileSearchPath;
  const std::string local = "/usr/local/share/X11/%T/%N%C%S:/usr/local/share/X11/%T/%N%S";
  const std::string staged = "/d/etc/X11/%T/%N%C%S:/d/etc/X11/%T/%N%S:"
                             "/d/usr/share/X11/%T/%N%C%S:/d/usr/share/X11/%T/%N%S";
  struct Case {
    std::string exe;
    const char* current;
    std::string path;
  };
  const std::vector<Case> cases = {
      {"/usr/local/bin/tamblin", nullptr, local + ":" + xt},
      {"/usr/local/bin/tamblin", "", local + ":" + xt},
      {"/usr/local/bin/tamblin", "/site/%T/%N", "/site/%T/%N:" + local},
      // Prefix /usr puts the file in /etc/X11/app-defaults; staged under a
      // DESTDIR the program finds it there too.
      {"/d/usr/bin/tamblin", nullptr, staged + ":" + xt},
      {"/usr/bin/tamblin", nullptr,
       "/etc/X11/%T/%N%C%S:/etc/X11/%T/%N%S:/usr/share/X11/%T/%N%C%S:/usr/share/X11/%T/%N%S:" + xt},
      {"/opt/a:b%c/bin/tamblin", nullptr,
       "/opt/a%:b%%c/share/X11/%T/%N%C%S:/opt/a%:b%%c/share/X11/%T/%N%S:" + xt},
      // A build tree: nothing to add.
      {"/src/out/test/app/tamblin", nullptr, ""},
      {"/src/out/test/app/tamblin", "/site/%T/%N", ""},
      {"tamblin", nullptr, ""},
  };
  for (const Case& c : cases)
    EXPECT_EQ(c.path, appDefaultsSearchPath(c.exe, c.current)) << c.exe;
}
