#include "orvwebpage/OrvSiteSize.h"

#include <algorithm>
#include <chrono>
#include <cmath>

#include "orvwebpage/OrvHttp.h"
#include "orvwebpage/OrvHttpLimits.h"
#include "orvwebpage/OrvWebPageCountEstimate.h"
#include "size/OrvSiteSizeImpl.h"
#include "size/OrvUrlShape.h"

namespace {

constexpr int64_t kDefaultRequests = 60;
// Sitemap files read at most, and pages of the sitemap fetched to see that it
// tells the truth.
constexpr int32_t kSitemapFetches = 8;
constexpr int32_t kSitemapChecks = 3;
// Kept for the exact estimate at the end of the run.
constexpr int64_t kExactShare = 6;

int64_t Round(double value) {
  if (!(value > 0)) return 0;
  return value >= 9e18 ? int64_t(9e18) : int64_t(std::llround(value));
}

int64_t Used(int64_t first) { return OrvHttpLimits::GetRequests() - first; }

}  // namespace

void OrvSiteSizeImpl::Measure(const char* url, long length, int64_t maxRequests) {
  reason.Clear();
  pages = low = high = 0;
  source = ORV_SIZE_NONE;
  sitemapTrusted = false;
  sitemapChecked = sitemapCheckedGood = 0;
  exactPages = 0;
  exactWrapped = false;
  requests = sitemapRequests = crawlRequests = exactRequests = 0;
  if (maxRequests <= 0) maxRequests = kDefaultRequests;
  if (!url) url = "", length = 0;
  const int64_t first = OrvHttpLimits::GetRequests();

  OrvStrArray hints;
  int32_t sitemapBudget = int32_t(std::min<int64_t>(kSitemapFetches, maxRequests / 6));
  if (!stopped && sitemapBudget > 0) sitemaps.Read(url, length, hints, sitemapBudget);
  sitemapRequests = Used(first);

  int64_t reserve = std::min<int64_t>(kExactShare, maxRequests / 8);
  int64_t checks = sitemaps.Pages() > 0 ? kSitemapChecks : 0;
  int64_t crawlBudget = maxRequests - sitemapRequests - reserve - checks;
  if (!stopped && crawlBudget > 0) crawl.Run(url, length, crawlBudget);
  crawlRequests = crawl.Requests();

  if (!stopped && checks) CheckSitemap();
  if (!stopped) RunExact(url, length, first + maxRequests);
  requests = Used(first);
  Combine();
}

// A few listed pages that the crawl did not meet are fetched: a sitemap whose
// pages do not answer is not one to trust.
void OrvSiteSizeImpl::CheckSitemap() {
  const OrvStrArray& sample = sitemaps.SampleUrls();
  for (int32_t i = 0; i < sample.count && sitemapChecked < kSitemapChecks && !stopped; ++i) {
    // Spread over the sample, which is spread over the files.
    int32_t at = int32_t((int64_t(i) * 7919) % sample.count);
    const char* listed = sample[at];
    long len = sample.GetStringLen(at);
    OrvSizeText local = OrvLocalPart(std::string_view(listed, size_t(len)));
    if (local.empty() || crawl.Saw(local)) continue;
    OrvHttp client;
    OrvString target(listed, len);
    sitemapChecked++;
    if (client.Run(target.buf, target.len, ORV_HTTP_GET) == ORV_HTTP_OK) sitemapCheckedGood++;
  }
}

void OrvSiteSizeImpl::RunExact(const char* url, long length, int64_t until) {
  int64_t before = OrvHttpLimits::GetRequests();
  if (until - before <= 0) return;
  // The estimator knows no budget of its own: the run's is narrowed for it
  // and given back after.
  OrvHttpSettings saved = OrvHttpLimits::Get();
  OrvHttpSettings narrowed = saved;
  int64_t cap = until;
  if (saved.maxRequests > 0) cap = std::min(cap, saved.maxRequests);
  narrowed.maxRequests = cap;
  auto start = std::chrono::steady_clock::now();
  OrvHttpLimits::Set(narrowed);
  OrvWebPageCountEstimate estimator;
  OrvString text(url, length);
  long figure = estimator.EstimateCount(text.buf, text.len);
  int64_t sum = 0;
  for (int i = 0, n = estimator.GetShapeCount(); i < n; ++i) {
    OrvEstimateShape shape;
    if (estimator.FetchShape(i, shape)) sum += int64_t(shape.estimate) * int64_t(shape.sightings);
  }
  exactPages = sum;
  exactWrapped = int64_t(int32_t(uint32_t(uint64_t(sum)))) != sum || int64_t(figure) != sum;
  if (saved.deadlineMs > 0) {
    auto spent = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - start);
    saved.deadlineMs = std::max<int64_t>(1, saved.deadlineMs - spent.count());
  }
  OrvHttpLimits::Set(saved);
  exactRequests = OrvHttpLimits::GetRequests() - before;
}

