// The two walks over a parsed page. Both visit items depth-first, parents
// before children, siblings in order; the pending siblings sit on a stack of
// their own, so the height of the page never grows the call stack.
//
// The nearest link element above an item is what climbing its parent chain
// finds. The walk carries that answer down from the parent it came through,
// so a deep page costs no climb per item; an item whose parent pointer is not
// the item the walk came from climbs as usual.

#include <vector>

#include "core/OrvMemory.h"
#include "estimate/OrvPageHarvest.h"
#include "estimate/OrvWebPageCountEstimateImpl.h"

namespace {

// The item the walk came down through, and the nearest link element above
// its children (item null if none).
struct Above {
  var_item* parent;
  var_item_pos link;
};

struct PendingSibling {
  var_item* item;
  int32_t depth;
  Above above;
};

var_item_pos LinkAbove(var_item* item, int32_t depth, const Above& above) {
  if (item->parent == above.parent) return above.link;
  return FindAncestorPos(var_item_pos{item, depth}, ORV_TAG_LINK);
}

// A run of text that states a number inside a link with a target becomes a
// number link, whatever its target is.
bool NumberStep(OrvPageHarvest& h, var_item* item, int32_t depth, const var_item_pos& link) {
  if (!item->text || !IsVisibleText(item) || !OrvIsNumberText(item->text, item->text_len))
    return false;
  if (!link.item) return false;
  var_attr* target = FindLinkAttr(link.item->attr_list);
  if (!target) return false;
  OrvNumberLink* record = h.allNumbers ? h.numbers.records.Alloc() : h.NewNumber();
  record->number = int32_t(OrvAtoInt(item->text, item->text_len));
  record->textNode = item;
  record->textDepth = depth;
  record->link.item = link.item;
  record->link.depth = link.depth;
  OrvFormatDepth(h.scratchKey, depth);
  if (h.allNumbers)
    h.numbers.Add(h.scratchKey, record);
  else
    h.AddNumber(h.scratchKey, record);
  return true;
}

// A link the crawl may follow: on the site, of a listed extension or none,
// and not yet listed on this page.
void LinkStep(OrvPageHarvest& h, var_item* item, int32_t depth) {
  if (item->tag_id != ORV_TAG_LINK) return;
  var_attr* target = FindLinkAttr(item->attr_list);
  if (!target) return;
  OrvLinkRecord& link = h.parsedLink;
  OrvCopyTarget(link, target);
  link.Parse(1);
  link.item = item;
  link.depth = depth;
  bool keep = !link.host.CapsIsEqual("javascript", 10) &&
              (link.ext.len < 1 || HasListedExtension(link, h.extensions));
  if (keep) {
    h.CompleteUrl(link);
    keep = link.host.Find(h.siteDomain.buf, h.siteDomain.len, 0) >= 0;
  }
  if (keep) {
    OrvWebPageUrl::GetParamNames(h.scratchKey, link);
    h.AddLink(link);
  }
}

// Visible text outside any link, counted by depth.
void TextStep(OrvWebPageCountEstimateImpl& e, var_item* item, int32_t depth,
              const var_item_pos& link) {
  if (!item->text || link.item || !IsVisibleText(item)) return;
  int32_t n = CountNonBlank(item->text, item->text_len);
  if (n == 0) return;
  OrvTextNode* record = e.textNodes.records.Alloc();
  record->item = item;
  record->depth = depth;
  OrvFormatDepth(e.textKey, depth);
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
  Above above{nullptr, var_item_pos{nullptr, 0}};
  for (;;) {
    if (!item) {
      if (pending.empty()) return;
      item = pending.back().item;
      depth = pending.back().depth;
      above = pending.back().above;
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
    var_item_pos link = LinkAbove(item, depth, above);
    if (!NumberStep(harvest, item, depth, link)) LinkStep(harvest, item, depth);
    if constexpr (kWholePage) TextStep(*estimator, item, depth, link);
    if (item->next) pending.push_back(PendingSibling{item->next, depth, above});
    above.parent = item;
    above.link = item->tag_id == ORV_TAG_LINK ? var_item_pos{item, depth} : link;
    item = item->child;
    depth = int32_t(uint32_t(depth) + 1u);
  }
}

}  // namespace

void OrvHarvestWalk::HarvestPage(var_item* item, long depth) { Walk<true>(*this, item, depth); }

void OrvHarvestWalk::HarvestLinks(var_item* item, long depth) { Walk<false>(*this, item, depth); }
