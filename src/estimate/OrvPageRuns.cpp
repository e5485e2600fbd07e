// Pagers are rows of links labelled with rising numbers. Per depth of the
// number text, the triple nearest the end of the list is kept, so of a pager
// shown twice at one depth the later one counts.

#include "estimate/OrvPageHarvest.h"

namespace {

int DifferentPointer(const void* element, const void* record) { return element == record ? 0 : 1; }

var_attr* ClassOf(const OrvNumberLink& n) {
  return FindAttrByName(n.link.item ? n.link.item->attr_list : nullptr, "class", 5);
}

}  // namespace

bool OrvIsRisingRun(const OrvNumberLink& a, const OrvNumberLink& b, const OrvNumberLink& c) {
  if (a.number < 1 || b.number < 1 || c.number < 1) return false;
  // All above 0 here, so the differences cannot overflow.
  if (b.number - a.number < 1 || c.number - b.number < 1) return false;
  if (a.link.depth != b.link.depth || a.link.depth != c.link.depth) return false;
  var_attr* ca = ClassOf(a);
  return IsEqualAttr(ca, ClassOf(b)) && IsEqualAttr(ca, ClassOf(c));
}

void OrvPageHarvest::DetectRuns() {
  for (uint32_t e = 0; e < numbers.map.count; e++) {
    const OrvPtrList* list = *numbers.map.GetAt(e);
    for (int32_t i = list->count - 1; i >= 2; i--) {
      OrvNumberLink* a = numbers.At(list, i - 2);
      OrvNumberLink* b = numbers.At(list, i - 1);
      OrvNumberLink* c = numbers.At(list, i);
      if (!OrvIsRisingRun(*a, *b, *c)) continue;
      OrvFormatDepth(scratchKey, a->link.depth);
      // Each number link lies in one list and joins at most one run, so none
      // is parsed twice.
      for (OrvNumberLink* n : {a, b, c}) {
        if (var_attr* target = FindLinkAttr(n->link.item ? n->link.item->attr_list : nullptr))
          OrvCopyTarget(n->link, target);
        n->link.Parse(1);
        CompleteUrl(n->link);
      }
      runs.Add(scratchKey, a, DifferentPointer);
      runs.Add(scratchKey, b, DifferentPointer);
      runs.Add(scratchKey, c, DifferentPointer);
      break;
    }
  }
}

// The list of a depth holds the latest rising triple once there is one, and
// until then the last two records, which form none: DetectRuns finds in it
// the triple it would find in the whole list. The last two records are kept
// beside it, to test each new record against; a record in neither is spare.
void OrvPageHarvest::AddNumber(const OrvString& key, OrvNumberLink* record) {
  const char* text = key.buf ? key.buf : "";
  int32_t length = key.buf ? key.len : 0;
  OrvPtrList** slot = numbers.map.Find(text, length);
  OrvNumberLink** last = numberTails.Insert(text, length)->records;
  if (!slot) {
    numbers.Add(text, length, record);
    last[0] = nullptr;
    last[1] = record;
    return;
  }
  OrvPtrList& list = **slot;
  OrvNumberLink* before = last[0];
  OrvNumberLink* previous = last[1];
  OrvNumberLink* left[4] = {before, nullptr, nullptr, nullptr};  // may become spare
  bool rising = before && OrvIsRisingRun(*before, *previous, *record);
  if (rising || list.count < 3) {
    for (int32_t i = 0; i < list.count; i++) left[1 + i] = numbers.At(&list, i);
    list.count = 0;
    if (rising) list.Add(before);
    list.Add(previous);
    list.Add(record);
  }
  last[0] = previous;
  last[1] = record;
  for (int32_t i = 0; i < 4; i++) {
    OrvNumberLink* n = left[i];
    bool kept = !n || n == previous || n == record;
    for (int32_t j = 0; j < list.count && !kept; j++) kept = list.items[j] == n;
    for (int32_t j = 0; j < i && !kept; j++) kept = left[j] == n;  // already spare
    if (!kept) spareNumbers.Add(n);
  }
}

OrvNumberLink* OrvPageHarvest::NewNumber() {
  if (spareNumbers.count > 0)
    return static_cast<OrvNumberLink*>(spareNumbers.items[--spareNumbers.count]);
  return numbers.records.Alloc();
}