void OrvSiteSizeImpl::Combine() {
  double crawlPages = crawl.Pages(), crawlLow = crawl.Low(), crawlHigh = crawl.High();
  double mapPages = double(sitemaps.Pages());
  if (mapPages > 0) {
    double mapLow = double(sitemaps.Low()), mapHigh = double(sitemaps.High());
    // What sitemaps leave out: the pages of listings past the first, and whole
    // shapes the crawl met that none of the listed URLs has.
    const OrvStrArray& sample = sitemaps.SampleUrls();
    bool listsPagers = false;
    OrvSizeTextSet sampleShapes;
    for (int32_t i = 0; i < sample.count; ++i) {
      OrvSizeText local = OrvLocalPart(std::string_view(sample[i], size_t(sample.GetStringLen(i))));
      listsPagers |= crawl.IsPagerPage(local);
      sampleShapes.insert(OrvShapeOf(local));
    }
    double extra = 0, extraLow = 0, extraHigh = 0;
    if (!listsPagers)
      for (const OrvSizeListingRecord& listing : crawl.Listings())
        extra += listing.extraPages, extraLow += listing.extraLow, extraHigh += listing.extraHigh;
    if (sample.count >= 16)
      for (const OrvSizeShapeRecord& shape : crawl.Shapes())
        if (!sampleShapes.count(shape.key) && shape.estimate >= 0.05 * mapPages)
          extra += shape.estimate, extraLow += shape.low, extraHigh += shape.high;
    bool pagesFail = sitemapChecked > 0 && sitemapCheckedGood * 2 <= sitemapChecked;
    // The crawl already saw more than the sitemap lists, or its listings
    // alone hold far more.
    double crawlSeen = 0;
    for (const OrvSizeShapeRecord& shape : crawl.Shapes()) crawlSeen += double(shape.seen);
    bool tooFew = crawlSeen > 1.25 * (mapHigh + extraHigh) || crawlLow > 2 * (mapHigh + extraHigh);
    if (pagesFail) {
      reason = "the sitemap's pages do not answer";
    } else if (tooFew) {
      reason = "the crawl found far more pages than the sitemap lists";
    } else {
      sitemapTrusted = true;
      source = ORV_SIZE_SITEMAP;
      pages = mapPages + extra;
      // A sitemap read whole is exact about what it lists, not about the pages
      // it leaves out: archives, feeds of pages, pages of other kinds.
      low = std::min(mapLow + extraLow, pages * 0.9);
      high = std::max(mapHigh + extraHigh, pages * 1.2);
      reason = extra > 0 ? "with the listing pages it leaves out" : "read whole or sampled";
      return;
    }
  }
  if (crawlPages > 0) {
    source = ORV_SIZE_CRAWL;
    // The crawl's own interval covers its sampling; its model may be off too.
    pages = crawlPages, low = crawlLow * 0.85, high = crawlHigh * 1.2;
    // Pages read are pages there are.
    low = std::max(low, std::min(pages, double(crawl.PagesRead())));
    if (reason.len == 0) reason = "no sitemap";
    return;
  }
  if (exactPages > 0) {
    source = ORV_SIZE_EXACT;
    pages = double(exactPages), low = pages / 2, high = pages * 2;
    reason = "the crawl read nothing";
    return;
  }
  reason = "nothing could be read";
}

OrvSiteSize::OrvSiteSize() : impl(OrvNew<OrvSiteSizeImpl>()) {}
OrvSiteSize::~OrvSiteSize() { OrvDelete(impl); }

int64_t OrvSiteSize::Measure(const char* url, long length, int64_t maxRequests) {
  if (url && length < 0) length = Orvstrlen(url);
  impl->stopped = false;
  impl->Measure(url, url ? length : 0, maxRequests);
  return Pages();
}

void OrvSiteSize::Stop() {
  impl->stopped = true;
  impl->crawl.Stop();
}

