#include "filelist/RowSelection.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace {

using Step = std::function<void(RowSelection&)>;

// Every row's flag, counted again the slow way: what count(), has() and
// positions() must agree with after any sequence of operations.
std::vector<int> slowPositions(const RowSelection& s) {
  std::vector<int> out;
  for (int p = 1; p <= s.size(); ++p)
    if (s.flags()[p - 1]) out.push_back(p);
  return out;
}

TEST(RowSelectionTest, GesturesLeaveExactlyTheRowsTheUserNamed) {
  struct Case {
    const char* name;
    int rows;
    std::vector<Step> steps;
    std::vector<int> expected;
  } cases[] = {
      {"click", 10, {[](RowSelection& s) { s.selectOnly(4); }}, {4}},
      {"click replaces", 10,
       {[](RowSelection& s) { s.selectOnlyRange(2, 8); }, [](RowSelection& s) { s.selectOnly(9); }},
       {9}},
      {"ctrl-click adds and removes", 10,
       {[](RowSelection& s) { s.selectOnly(2); }, [](RowSelection& s) { s.toggle(5); },
        [](RowSelection& s) { s.toggle(2); }, [](RowSelection& s) { s.toggle(7); }},
       {5, 7}},
      {"shift-click either way round", 10, {[](RowSelection& s) { s.selectOnlyRange(6, 3); }},
       {3, 4, 5, 6}},
      {"drag shrinks the range", 10,
       {[](RowSelection& s) { s.selectOnlyRange(2, 9); }, [](RowSelection& s) { s.selectOnlyRange(2, 4); }},
       {2, 3, 4}},
      {"ctrl-drag keeps the rest", 10,
       {[](RowSelection& s) { s.selectOnly(1); }, [](RowSelection& s) { s.setRange(4, 6, true); },
        [](RowSelection& s) { s.setRange(5, 10, false); }},
       {1, 4}},
      {"select all, then a range off", 6,
       {[](RowSelection& s) { s.selectAll(); }, [](RowSelection& s) { s.setRange(2, 3, false); }},
       {1, 4, 5, 6}},
      {"out of range is ignored or cut", 5,
       {[](RowSelection& s) { s.selectOnly(0); }, [](RowSelection& s) { s.toggle(6); },
        [](RowSelection& s) { s.setRange(4, 99, true); }, [](RowSelection& s) { s.setRange(-3, 1, true); }},
       {1, 4, 5}},
      {"clear after a far toggle", 1000,
       {[](RowSelection& s) { s.toggle(999); }, [](RowSelection& s) { s.toggle(3); },
        [](RowSelection& s) { s.clear(); }, [](RowSelection& s) { s.toggle(500); }},
       {500}},
      {"assign, then click", 5,
       {[](RowSelection& s) { s.assign({1, 0, 1, 0, 1, 1, 1}); },  // too long: cut
        [](RowSelection& s) { s.toggle(3); }},
       {1, 5}},
      {"rows that go drop out", 8,
       {[](RowSelection& s) { s.selectOnlyRange(3, 8); }, [](RowSelection& s) { s.resize(5); },
        [](RowSelection& s) { s.resize(8); }},
       {3, 4, 5}},
      {"empty list", 0,
       {[](RowSelection& s) { s.selectAll(); }, [](RowSelection& s) { s.selectOnly(1); }}, {}},
  };
  for (const Case& c : cases) {
    RowSelection s;
    s.resize(c.rows);
    for (const Step& step : c.steps) {
      step(s);
      // count, positions and the flags agree after every operation.
      EXPECT_EQ(slowPositions(s), s.positions()) << c.name;
      EXPECT_EQ(static_cast<int>(slowPositions(s).size()), s.count()) << c.name;
    }
    EXPECT_EQ(c.expected, s.positions()) << c.name;
    for (int p = 0; p <= c.rows + 1; ++p) {
      bool inExpected = std::find(c.expected.begin(), c.expected.end(), p) != c.expected.end();
      EXPECT_EQ(inExpected, s.has(p)) << c.name << " position " << p;
    }
  }
}

}  // namespace
