// main of the interface tests: every test runs against a private Xvfb.
#include <gtest/gtest.h>

#include "util/XvfbServer.h"

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  XvfbServer server(XVFB_PATH);
  if (server.display().empty()) return 1;
  return RUN_ALL_TESTS();
}
