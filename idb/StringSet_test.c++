#include "idb/StringSet.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

std::vector<std::string> contents(const StringSet& s) {
  std::vector<std::string> out;
  for (int i = 0; i < s.count(); ++i) out.push_back(s[i]);
  return out;
}

TEST(StringSetTest, DuplicatesReturnTheStoredElement) {
  StringSet s("Tags in Spec Graph");
  const char* first = s.add("a");
  std::string copy = "a";
  EXPECT_EQ(first, s.add(copy.c_str()));
  EXPECT_EQ(1, s.count());
  EXPECT_EQ(first, s.find("a"));
  EXPECT_EQ(nullptr, s.find(nullptr));
  EXPECT_EQ(nullptr, s.find("b"));
  EXPECT_EQ("Tags in Spec Graph", s.name());
}

TEST(StringSetTest, InsertionOrderUntilSorted) {
  StringSet s("items");
  s.add("b");
  s.add("a");
  s.add("c");
  EXPECT_EQ((std::vector<std::string>{"b", "a", "c"}), contents(s));
  s.sort();
  EXPECT_EQ((std::vector<std::string>{"a", "b", "c"}), contents(s));
  // Byte order, not locale order.
  s.add("B");
  s.sort();
  EXPECT_EQ((std::vector<std::string>{"B", "a", "b", "c"}), contents(s));
}

TEST(StringSetTest, RemoveKeepsOrderAndPointers) {
  StringSet s("selectedItems");
  s.remove("x");  // empty set: nothing happens
  const char* a = s.add("a");
  s.add("b");
  const char* c = s.add("c");
  s.remove("zzz");
  EXPECT_EQ(3, s.count());
  s.remove("b");
  EXPECT_EQ((std::vector<std::string>{"a", "c"}), contents(s));
  EXPECT_EQ(nullptr, s[2]);
  EXPECT_EQ(nullptr, s[-1]);
  EXPECT_EQ(nullptr, s.find("b"));
  // The other elements did not move in memory.
  EXPECT_EQ(a, s.find("a"));
  EXPECT_EQ(c, s.find("c"));
  // A removed element can come back, at the end.
  s.add("b");
  EXPECT_EQ((std::vector<std::string>{"a", "c", "b"}), contents(s));
}

TEST(StringSetTest, PointersSurviveGrowthAndManyElements) {
  StringSet s("Source Paths In Directory");
  const char* first = s.add("path/0");
  for (int i = 1; i < 200000; ++i) s.add("path/" + std::to_string(i));
  for (int i = 0; i < 200000; i += 7) s.add("path/" + std::to_string(i));
  EXPECT_EQ(200000, s.count());
  EXPECT_EQ(first, s.find("path/0"));
  EXPECT_STREQ("path/199999", s[199999]);
}

}  // namespace
