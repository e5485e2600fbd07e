// The crawl frontier keeps first-in first-out order across its node blocks
// and reuses the nodes it gave back.

#include <gtest/gtest.h>

#include <deque>
#include <vector>

#include "estimate/OrvPageQueue.h"

namespace {

TEST(PageQueue, KeepsOrderAcrossBlocksAndReusedNodes) {
  std::vector<OrvPageRecord> records(200);
  OrvPageQueue queue;
  std::deque<OrvPageRecord*> expected;
  EXPECT_EQ(queue.RemoveHead(), nullptr);
  // Rounds of adding at both ends and removing, so nodes come from the
  // released chain, from partly used blocks and from new ones.
  size_t next = 0;
  for (int round = 0; round < 6; round++) {
    for (int i = 0; i < 25 && next < records.size(); i++) {
      OrvPageRecord* r = &records[next++];
      if (i % 5 == 0) {
        queue.AddHead(r);
        expected.push_front(r);
      } else {
        queue.AddTail(r);
        expected.push_back(r);
      }
    }
    for (int i = 0; i < 10 + round * 3; i++) {
      ASSERT_EQ(queue.RemoveHead(), expected.front());
      expected.pop_front();
    }
    ASSERT_EQ(queue.Count(), int32_t(expected.size()));
  }
  while (!expected.empty()) {
    ASSERT_EQ(queue.RemoveHead(), expected.front());
    expected.pop_front();
  }
  EXPECT_EQ(queue.RemoveHead(), nullptr);
  EXPECT_EQ(queue.Count(), 0);
  queue.AddTail(&records[0]);
  EXPECT_EQ(queue.RemoveHead(), &records[0]);
}

}  // namespace
