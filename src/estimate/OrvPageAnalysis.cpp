// What kind of page was just harvested: a listing (a pager whose links differ
// in one parameter), a content page (long text at some depth), or neither.

#include "estimate/OrvWebPageCountEstimateImpl.h"

namespace {

// Mean non-blank bytes per text run at which a depth counts as long text.
constexpr double kLongTextMean = 70.0;

}  // namespace

void OrvWebPageCountEstimateImpl::AnalysePage() {
  pageListing = -1;
  OrvPageTemplate pageTemplate;
  for (uint32_t e = 0; e < runs.map.count; e++) {
    if (BuildPageTemplate(pageTemplate, **runs.map.GetAt(e)) >= 0) break;
  }
  // The template is a copy, and pageUrls copies the texts of the links: what
  // the walk gathered goes before the last-page search and the queue grow.
  ResetNumbers();
  ListHeldLinks();
  PruneTextDepths();
  CollectPageUrls();
  ResetLinks();
  if (pageTemplate.paramIndex < 0) {
    pageEstimate = 1;
    return;
  }
  pageListing = explanation.AddListing(pageTemplate, int32_t(pageUrls.count));
  uint8_t was = phase.exchange(ORV_ESTIMATE_PROBING, std::memory_order_relaxed);
  int32_t lastPage = FindLastPage(pageTemplate, &explanation);
  phase.store(was, std::memory_order_relaxed);
  explanation.listings.items[pageListing].lastPage = lastPage;
  pageEstimate = lastPage > 0 ? int32_t(uint32_t(lastPage) * pageUrls.count) : 1;
}

// Keeps the depths where at least two text runs stand with a long mean.
void OrvWebPageCountEstimateImpl::PruneTextDepths() {
  OrvStrArray drop;
  for (uint32_t e = 0; e < textNodes.map.count; e++) {
    const char* key = nullptr;
    int32_t keyLen = 0;
    const OrvPtrList* list = *textNodes.map.GetAt(e, &key, &keyLen);
    bool keep = false;
    if (list->count > 1) {
      const int32_t* sum = textSums.Find(key ? key : "", keyLen);
      keep = sum && double(*sum) / double(list->count) >= kLongTextMean;
    }
    if (!keep) drop.AddString(key ? key : "", keyLen);
  }
  for (int32_t i = 0; i < drop.count; i++) {
    long len = drop.GetStringLen(i);
    textNodes.map.Remove(drop[i], int32_t(len));
    textSums.Remove(drop[i], int32_t(len));
  }
}

// The distinct crawlable URLs of the page; a URL keeps the parameter-name key
// of its first record.
void OrvWebPageCountEstimateImpl::CollectPageUrls() {
  if (!allLinks) {
    CollectLinkTexts();
    return;
  }
  for (uint32_t e = 0; e < links.map.count; e++) {
    const char* key = nullptr;
    int32_t keyLen = 0;
    const OrvPtrList* list = *links.map.GetAt(e, &key, &keyLen);
    for (int32_t i = 0; i < list->count; i++) {
      const OrvLinkRecord* record = links.At(list, i);
      int found = 0;
      OrvString** value =
          pageUrls.Insert(record->url.buf ? record->url.buf : "", record->url.len, &found);
      if (found) continue;
      OrvString* keyString = keyStrings.Alloc();
      keyString->CopyBuf(key, keyLen);
      *value = keyString;
    }
  }
}

void OrvWebPageCountEstimateImpl::CollectLinkTexts() {
  for (uint32_t e = 0; e < linkTexts.chains.count; e++) {
    const char* key = nullptr;
    int32_t keyLen = 0;
    const OrvLinkTexts::Chain* chain = linkTexts.chains.GetAt(e, &key, &keyLen);
    for (int32_t i = chain->first; i >= 0; i = linkTexts.texts.items[i].next) {
      const OrvLinkTexts::Text& t = linkTexts.texts.items[i];
      int found = 0;
      OrvString** value = pageUrls.Insert(linkTexts.At(t.offset), t.length, &found);
      if (found) continue;
      OrvString* keyString = keyStrings.Alloc();
      keyString->CopyBuf(key, keyLen);
      *value = keyString;
    }
  }
}
