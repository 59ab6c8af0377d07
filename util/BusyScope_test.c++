#include "util/BusyScope.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "util/BusyIndicator.h"

namespace {

class RecordingIndicator : public BusyIndicator {
 public:
  void busy(const std::string& message) override { events.push_back("busy:" + message); }
  void notBusy() override { events.push_back("notBusy"); }
  void stillBusy() override { events.push_back("still"); }
  std::vector<std::string> events;
};

// Returns early from inside the scope, as a refused operation does.
bool refuseHalfway(BusyIndicator* indicator, bool refuse) {
  BusyScope busy(indicator);
  if (refuse) return false;
  busy.stillBusy();
  return true;
}

}  // namespace

TEST(BusyScopeTest, EveryWayOutEndsTheBusyStateExactlyOnce) {
  using Events = std::vector<std::string>;
  RecordingIndicator early;
  EXPECT_FALSE(refuseHalfway(&early, true));
  EXPECT_EQ((Events{"busy:", "notBusy"}), early.events);

  RecordingIndicator through;
  EXPECT_TRUE(refuseHalfway(&through, false));
  EXPECT_EQ((Events{"busy:", "still", "notBusy"}), through.events);

  // Released before a dialog: later calls and the end of the scope are silent.
  RecordingIndicator released;
  {
    BusyScope busy(&released, "Added \n3 files.");
    busy.release();
    busy.release();
    busy.stillBusy();
  }
  EXPECT_EQ((Events{"busy:Added \n3 files.", "notBusy"}), released.events);

  // Nested scopes pair up innermost first.
  RecordingIndicator nested;
  {
    BusyScope outer(&nested);
    { BusyScope inner(&nested, "inner"); }
    EXPECT_EQ((Events{"busy:", "busy:inner", "notBusy"}), nested.events);
  }
  EXPECT_EQ(4u, nested.events.size());
  EXPECT_EQ("notBusy", nested.events.back());
}
