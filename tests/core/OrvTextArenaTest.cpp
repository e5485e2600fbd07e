#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/OrvTextArena.h"

namespace {

// Copies must stay intact while many more, small and large, are made after
// them, and across chunk boundaries.
TEST(OrvTextArena, CopiesStayPutAndIntact) {
  struct Case {
    const char* name;
    size_t length;
    int copies;
  };
  const Case cases[] = {
      {"one byte", 1, 1},
      {"short texts over many chunks", 61, 5000},
      {"just below a quarter chunk", (size_t(1) << 14) - 1, 20},
      {"a quarter chunk and more", size_t(1) << 14, 5},
      {"larger than a chunk", (size_t(1) << 16) + 3, 3},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    OrvTextArena arena;
    std::vector<std::string> texts;
    std::vector<const char*> copies;
    for (int i = 0; i < c.copies; i++) {
      texts.push_back(std::string(c.length, char('a' + i % 26)));
      texts.back()[0] = char('0' + i % 10);
      copies.push_back(arena.Copy(texts.back().data(), texts.back().size()));
      arena.Copy("x", 1);  // a neighbour that must not overwrite it
    }
    for (int i = 0; i < c.copies; i++)
      ASSERT_EQ(std::string(copies[i], c.length), texts[i]) << "copy " << i;
    arena.FreeAll();
    const char* again = arena.Copy(texts[0].data(), texts[0].size());
    EXPECT_EQ(std::string(again, c.length), texts[0]);
  }
}

TEST(OrvTextArena, NothingToCopyGivesNull) {
  OrvTextArena arena;
  EXPECT_EQ(arena.Copy("abc", 0), nullptr);
  EXPECT_EQ(arena.Copy(nullptr, 3), nullptr);
}

}  // namespace
