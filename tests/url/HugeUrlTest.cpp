#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>

#include "UrlTestSupport.h"

namespace {

// MemAvailable of /proc/meminfo in bytes, 0 when unknown.
uint64_t AvailableMemory() {
  std::ifstream in("/proc/meminfo");
  std::string name;
  uint64_t kib = 0;
  while (in >> name >> kib) {
    if (name == "MemAvailable:") return kib * 1024;
    in.ignore(64, '\n');
  }
  return 0;
}

// A text of 2^31 - 1 bytes, the most a length may say: the byte masks' word
// count once wrapped from 2^31 - 63 bytes on, and their last word ends past
// the 32-bit range. One length only: each costs seconds.
TEST(Url, TextOfTheLongestLength) {
  // The text, its stem copy and the masks.
  constexpr uint64_t kNeeded = uint64_t(6) << 30;
  if (AvailableMemory() < kNeeded)
    GTEST_SKIP() << "needs " << (kNeeded >> 30) << " GiB of free memory";
  const char head[] = "http://h/d/", tail[] = ".y?b=2&a=1#f";
  for (int32_t n : {INT32_MAX}) {
    OrvWebPageUrl u;
    u.url.Reserve(n);
    std::memcpy(u.url.buf, head, sizeof head - 1);
    int32_t stem = n - int32_t(sizeof head - 1) - int32_t(sizeof tail - 1);
    std::memset(u.url.buf + sizeof head - 1, 's', size_t(stem));
    std::memcpy(u.url.buf + n - (sizeof tail - 1), tail, sizeof tail - 1);
    u.url.len = n;
    u.Parse(1);
    EXPECT_EQ(Str(u.scheme), "http") << n;
    EXPECT_EQ(Str(u.host), "h") << n;
    ASSERT_EQ(u.dirs.count, 1) << n;
    EXPECT_EQ(std::string(u.dirs[0]), "d") << n;
    EXPECT_EQ(u.stem.len, stem) << n;
    EXPECT_EQ(u.stem.buf[stem - 1], 's') << n;
    EXPECT_EQ(Str(u.ext), "y") << n;
    ASSERT_EQ(u.paramCount, 2) << n;
    EXPECT_EQ(Str(u.params[0].name) + Str(u.params[1].name), "ab") << n;
  }
}

}  // namespace
