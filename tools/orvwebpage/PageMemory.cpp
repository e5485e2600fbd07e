#include "PageMemory.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>

#include "Command.h"

namespace {

// What one tag costs while the tree is built, measured on pages of nothing
// but tags, and how many copies of the page's bytes are alive at once.
constexpr uint64_t kBytesPerTag = 160;
constexpr uint64_t kPageCopies = 4;
// Links read as they are parsed: the parser's stack for every tag, and each
// link's texts and their classification, with room to spare.
constexpr uint64_t kBytesPerStackTag = 16;
constexpr uint64_t kBytesPerLink = 160;

uint64_t AvailableSystemMemory() {
  std::ifstream in("/proc/meminfo");
  std::string name;
  uint64_t kib = 0;
  while (in >> name >> kib) {
    if (name == "MemAvailable:") return kib * 1024;
    in.ignore(64, '\n');
  }
  return UINT64_MAX;
}

// The address-space limit less what the process maps now.
uint64_t AddressSpaceLeft() {
  rlimit limit{};
  if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return UINT64_MAX;
  std::ifstream statm("/proc/self/statm");
  uint64_t pages = 0;
  statm >> pages;
  uint64_t mapped = pages * uint64_t(sysconf(_SC_PAGESIZE));
  return limit.rlim_cur > mapped ? limit.rlim_cur - mapped : 0;
}

std::string Megabytes(uint64_t bytes) { return std::to_string((bytes + (1 << 20) - 1) >> 20); }

bool IsLinkTag(const char *p, const char *end) {
  return end - p >= 3 && (p[1] | 0x20) == 'a' &&
         (p[2] == ' ' || p[2] == '\t' || p[2] == '\n' || p[2] == '>' || (p[2] | 0x20) == 'r');
}

}  // namespace

void CheckPageMemory(std::string_view page, PageTree tree) {
  uint64_t tags = 0, links = 0;
  const char *end = page.data() + page.size();
  for (const char *p = page.data();
       (p = static_cast<const char *>(std::memchr(p, '<', size_t(end - p)))) != nullptr; p++) {
    tags++;
    if (tree == PageTree::kLinks && IsLinkTag(p, end)) links++;
  }
  uint64_t needed = kPageCopies * page.size() + kBytesPerTag * tags;
  if (tree == PageTree::kLinks)
    needed = kPageCopies * page.size() + kBytesPerStackTag * tags + kBytesPerLink * links;
  uint64_t left = std::min(AddressSpaceLeft(), AvailableSystemMemory());
  if (needed > left)
    throw CommandError("the page needs about " + Megabytes(needed) + " MB of memory to read, " +
                       "more than the " + Megabytes(left) + " MB left to this process");
}
