// Pagers are rows of links labelled with rising numbers. Per depth of the
// number text, the triple nearest the end of the list is kept, so of a pager
// shown twice at one depth the later one counts.

#include "estimate/OrvPageHarvest.h"

namespace {

int DifferentPointer(const void* element, const void* record) { return element == record ? 0 : 1; }

var_attr* ClassOf(const OrvNumberLink& n) {
  return FindAttrByName(n.link.item ? n.link.item->attr_list : nullptr, "class", 5);
}

bool IsRisingRun(const OrvNumberLink& a, const OrvNumberLink& b, const OrvNumberLink& c) {
  if (a.number < 1 || b.number < 1 || c.number < 1) return false;
  // All above 0 here, so the differences cannot overflow.
  if (b.number - a.number < 1 || c.number - b.number < 1) return false;
  if (a.link.depth != b.link.depth || a.link.depth != c.link.depth) return false;
  var_attr* ca = ClassOf(a);
  return IsEqualAttr(ca, ClassOf(b)) && IsEqualAttr(ca, ClassOf(c));
}

}  // namespace

void OrvPageHarvest::DetectRuns() {
  for (uint32_t e = 0; e < numbers.map.count; e++) {
    const OrvPtrList* list = *numbers.map.GetAt(e);
    for (int32_t i = list->count - 1; i >= 2; i--) {
      OrvNumberLink* a = numbers.At(list, i - 2);
      OrvNumberLink* b = numbers.At(list, i - 1);
      OrvNumberLink* c = numbers.At(list, i);
      if (!IsRisingRun(*a, *b, *c)) continue;
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
