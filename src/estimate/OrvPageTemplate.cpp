// From two links of a pager to the URL of any page of the listing.

#include "estimate/OrvPageTemplate.h"

namespace {

int32_t ValueNumber(const OrvUrlParam& p) { return int32_t(OrvAtoInt(p.value.buf, p.value.len)); }

// 32-bit signed quotient truncated toward zero, with the one overflowing case
// (lowest value over -1) wrapping instead.
int32_t Divide(int32_t dividend, int32_t divisor) {
  if (divisor == -1) return int32_t(0u - uint32_t(dividend));
  return dividend / divisor;
}

int32_t Minus(int32_t a, int32_t b) { return int32_t(uint32_t(a) - uint32_t(b)); }

}  // namespace

int32_t FindChangedParam(const OrvUrlParam* a, int32_t aCount, const OrvUrlParam* b,
                         int32_t bCount) {
  int32_t n = aCount < bCount ? aCount : bCount;
  for (int32_t i = 0; i < n; i++) {
    if (a[i].name.CapsIsEqual(b[i].name.buf, b[i].name.len) &&
        !a[i].value.CapsIsEqual(b[i].value.buf, b[i].value.len))
      return i;
  }
  return -1;
}

int32_t BuildPageTemplate(OrvPageTemplate& pageTemplate, const OrvPtrList& list) {
  if (list.count < 2) return -1;
  for (int32_t i = 1; i < list.count; i++) {
    const auto* p = static_cast<const OrvNumberLink*>(list.items[i - 1]);
    const auto* c = static_cast<const OrvNumberLink*>(list.items[i]);
    // Equal numbers say nothing about how the parameter follows the page.
    if (p->number == c->number) continue;
    int32_t k =
        FindChangedParam(p->link.params, p->link.paramCount, c->link.params, c->link.paramCount);
    if (k < 0) continue;
    int32_t pv = ValueNumber(p->link.params[k]);
    int32_t cv = ValueNumber(c->link.params[k]);
    static_cast<OrvLinkRecord&>(pageTemplate) = c->link;
    pageTemplate.paramIndex = k;
    pageTemplate.step = Divide(Minus(cv, pv), Minus(c->number, p->number));
    int32_t before = Minus(c->number, 1);
    pageTemplate.offset = Minus(cv, int32_t(uint32_t(before) * uint32_t(pageTemplate.step)));
    return i;
  }
  return -1;
}

void MakePageUrl(OrvLinkRecord& out, long page, const OrvPageTemplate& pageTemplate) {
  out = pageTemplate;  // the link part of the template
  if (pageTemplate.paramIndex < 0 || pageTemplate.paramIndex >= out.paramCount) return;
  uint32_t value =
      uint32_t(pageTemplate.step) * (uint32_t(int32_t(page)) - 1u) + uint32_t(pageTemplate.offset);
  out.params[pageTemplate.paramIndex].value.Format("%d", int32_t(value));
}
