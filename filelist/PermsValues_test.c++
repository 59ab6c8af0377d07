#include "filelist/PermsValues.h"

#include <gtest/gtest.h>
#include <grp.h>
#include <pwd.h>

#include <string>

namespace {

TEST(PermsValuesTest, SymbolicModeTable) {
  struct Case {
    unsigned long mode;
    const char* expected;
  } cases[] = {
      {0, "---------"},         {0755, "rwxr-xr-x"},      {0644, "rw-r--r--"},
      {04755, "rwsr-xr-x"},     {04644, "rwSr--r--"},     {02745, "rwxr-lr-x"},
      {02755, "rwxr-sr-x"},     {01777, "rwxrwxrwt"},     {01776, "rwxrwxrwT"},
      {07777, "rwsrwsrwt"},     {07000, "--S--l--T"},     {0111, "--x--x--x"},
      {0222, "-w--w--w-"},      {0444, "r--r--r--"},      {0100644, "rw-r--r--"},
  };
  for (const Case& c : cases) EXPECT_EQ(c.expected, PermsValues::pmode(c.mode)) << std::oct << c.mode;
}

TEST(PermsValuesTest, ModeTextReadAsOctalAndShownWithLeadingZero) {
  struct Case {
    const char* typed;
    unsigned long value;
    const char* shown;
  } cases[] = {
      {"", 0, "00"},          {"755", 0755, "0755"},  {"0755", 0755, "0755"},
      {"  644", 0644, "0644"}, {"+4755", 04755, "04755"}, {"78", 07, "07"},
      {"rwx", 0, "00"},       {"9", 0, "00"},         {"1777abc", 01777, "01777"},
  };
  for (const Case& c : cases) {
    unsigned long v = PermsValues::parseMode(c.typed);
    EXPECT_EQ(c.value, v) << c.typed;
    EXPECT_EQ(c.shown, PermsValues::formatMode(v)) << c.typed;
  }
}

TEST(PermsValuesTest, OwnerAndGroupNormalisedThroughTheirIds) {
  struct passwd* user0 = getpwuid(0);
  struct group* group0 = getgrgid(0);
  ASSERT_NE(nullptr, user0);
  ASSERT_NE(nullptr, group0);
  const std::string root = user0->pw_name;
  const std::string rootGroup = group0->gr_name;
  struct Case {
    std::string typed;
    long ownerId;
    std::string ownerName;
    long groupId;
    std::string groupName;
  } cases[] = {
      {"0", 0, root, 0, rootGroup},
      {root, 0, root, 0, rootGroup},
      {"no-such-name-here", 0, root, 0, rootGroup},  // read as id 0
      {"54321", 54321, "unknown", 54321, "unknown"},
  };
  for (const Case& c : cases) {
    PermsValues::Identity owner = PermsValues::lookUpOwner(c.typed);
    EXPECT_EQ(c.ownerId, owner.id) << c.typed;
    EXPECT_EQ(c.ownerName, owner.name) << c.typed;
    PermsValues::Identity group = PermsValues::lookUpGroup(c.typed);
    EXPECT_EQ(c.groupId, group.id) << c.typed;
    EXPECT_EQ(c.groupName, group.name) << c.typed;
  }
  // A group name that is not a user name is found in the group database.
  if (struct group* g = getgrnam("daemon")) {
    EXPECT_EQ(static_cast<long>(g->gr_gid), PermsValues::lookUpGroup("daemon").id);
    EXPECT_EQ("daemon", PermsValues::lookUpGroup("daemon").name);
  }
}

TEST(PermsValuesTest, DestinationSplitAndAbsoluteDirectoryRefused) {
  struct Case {
    const char* dst;
    const char* dir;
    const char* file;
  } cases[] = {
      {"usr/bin/ls", "usr/bin", "ls"},
      {"ls", "", "ls"},
      {"etc/", "", "etc"},
      {"a//b", "a", "b"},
  };
  for (const Case& c : cases) {
    PermsValues::Destination d = PermsValues::splitDestination(c.dst);
    EXPECT_EQ(c.dir, d.dir) << c.dst;
    EXPECT_EQ(c.file, d.file) << c.dst;
  }
  EXPECT_EQ("", PermsValues::checkDestDir("usr/bin"));
  EXPECT_EQ("", PermsValues::checkDestDir(""));
  EXPECT_EQ(
      "Destinination Directory '/usr/bin' is fully qualified.\nStrip the leading slash at least."
      "  The Destination Tree Root\nwill be prepended at install time.",
      PermsValues::checkDestDir("/usr/bin"));
}

}  // namespace
