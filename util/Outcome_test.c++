#include "util/Outcome.h"

#include <errno.h>

#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace {

TEST(OutcomeTest, KeepsMessageAndErrorNumber) {
  const std::string longMessage(5000, 'm');
  struct Case {
    Outcome status;
    bool ok;
    std::string message;
    int code;
  } cases[] = {
      {Outcome(), true, "", 0},
      {Outcome::success(), true, "", 0},
      {Outcome::error("Expected owner in field 3"), false, "Expected owner in field 3", 0},
      {Outcome::error("No space left on device", ENOSPC), false, "No space left on device", ENOSPC},
      // A failure with nothing to say is still a failure.
      {Outcome::error(""), false, "", 0},
      // Negative numbers are kept too: AtomicFile uses one for "not a regular file".
      {Outcome::error("Not a regular file", -1), false, "Not a regular file", -1},
      {Outcome::error(longMessage, EIO), false, longMessage, EIO},
      // Bytes a message may carry from a file name pass unchanged.
      {Outcome::error(std::string("a\0b\n%s", 6), 1), false, std::string("a\0b\n%s", 6), 1},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(c.ok, c.status.ok()) << c.message;
    EXPECT_EQ(c.message, c.status.message());
    EXPECT_EQ(c.code, c.status.code()) << c.message;
  }
}

TEST(OutcomeTest, CopiesAndMovesKeepTheFailure) {
  Outcome original = Outcome::error("Couldn't open idb 'a' (Permission denied).", EACCES);
  Outcome copy = original;
  Outcome assigned;
  assigned = original;
  for (const Outcome* s : {&original, &copy, &assigned}) {
    EXPECT_FALSE(s->ok());
    EXPECT_EQ("Couldn't open idb 'a' (Permission denied).", s->message());
    EXPECT_EQ(EACCES, s->code());
  }
  Outcome moved = std::move(copy);
  EXPECT_EQ(EACCES, moved.code());
  EXPECT_EQ("Couldn't open idb 'a' (Permission denied).", moved.message());

  // Assigning ok over a failure clears it, and a self-assignment keeps it.
  assigned = Outcome::success();
  EXPECT_TRUE(assigned.ok());
  EXPECT_EQ("", assigned.message());
  EXPECT_EQ(0, assigned.code());
  Outcome& alias = original;
  original = alias;
  EXPECT_EQ(EACCES, original.code());
  EXPECT_EQ("Couldn't open idb 'a' (Permission denied).", original.message());
}

}  // namespace
