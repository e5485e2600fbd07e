// The crawl: breadth-first from the entry URL, fetching one page per set of
// query parameter names and only counting the other URLs of that shape.

#include "core/OrvBlockPool.h"
#include "core/OrvPtrList.h"
#include "core/OrvStrMap.h"
#include "estimate/OrvPageQueue.h"
#include "estimate/OrvPageRecord.h"
#include "estimate/OrvWebPageCountEstimateImpl.h"
#include "orvwebpage/OrvHtml.h"
#include "orvwebpage/OrvHttp.h"

namespace {

// Records of repeated shapes are given back at once. The pool's own Free
// searches its block chain from the start, which a page queueing a million
// URLs turns into seconds of searching; a list of given-back records serves the same
// purpose in constant time. Which cell a record gets shows in no result.
struct PageRecords {
  OrvBlockPool<OrvPageRecord> pool;
  OrvPtrList released;

  OrvPageRecord* New() {
    OrvPageRecord* record = released.count > 0
                                ? static_cast<OrvPageRecord*>(released.items[--released.count])
                                : pool.Alloc();
    record->estimate = 0;
    record->sightings = 0;
    record->state = ORV_PAGE_UNREAD;
    return record;
  }
  void Free(OrvPageRecord* record) { released.Add(record); }
};

}  // namespace

long OrvWebPageCountEstimateImpl::EstimateCount(const char* url, long length) {
  OrvString entry(url ? url : "", url ? length : 0);
  OrvHttp client;
  OrvString body;
  OrvPageQueue queue;
  PageRecords records;
  OrvStrMap<OrvPageRecord*> shapes;
  OrvHtml document;

  SetEntryUrl(entry);
  OrvPageRecord* first = records.New();
  first->url = entryUrl.url;
  OrvWebPageUrl::GetParamNames(first->key, entryUrl);
  queue.AddHead(first);

  while (OrvPageRecord* record = queue.RemoveHead()) {
    int found = 0;
    OrvPageRecord** head =
        shapes.Insert(record->key.buf ? record->key.buf : "", record->key.len, &found);
    if (found) {
      OrvPageRecord* shape = *head;
      if (shape->state != ORV_PAGE_LISTING)
        shape->sightings = int32_t(uint32_t(shape->sightings) + 1u);
      records.Free(record);
    } else {
      *head = record;
      bool read = client.Run(record->url.buf, record->url.len, ORV_HTTP_METHOD(0)) == 0;
      if (read) {
        client.GetBody(body);
        read = document.Open(body.buf, body.len, ORV_CHARSET(0)) == 0;
      }
      if (read) {
        OrvHarvestWalk walk;
        walk.go = 1;
        walk.harvest = this;
        walk.HarvestPage(document.root, 1);
        AnalysePage();
        record->sightings = 1;
        record->estimate = pageEstimate;
        if (textNodes.map.count > 0) {
          record->state = ORV_PAGE_CONTENT;
        } else {
          record->state = record->estimate > 1 ? ORV_PAGE_LISTING : ORV_PAGE_PLAIN;
          for (uint32_t i = 0; i < pageUrls.count; i++) {
            const char* text = nullptr;
            int32_t textLen = 0;
            OrvString* key = *pageUrls.GetAt(i, &text, &textLen);
            OrvPageRecord* next = records.New();
            next->url.CopyBuf(text, textLen);
            next->key = *key;
            queue.AddTail(next);
          }
        }
      }
    }
    ResetPage();
    document.Close();
  }

  uint32_t sum = 0;
  for (uint32_t i = 0; i < shapes.count; i++) {
    const OrvPageRecord* r = *shapes.GetAt(i);
    sum += uint32_t(r->estimate) * uint32_t(r->sightings);
  }
  return long(int32_t(sum));
}