int64_t OrvSiteSize::Pages() const { return Round(impl->pages); }
int64_t OrvSiteSize::Low() const { return std::min(Pages(), Round(std::floor(impl->low))); }
int64_t OrvSiteSize::High() const { return std::max(Pages(), Round(std::ceil(impl->high))); }
ORV_SIZE_SOURCE OrvSiteSize::Source() const { return impl->source; }
const char* OrvSiteSize::SourceName(ORV_SIZE_SOURCE source) {
  switch (source) {
    case ORV_SIZE_SITEMAP:
      return "sitemap";
    case ORV_SIZE_CRAWL:
      return "crawl";
    case ORV_SIZE_EXACT:
      return "exact";
    default:
      return "none";
  }
}
const OrvString& OrvSiteSize::Reason() const { return impl->reason; }
int64_t OrvSiteSize::SitemapPages() const { return impl->sitemaps.Pages(); }
int64_t OrvSiteSize::SitemapLow() const { return impl->sitemaps.Low(); }
int64_t OrvSiteSize::SitemapHigh() const { return impl->sitemaps.High(); }
int OrvSiteSize::SitemapTrusted() const { return impl->sitemapTrusted; }
int64_t OrvSiteSize::CrawlPages() const { return Round(impl->crawl.Pages()); }
int64_t OrvSiteSize::CrawlLow() const { return Round(std::floor(impl->crawl.Low())); }
int64_t OrvSiteSize::CrawlHigh() const { return Round(std::ceil(impl->crawl.High())); }
int64_t OrvSiteSize::ExactPages() const { return impl->exactPages; }
int OrvSiteSize::ExactWrapped() const { return impl->exactWrapped; }
int64_t OrvSiteSize::Requests() const { return impl->requests; }
int64_t OrvSiteSize::SitemapRequests() const { return impl->sitemapRequests; }
int64_t OrvSiteSize::CrawlRequests() const { return impl->crawlRequests; }
int64_t OrvSiteSize::ExactRequests() const { return impl->exactRequests; }
int64_t OrvSiteSize::CrawlPagesRead() const { return impl->crawl.PagesRead(); }

int OrvSiteSize::GetSitemapCount() const { return impl->sitemaps.FileCount(); }
int OrvSiteSize::FetchSitemap(int index, OrvSiteSizeSitemap& sitemap) const {
  if (index < 0 || index >= impl->sitemaps.FileCount()) return 0;
  const OrvSitemapFile& file = impl->sitemaps.File(index);
  sitemap.url = file.url;
  sitemap.pages = file.pages;
  sitemap.children = file.children;
  sitemap.sampled = file.sampled;
  sitemap.problem = file.problem;
  return 1;
}

namespace {
void Put(OrvString& out, const OrvSizeText& text) { out.CopyBuf(text.data(), long(text.size())); }
}  // namespace

int OrvSiteSize::GetListingCount() const { return int(impl->crawl.Listings().size()); }
int OrvSiteSize::FetchListing(int index, OrvSiteSizeListing& out) const {
  const auto& all = impl->crawl.Listings();
  if (index < 0 || size_t(index) >= all.size()) return 0;
  const OrvSizeListingRecord& l = all[size_t(index)];
  Put(out.firstUrl, l.firstUrl);
  Put(out.pattern, l.pattern);
  Put(out.family, l.family);
  Put(out.itemShape, l.itemShape);
  out.lastPage = l.lastPage, out.lastLow = l.lastLow, out.lastHigh = l.lastHigh;
  out.itemsPerPage = l.itemsPerPage;
  out.members = l.members;
  out.extraPages = Round(l.extraPages);
  out.items = Round(l.items);
  out.probeCount = int32_t(l.probes.size());
  return 1;
}
int OrvSiteSize::FetchProbe(int listing, int index, OrvSiteSizeProbe& probe) const {
  const auto& all = impl->crawl.Listings();
  if (listing < 0 || size_t(listing) >= all.size()) return 0;
  const auto& probes = all[size_t(listing)].probes;
  if (index < 0 || size_t(index) >= probes.size()) return 0;
  probe.page = probes[size_t(index)].page;
  probe.good = probes[size_t(index)].good;
  probe.status = probes[size_t(index)].status;
  return 1;
}
int OrvSiteSize::GetShapeCount() const { return int(impl->crawl.Shapes().size()); }
int OrvSiteSize::FetchShape(int index, OrvSiteSizeShape& out) const {
  const auto& all = impl->crawl.Shapes();
  if (index < 0 || size_t(index) >= all.size()) return 0;
  const OrvSizeShapeRecord& s = all[size_t(index)];
  Put(out.key, s.key);
  out.seen = s.seen;
  out.pages = Round(s.estimate), out.low = Round(s.low), out.high = Round(s.high);
  out.how = s.how;
  return 1;
}
