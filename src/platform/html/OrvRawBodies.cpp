#include "platform/html/OrvRawBodies.h"

#include <cstring>

#include "core/OrvMemory.h"
#include "platform/html/OrvPageTaming.h"
#include "platform/html/OrvTagWalk.h"

namespace {

constexpr uint64_t kOnes = 0x0101010101010101ull;
constexpr uint64_t kHighs = 0x8080808080808080ull;

// Eight printable ASCII bytes, none of them '<': nothing to drop or count.
bool IsPlainWord(const unsigned char* p) {
  uint64_t w;
  std::memcpy(&w, p, 8);
  if (w & kHighs) return false;
  uint64_t control = (w - kOnes * 0x20) & ~w & kHighs;
  uint64_t lt = w ^ (kOnes * '<');
  uint64_t angle = (lt - kOnes) & ~lt & kHighs;
  return (control | angle) == 0;
}

}  // namespace

OrvOwned<char> OrvCutRawBodies(const char* page, size_t size, OrvRawBodies& bodies,
                               size_t& cutSize) {
  size_t cut = 0;
  OrvWalkTags(page, size, OrvMaxAttributes, [&](const OrvTag& tag) {
    // Left to the parser: a tag or body the page ends in, a tag that may
    // close itself, an empty body, and one that starts like markup, which
    // the parser looks at before it reads a body.
    if (!tag.raw || tag.bodyEnd >= size || page[tag.end - 1] == '/') return;
    size_t from = tag.end + 1;
    if (from >= tag.bodyEnd || page[from] == '<') return;
    bodies.list.push_back(OrvRawBody{tag.end - cut, from, tag.bodyEnd, tag.nameLength == 5});
    cut += tag.bodyEnd - from;
  });
  if (bodies.list.empty()) return nullptr;
  cutSize = size - cut;
  OrvOwned<char> owned = OrvAllocOwned<char>(cutSize);
  char* out = owned.get();
  size_t o = 0;
  size_t i = 0;
  for (const OrvRawBody& body : bodies.list) {
    std::memcpy(out + o, page + i, body.from - i);
    o += body.from - i;
    i = body.to;
  }
  std::memcpy(out + o, page + i, size - i);
  return owned;
}

bool OrvReadRawBody(const char* body, size_t n, OrvRawRunSink add, void* user,
                    uint64_t& strayEndTags) {
  const auto* p = reinterpret_cast<const unsigned char*>(body);
  strayEndTags = 0;
  size_t run = 0;
  size_t i = 0;
  while (i < n) {
    if (n - i >= 8 && IsPlainWord(p + i)) {
      i += 8;
      continue;
    }
    unsigned char c = p[i];
    size_t drop = 0;
    if (c == '<') {
      if (i + 1 < n && p[i + 1] == '/') strayEndTags++;
    } else if (c == 0xEF) {
      if (i + 2 < n && p[i + 1] == 0xBF && (p[i + 2] == 0xBE || p[i + 2] == 0xBF)) drop = 3;
    } else if (c == 0) {
      return false;
    } else if (c < 0x20 && c != '\t' && c != '\n' && c != '\r') {
      drop = 1;
    }
    if (drop) {
      if (i > run) add(body + run, i - run, user);
      i += drop;
      run = i;
    } else {
      i++;
    }
  }
  if (n > run) add(body + run, n - run, user);
  return true;
}
