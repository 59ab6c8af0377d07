#include "idb/TextArena.h"

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

TEST(TextArenaTest, CopiesStayPutAndShareAcrossCopies) {
  TextArena arena;
  std::vector<const char*> stored;
  std::vector<std::string> texts;
  // Small and large pieces, enough to fill several chunks.
  for (int i = 0; i < 5000; ++i) {
    texts.push_back(std::string(static_cast<std::size_t>(i % 7 == 0 ? 20000 : i % 50), 'a' + i % 26) +
                    std::to_string(i));
    stored.push_back(arena.copy(texts.back()));
    const char** room = arena.pointers(3);
    EXPECT_EQ(0u, reinterpret_cast<std::uintptr_t>(room) % alignof(const char*));
    room[0] = room[1] = room[2] = stored.back();
  }
  TextArena copy(arena);
  // Each side goes on allocating; neither may write over the other's strings.
  const char* mine = arena.copy("mine");
  const char* theirs = copy.copy("theirs");
  EXPECT_STREQ("mine", mine);
  EXPECT_STREQ("theirs", theirs);
  arena.clear();
  EXPECT_EQ(0u, arena.bytes());
  for (std::size_t i = 0; i < texts.size(); ++i) ASSERT_EQ(texts[i], stored[i]) << i;

  char* buffer = copy.buffer(10);
  EXPECT_EQ('\0', buffer[10]);
  TextArena taker;
  taker.adopt(copy);
  EXPECT_EQ(0u, copy.bytes());
  EXPECT_STREQ("theirs", theirs);  // alive through taker
  EXPECT_EQ("", std::string(arena.copy("")));
}

}  // namespace
