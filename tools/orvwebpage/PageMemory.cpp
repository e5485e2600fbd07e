#include "PageMemory.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>

#include "Command.h"

namespace {

// What one item of the tree costs with its share of the analysis, measured on
// pages of nothing but tags, what each level of depth above a text adds to the
// analysis, what the parser's stack holds for every tag, and how many copies
// of the page's bytes are alive at once.
constexpr uint64_t kBytesPerItem = 160;
constexpr uint64_t kBytesPerLevel = 400;
constexpr uint64_t kBytesPerStackTag = 16;
// An open element with attributes, before its first text.
constexpr uint64_t kBytesPerDeferred = 48;
constexpr uint64_t kPageCopies = 4;
// Links read as they are parsed: each link's texts and their classification,
// with room to spare.
constexpr uint64_t kBytesPerLink = 160;

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }

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
  // Tags, start tags before the last text, texts, links, and the deepest
  // nesting a text is met at: start tags less end tags, never below none.
  uint64_t tags = 0, starts = 0, startsBeforeText = 0, texts = 0, links = 0;
  uint64_t open = 0, deepestText = 0, deferredBytes = 0;
  std::string_view lastStart;
  const char *end = page.data() + page.size();
  const char *after = page.data();  // where the text after the last tag starts
  for (const char *p = page.data();; p++) {
    const char *tag = static_cast<const char *>(std::memchr(p, '<', size_t(end - p)));
    const char *stop = tag ? tag : end;
    if (tree == PageTree::kTexts && std::find_if_not(after, stop, IsBlank) != stop) {
      texts++;
      startsBeforeText = starts;
      deepestText = std::max(deepestText, open);
    }
    if (!tag) break;
    p = tag;
    tags++;
    if (end - p >= 2 && p[1] == '/') {
      open -= open > 0;
    } else if (end - p >= 2 && std::isalpha(static_cast<unsigned char>(p[1]))) {
      starts++;
      open++;
      if (tree == PageTree::kLinks && IsLinkTag(p, end)) links++;
    }
    const char *close = static_cast<const char *>(std::memchr(p, '>', size_t(end - p)));
    if (tree == PageTree::kTexts && (end - p < 2 || p[1] != '/')) {
      // A start tag with attributes waits with them until a text comes below
      // it, unless it repeats the one before.
      std::string_view start(p, size_t((close ? close : end) - p));
      if (std::find_if(start.begin(), start.end(), IsBlank) != start.end() && start != lastStart)
        deferredBytes += kBytesPerDeferred + start.size();
      lastStart = start;
    }
    after = close ? close + 1 : end;
    if (close) p = close;
  }
  uint64_t needed = kPageCopies * page.size() + kBytesPerStackTag * tags;
  if (tree == PageTree::kLinks)
    needed += kBytesPerLink * links;
  else
    needed +=
        kBytesPerItem * (startsBeforeText + texts) + kBytesPerLevel * deepestText + deferredBytes;
  uint64_t left = std::min(AddressSpaceLeft(), AvailableSystemMemory());
  if (needed > left)
    throw CommandError("the page needs about " + Megabytes(needed) + " MB of memory to read, " +
                       "more than the " + Megabytes(left) + " MB left to this process");
}
