#include "util/Format.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(FormatTest, Table) {
  const std::string longName(10000, 'x');
  const std::string percents = "100%s %d %n%%";
  struct Case {
    std::string got;
    std::string expected;
  } cases[] = {
      // Far past any buffer a formatter might keep on the stack.
      {format("Opened idb '%s'.", longName.c_str()), "Opened idb '" + longName + "'."},
      {format("%s%s", longName.c_str(), longName.c_str()), longName + longName},
      // Inserted text is copied as it is, its own '%' signs included.
      {format("Couldn't open include '%s' (%s).", percents.c_str(), "No such file"),
       "Couldn't open include '100%s %d %n%%' (No such file)."},
      {format("'%s' was read only in part", "a\tb\nc"), "'a\tb\nc' was read only in part"},
      // Empty results, from an empty format and from empty arguments.
      {format("%s", ""), ""},
      {format("%s%.0s", "", "dropped"), ""},
      {format("View::setView\tUnrecognized view: %d\n", 5),
       "View::setView\tUnrecognized view: 5\n"},
      {format("(%zu earlier messages are no longer shown.)", static_cast<std::size_t>(12)),
       "(12 earlier messages are no longer shown.)"},
      {format("Tamblin %22s%s", " ", "1.0"), "Tamblin                       1.0"},
      {format("%04o %c%%", 0755, 'f'), "0755 f%"},
  };
  for (const Case& c : cases) EXPECT_EQ(c.expected, c.got);
  EXPECT_EQ(longName.size() + 14, cases[0].got.size());
}

}  // namespace
