// The crawl: breadth-first from the entry URL, fetching one page per set of
// query parameter names and only counting the other URLs of that shape.

#include <utility>

#include "core/OrvBlockPool.h"
#include "core/OrvMemory.h"
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
    record->listing = -1;
    return record;
  }
  void Free(OrvPageRecord* record) { released.Add(record); }
};

// The document of the page in hand. Closing it keeps the tree's memory for
// the next page; a big page's would sit idle beside its URLs and the queue
// they fill, so after one the document goes whole.
struct PageDocument {
  static constexpr int32_t kBigPage = 1 << 20;  // bytes of the page
  OrvHtml* html = OrvNew<OrvHtml>();
  int32_t pageBytes = 0;

  PageDocument() = default;
  PageDocument(const PageDocument&) = delete;
  PageDocument& operator=(const PageDocument&) = delete;
  ~PageDocument() { OrvDelete(html); }

  void Close() {
    html->Close();
    if (pageBytes < kBigPage) return;
    OrvDelete(html);
    html = OrvNew<OrvHtml>();
    pageBytes = 0;
  }
};

// What one EstimateCount owns while it runs, destroyed in the reverse order.
struct Crawl {
  OrvHttp client;
  OrvString body;
  OrvPageQueue queue;
  PageRecords records;
  OrvStrMap<OrvPageRecord*> shapes;  // parameter-name key to the record heading the shape
  PageDocument document;
};

// The record becomes the head of its shape, or adds a sighting to the head
// there is and is given back. True for a new shape.
bool IsNewShape(Crawl& crawl, OrvPageRecord* record) {
  int found = 0;
  OrvPageRecord** head =
      crawl.shapes.Insert(record->key.buf ? record->key.buf : "", record->key.len, &found);
  if (!found) {
    *head = record;
    return true;
  }
  OrvPageRecord* shape = *head;
  if (shape->state != ORV_PAGE_LISTING) shape->sightings = int32_t(uint32_t(shape->sightings) + 1u);
  crawl.records.Free(record);
  return false;
}

bool FetchAndOpen(Crawl& crawl, const OrvPageRecord& record) {
  if (crawl.client.Run(record.url.buf, record.url.len, ORV_HTTP_METHOD(0)) != 0) return false;
  crawl.client.TakeBody(crawl.body);  // the only copy while the page is parsed
  crawl.document.pageBytes = crawl.body.len;
  int opened = crawl.document.html->Open(crawl.body.buf, crawl.body.len, ORV_CHARSET(0));
  // The tree holds copies of the texts it needs.
  crawl.body = OrvString();
  return opened == 0;
}

// Harvests and analyses the open page, settles what its record is, and
// queues its URLs unless it is a content page.
void ReadPage(OrvWebPageCountEstimateImpl& estimator, Crawl& crawl, OrvPageRecord* record) {
  OrvHarvestWalk walk;
  walk.go = 1;
  walk.harvest = &estimator;
  walk.HarvestPage(crawl.document.html->root, 1);
  // The runs are the last to read the tree; it goes before the analysis
  // holds the page's URLs and the queue grows.
  estimator.DetectRuns();
  crawl.document.Close();
  estimator.AnalysePage();
  record->sightings = 1;
  record->estimate = estimator.pageEstimate;
  record->listing = estimator.pageListing;
  if (estimator.textNodes.map.count > 0) {
    record->state = ORV_PAGE_CONTENT;
    return;
  }
  record->state = record->estimate > 1 ? ORV_PAGE_LISTING : ORV_PAGE_PLAIN;
  for (uint32_t i = 0; i < estimator.pageUrls.count; i++) {
    const char* text = nullptr;
    int32_t textLen = 0;
    OrvString* key = *estimator.pageUrls.GetAt(i, &text, &textLen);
    OrvPageRecord* next = crawl.records.New();
    next->url.CopyBuf(text, textLen);
    next->key = *key;
    crawl.queue.AddTail(next);
  }
}

// Sums estimate times sightings over the shapes, wrapping at 32 bits, and
// keeps the shapes for the explanation in the same order.
long SumShapes(Crawl& crawl, OrvEstimateExplanation& explanation) {
  uint32_t count = crawl.shapes.count;
  OrvPageRecord* kept = explanation.shapes.AddSlots(int32_t(count));
  uint32_t sum = 0;
  for (uint32_t i = 0; i < count; i++) {
    OrvPageRecord* r = *crawl.shapes.GetAt(i);
    sum += uint32_t(r->estimate) * uint32_t(r->sightings);
    // The crawl's records go with it; their texts are moved, not copied.
    kept[i].url = std::move(r->url);
    kept[i].key = std::move(r->key);
    kept[i].estimate = r->estimate;
    kept[i].sightings = r->sightings;
    kept[i].state = r->state;
    kept[i].listing = r->listing;
    if (r->listing >= 0) explanation.listings.items[r->listing].shape = int32_t(i);
  }
  return long(int32_t(sum));
}

}  // namespace

long OrvWebPageCountEstimateImpl::EstimateCount(const char* url, long length) {
  OrvString entry(url ? url : "", url ? length : 0);
  Crawl crawl;
  explanation.Clear();
  phase.store(ORV_ESTIMATE_CRAWLING, std::memory_order_relaxed);

  SetEntryUrl(entry);
  allNumbers = 0;
  allLinks = 0;
  OrvPageRecord* first = crawl.records.New();
  first->url = entryUrl.url;
  OrvWebPageUrl::GetParamNames(first->key, entryUrl);
  crawl.queue.AddHead(first);

  while (OrvPageRecord* record = crawl.queue.RemoveHead()) {
    if (IsNewShape(crawl, record) && FetchAndOpen(crawl, *record)) ReadPage(*this, crawl, record);
    ResetPage();
    crawl.document.Close();
  }

  long sum = SumShapes(crawl, explanation);
  phase.store(ORV_ESTIMATE_IDLE, std::memory_order_relaxed);
  return sum;
}

void OrvWebPageCountEstimateImpl::ResetPage() {
  running.store(1, std::memory_order_relaxed);
  ResetLinks();
  textNodes.Reset();
  OrvClearIfUsed(textSums);
  OrvClearIfUsed(pageUrls);
}
