#include "platform/html/OrvPageTaming.h"

#include <cstring>

#include "core/OrvOwned.h"
#include "platform/html/OrvTagWalk.h"

namespace {

bool LooksWide(const unsigned char* p, size_t n) {
  if (n >= 2 && ((p[0] == 0xFF && p[1] == 0xFE) || (p[0] == 0xFE && p[1] == 0xFF))) return true;
  return n >= 4 && (p[0] == 0 || p[1] == 0) && (p[2] == 0 || p[3] == 0);
}

struct Cut {
  size_t from;
  size_t to;
};

// Notes for every tag with too many attributes the stretch from its first
// attribute too many to its end. Returns the number of cuts found (at most
// capacity are stored; the caller scans again after applying them if there
// were more).
size_t FindCuts(const char* p, size_t n, Cut* cuts, size_t capacity) {
  size_t found = 0;
  OrvWalkTags(p, n, OrvMaxAttributes, [&](const OrvTag& tag) {
    if (!tag.cutFrom) return;
    if (found < capacity) cuts[found] = Cut{tag.cutFrom, tag.end};
    found++;
  });
  return found;
}

}  // namespace

OrvOwned<char> OrvTamePage(const char* text, size_t& length, bool mayBeWide) {
  OrvOwned<char> copy;
  const char* page = text;
  if (std::memchr(text, 0, length) &&
      !(mayBeWide && LooksWide(reinterpret_cast<const unsigned char*>(text), length))) {
    copy = OrvAllocOwned<char>(length);
    size_t kept = 0;
    for (size_t i = 0; i < length; i++) {
      if (text[i] != '\0') copy.get()[kept++] = text[i];
    }
    length = kept;
    page = copy.get();
  }
  Cut cuts[64];
  for (;;) {
    size_t found = FindCuts(page, length, cuts, 64);
    if (found == 0) break;
    if (!copy) {
      copy = OrvAllocOwned<char>(length);
      std::memcpy(copy.get(), text, length);
      page = copy.get();
    }
    size_t stored = found < 64 ? found : 64;
    size_t out = cuts[0].from;
    for (size_t k = 0; k < stored; k++) {
      size_t keepEnd = k + 1 < stored ? cuts[k + 1].from : length;
      std::memmove(copy.get() + out, copy.get() + cuts[k].to, keepEnd - cuts[k].to);
      out += keepEnd - cuts[k].to;
    }
    length = out;
    if (found <= 64) break;
  }
  return copy;
}
