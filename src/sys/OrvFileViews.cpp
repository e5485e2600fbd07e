#include "sys/OrvFileViews.h"

#include <sys/mman.h>
#include <unistd.h>

#include <mutex>
#include <vector>

#include "core/OrvMemory.h"

namespace {

struct View {
  const void* owner;
  const char* start;  // what Load gave
  void* base;         // the page-aligned mapping behind it
  size_t mappedBytes;
  uint64_t fileEnd;
};

struct Views {
  std::mutex lock;
  std::vector<View, OrvAllocator<View>> list;
};

Views& AllViews() {
  static Views views;
  return views;
}

}  // namespace

void* OrvMapFileView(const void* owner, int fd, int64_t offset, uint32_t length) {
  const uint64_t page = uint64_t(sysconf(_SC_PAGESIZE));
  const uint64_t lead = uint64_t(offset) % page;
  const size_t bytes = size_t(lead + length);
  void* base = mmap(nullptr, bytes, PROT_READ, MAP_SHARED, fd, off_t(uint64_t(offset) - lead));
  if (base == MAP_FAILED) return nullptr;
  char* start = static_cast<char*>(base) + lead;
  Views& views = AllViews();
  std::lock_guard<std::mutex> hold(views.lock);
  views.list.push_back({owner, start, base, bytes, uint64_t(offset) + length});
  return start;
}

int OrvUnmapFileView(const void* owner, const void* view) {
  Views& views = AllViews();
  std::lock_guard<std::mutex> hold(views.lock);
  for (size_t i = 0; i < views.list.size(); i++) {
    const View& v = views.list[i];
    if (v.owner != owner || v.start != view) continue;
    munmap(v.base, v.mappedBytes);
    views.list.erase(views.list.begin() + long(i));
    return 1;
  }
  return 0;
}

void OrvUnmapAllFileViews(const void* owner) {
  Views& views = AllViews();
  std::lock_guard<std::mutex> hold(views.lock);
  size_t kept = 0;
  for (const View& v : views.list) {
    if (v.owner == owner)
      munmap(v.base, v.mappedBytes);
    else
      views.list[kept++] = v;
  }
  views.list.resize(kept);
}

int OrvCountFileViews(const void* owner) {
  Views& views = AllViews();
  std::lock_guard<std::mutex> hold(views.lock);
  int n = 0;
  for (const View& v : views.list) n += v.owner == owner;
  return n;
}

uint64_t OrvFileViewsEnd(const void* owner) {
  Views& views = AllViews();
  std::lock_guard<std::mutex> hold(views.lock);
  uint64_t end = 0;
  for (const View& v : views.list)
    if (v.owner == owner && v.fileEnd > end) end = v.fileEnd;
  return end;
}
