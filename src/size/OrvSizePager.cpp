#include "size/OrvSizePager.h"

#include <algorithm>

#include "size/OrvUrlShape.h"

namespace {

// The label as a page number: digits alone, at most 9; else -1.
int64_t LabelNumber(const OrvSizeText& label) {
  if (label.empty() || label.size() > 9) return -1;
  int64_t n = 0;
  for (char c : label) {
    if (c < '0' || c > '9') return -1;
    n = n * 10 + (c - '0');
  }
  return n;
}

struct Sighting {
  int64_t value;
  int64_t label;  // -1 when the label is no number
  bool next;
  bool plain;  // the URL's last run of digits, not zero-padded
};

// How a group's numbered links map labels to values; false when they agree
// on no rule.
bool FitRule(const OrvSizeList<Sighting>& seen, int64_t& step, int64_t& offset, int32_t& fits) {
  fits = 0;
  for (const Sighting& s : seen) fits += s.label >= 1 && s.value == s.label;
  if (fits) {
    step = 1, offset = 1;
    return true;
  }
  // Offsets: two numbered links give the rule, the others must follow it.
  const Sighting* a = nullptr;
  const Sighting* b = nullptr;
  for (const Sighting& s : seen) {
    if (s.label < 1) continue;
    if (!a)
      a = &s;
    else if (s.label != a->label && !b)
      b = &s;
  }
  if (!a || !b) return false;
  int64_t dv = b->value - a->value, dl = b->label - a->label;
  if (dl == 0 || dv % dl != 0 || dv / dl <= 0) return false;
  step = dv / dl;
  offset = a->value - step * (a->label - 1);
  for (const Sighting& s : seen) fits += s.label >= 1 && s.value == offset + step * (s.label - 1);
  return fits >= 2;
}

}  // namespace

int64_t OrvSizePager::PageOf(int64_t value) const {
  if (step <= 0 || value < offset || (value - offset) % step != 0) return 0;
  return (value - offset) / step + 1;
}

bool OrvFindPager(const OrvSizeList<OrvSizeLink>& links, const OrvSizeList<OrvSizeText>& locals,
                  std::string_view pageLocal, OrvSizePager& pager) {
  OrvSizeTextMap<OrvSizeList<Sighting>> groups;
  OrvSizeList<OrvNumberSlot> slots;
  for (size_t i = 0; i < links.size() && i < locals.size(); ++i) {
    if (locals[i].empty() || locals[i] == pageLocal) continue;
    OrvNumberSlots(locals[i], slots);
    int64_t label = LabelNumber(links[i].label);
    for (OrvNumberSlot& slot : slots)
      groups[slot.pattern].push_back({slot.value, label, links[i].next, slot.last && !slot.padded});
  }
  bool found = false;
  for (auto& [pattern, seen] : groups) {
    OrvSizePager candidate;
    candidate.pattern = pattern;
    bool ruled = FitRule(seen, candidate.step, candidate.offset, candidate.numbered);
    for (const Sighting& s : seen) candidate.hasNext |= s.next;
    if (!ruled) {
      if (!candidate.hasNext) continue;
      // A lone "next" seen from the first page: page 2, or one offset on in a
      // query. From a page of the pattern it is an article's next one.
      if (OrvMatchPattern(pattern, pageLocal) >= 0) continue;
      int64_t value = 0;
      for (const Sighting& s : seen)
        if (s.next && s.plain && (value == 0 || s.value < value)) value = s.value;
      if (value == 2) {
        candidate.step = 1, candidate.offset = 1;
      } else if (value > 2 && pattern.find("={}") != OrvSizeText::npos) {
        candidate.step = value, candidate.offset = 0;
      } else {
        continue;
      }
    } else if (candidate.numbered < 2 && !candidate.hasNext) {
      // One link labelled with its number is a pager only as "2" seen from page 1.
      bool two = false;
      for (const Sighting& s : seen) two |= s.label == 2 && s.value == candidate.ValueOf(2);
      if (!two) continue;
    }
    for (const Sighting& s : seen) {
      bool counts = s.next || (s.label >= 1 && s.value == candidate.ValueOf(s.label));
      if (counts) candidate.maxPage = std::max(candidate.maxPage, candidate.PageOf(s.value));
    }
    if (candidate.maxPage < 2) continue;
    bool better = !found || candidate.numbered > pager.numbered ||
                  (candidate.numbered == pager.numbered && candidate.hasNext && !pager.hasNext);
    if (better) pager = std::move(candidate), found = true;
  }
  return found;
}
