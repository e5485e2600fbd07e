#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "core/OrvOwned.h"
#include "orvwebpage/OrvMemoryUse.h"
#include "support/Cases.h"

// Regrowing keeps the slots both sizes have, and once the owner is gone every
// byte it held is given back to the count the budgets read.
TEST(Owned, RegrowKeepsSlotsAndGivesEveryByteBack) {
  for (const auto& c : ReadCases(ORV_CASES_DIR "/core/owned.tsv", 1)) {
    SCOPED_TRACE(c[0]);
    std::vector<int32_t> sizes = Numbers(c[0]);
    const int64_t before = OrvGetHeldBytes();
    {
      OrvOwned<int32_t[]> slots = OrvAllocOwned<int32_t[]>(size_t(sizes[0]));
      ASSERT_TRUE(slots);
      EXPECT_GT(OrvGetHeldBytes(), before);
      for (int32_t i = 0; i < sizes[0]; i++) slots[i] = i * 7;
      for (size_t k = 1; k < sizes.size(); k++) {
        OrvReallocOwned(slots, size_t(sizes[k]));
        const int32_t kept = std::min(sizes[k - 1], sizes[k]);
        for (int32_t i = 0; i < kept; i++) ASSERT_EQ(slots[i], i * 7) << "slot " << i;
        for (int32_t i = kept; i < sizes[k]; i++) slots[i] = i * 7;
      }
    }
    EXPECT_EQ(OrvGetHeldBytes(), before);
  }
}
