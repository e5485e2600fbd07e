// The two walks over a parsed page. Both visit items depth-first, parents
// before children, siblings in order; the pending siblings sit on a stack of
// their own, so the height of the page never grows the call stack.

#include <vector>

#include "core/OrvMemory.h"
#include "estimate/OrvPageHarvest.h"
#include "estimate/OrvWebPageCountEstimateImpl.h"

namespace {

struct PendingSibling {
  var_item* item;
  int32_t depth;
};

// Copies a link target attribute into the URL text; a null value is empty.
void CopyTarget(OrvWebPageUrl& url, const var_attr* target) {
  const char* value = target->value;
  url.url.CopyBuf(value, value ? MeasuredLen(value, target->value_len) : 0);
}

// A run of text that states a number inside a link with a target becomes a
// number link, whatever its target is.
bool NumberStep(OrvPageHarvest& h, var_item* item, int32_t depth) {
  if (!item->text || !IsVisibleText(item) || !IsNumberText(item->text, item->text_len))
    return false;
  var_item_pos link = FindAncestorPos(var_item_pos{item, depth}, ORV_TAG_LINK);
  if (!link.item) return false;
  var_attr* target = FindLinkAttr(link.item->attr_list);
  if (!target) return false;
  OrvNumberLink* record = h.numbers.records.Alloc();
  record->number = int32_t(OrvAtoInt(item->text, item->text_len));
  record->textNode = item;
  record->textDepth = depth;
  record->link.item = link.item;
  record->link.depth = link.depth;
  CopyTarget(record->link, target);
  record->link.Parse(1);
  h.CompleteUrl(record->link);
  FormatDepth(h.scratchKey, depth);
  h.numbers.Add(h.scratchKey, record);
  return true;
}

int SameUrlText(const void* element, const void* record) {
  const auto* listed = static_cast<const OrvLinkRecord*>(element);
  const auto* fresh = static_cast<const OrvLinkRecord*>(record);
  return listed->url.Compare(fresh->url.buf, -1) == 0 ? 0 : 1;
}

// A link the crawl may follow: on the site, of a listed extension or none,
// and not yet listed on this page. A refused cell goes back to the pool.
void LinkStep(OrvPageHarvest& h, var_item* item, int32_t depth) {
  if (item->tag_id != ORV_TAG_LINK) return;
  var_attr* target = FindLinkAttr(item->attr_list);
  if (!target) return;
  OrvLinkRecord* record = h.links.records.Alloc();
  CopyTarget(*record, target);
  record->Parse(1);
  record->item = item;
  record->depth = depth;
  bool keep = !record->host.CapsIsEqual("javascript", 10) &&
              (record->ext.len < 1 || HasListedExtension(*record, h.extensions));
  if (keep) {
    h.CompleteUrl(*record);
    keep = record->host.Find(h.siteDomain.buf, h.siteDomain.len, 0) >= 0;
  }
  if (keep) {
    OrvWebPageUrl::GetParamNames(h.scratchKey, *record);
    keep = h.links.Add(h.scratchKey, record, SameUrlText);
  }
  if (!keep) h.links.records.Free(record);
}

// Visible text outside any link, counted by depth.
void TextStep(OrvWebPageCountEstimateImpl& e, var_item* item, int32_t depth) {
  if (!item->text || !IsVisibleText(item) || FindAncestor(item, ORV_TAG_LINK)) return;
  int32_t n = CountNonBlank(item->text, item->text_len);
  if (n == 0) return;
  OrvTextNode* record = e.textNodes.records.Alloc();
  record->item = item;
  record->depth = depth;
  FormatDepth(e.textKey, depth);
  e.textNodes.Add(e.textKey, record);
  int found = 0;
  int32_t* sum = e.textSums.Insert(e.textKey.buf, e.textKey.len, &found);
  *sum = found ? int32_t(uint32_t(*sum) + uint32_t(n)) : n;
}

template <bool kWholePage>
void Walk(OrvHarvestWalk& walk, var_item* item, long startDepth) {
  OrvPageHarvest& harvest = *walk.harvest;
  OrvWebPageCountEstimateImpl* estimator = nullptr;
  if constexpr (kWholePage) estimator = static_cast<OrvWebPageCountEstimateImpl*>(walk.harvest);
  std::vector<PendingSibling, OrvAllocator<PendingSibling>> pending;
  int32_t depth = int32_t(startDepth);
  for (;;) {
    if (!item) {
      if (pending.empty()) return;
      item = pending.back().item;
      depth = pending.back().depth;
      pending.pop_back();
      continue;
    }
    if (!walk.go) return;
    if constexpr (kWholePage) {
      if (!estimator->IsRunning()) {
        walk.go = 0;
        return;
      }
    }
    if (!NumberStep(harvest, item, depth)) LinkStep(harvest, item, depth);
    if constexpr (kWholePage) TextStep(*estimator, item, depth);
    if (item->next) pending.push_back(PendingSibling{item->next, depth});
    item = item->child;
    depth = int32_t(uint32_t(depth) + 1u);
  }
}

}  // namespace

void OrvHarvestWalk::HarvestPage(var_item* item, long depth) { Walk<true>(*this, item, depth); }

void OrvHarvestWalk::HarvestLinks(var_item* item, long depth) { Walk<false>(*this, item, depth); }
