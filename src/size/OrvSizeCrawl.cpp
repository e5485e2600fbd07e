#include "size/OrvSizeCrawl.h"

#include <climits>
#include <cstring>

#include "orvwebpage/OrvHtml.h"
#include "orvwebpage/OrvHttp.h"
#include "orvwebpage/OrvHttpLimits.h"
#include "size/OrvSiteScope.h"
#include "size/OrvUrlShape.h"

namespace {

// More than this many distinct URLs say nothing more about a site's size,
// and keep the tables small whatever a site links.
constexpr size_t kMostUrls = 200000;
constexpr size_t kMostLinksPerPage = 20000;
// Longer link targets are no pages a site means to be read.
constexpr size_t kLongestUrl = 4096;

// The share of the budget spent exploring before the listings are probed.
constexpr double kExploreShare = 0.5;

bool IsHtml(const OrvString& type) {
  if (type.len <= 0) return true;
  std::string_view t(type.buf, size_t(type.len));
  return t.find("html") != t.npos || t.find("HTML") != t.npos;
}

}  // namespace

bool OrvSizeCrawl::Spent() const {
  return stopped || OrvHttpLimits::IsSpent() ||
         OrvHttpLimits::GetRequests() - firstRequest >= maxRequests;
}

int32_t OrvSizeCrawl::AddUrl(const OrvSizeText& local) {
  auto found = index.find(local);
  if (found != index.end()) return found->second;
  if (urls.size() >= kMostUrls) return -1;
  OrvSizeText key = OrvShapeOf(local);
  auto shape = shapeIndex.find(key);
  int32_t shapeNo;
  if (shape == shapeIndex.end()) {
    shapeNo = int32_t(shapeTable.size());
    shapeIndex.emplace(key, shapeNo);
    shapeTable.push_back({key, {}, 0});
  } else {
    shapeNo = shape->second;
  }
  int32_t no = int32_t(urls.size());
  UrlRecord record;
  record.local = local;
  record.shape = shapeNo;
  urls.push_back(std::move(record));
  index.emplace(local, no);
  shapeTable[size_t(shapeNo)].urls.push_back(no);
  return no;
}

int32_t OrvSizeCrawl::Fetch(int32_t url, bool probe, long* status) {
  OrvSizeText full = origin + urls[size_t(url)].local;
  OrvHttp client;
  ORV_HTTP_STATUS result = client.Run(full.data(), long(full.size()), ORV_HTTP_GET);
  if (status) *status = client.GetResponseCode();
  if (urls[size_t(url)].state == 0) shapeTable[size_t(urls[size_t(url)].shape)].fetched++;
  urls[size_t(url)].state = 2;
  if (result != ORV_HTTP_OK) return -1;
  OrvString body, type;
  client.GetBody(body);
  client.GetContentType(type);
  if (!IsHtml(type)) return -1;
  OrvHtml document;
  if (document.Open(body.buf, body.len, ORV_CHARSET_BYTES, type.len ? type.buf : nullptr) != 0)
    return -1;
  urls[size_t(url)].state = 1;
  pagesRead++;

  int32_t pageNo = int32_t(pageTable.size());
  pageTable.emplace_back();
  PageRecord& page = pageTable.back();
  page.url = url;
  page.probe = probe;
  OrvSizeList<OrvSizeLink> links;
  OrvReadSizeLinks(document.root, full.data(), long(full.size()), links, kMostLinksPerPage);
  OrvSizeList<OrvSizeText> locals(links.size());
  for (size_t i = 0; i < links.size(); ++i) {
    const OrvSizeText& target = links[i].url;
    if (!OrvIsOnSite(entryUrl.data(), long(entryUrl.size()), target.data(), long(target.size())))
      continue;
    if (target.size() > kLongestUrl) continue;
    OrvSizeText local = OrvLocalPart(target);
    if (local.empty() || !OrvIsPageLike(local)) continue;
    locals[i] = local;
    int32_t linked = AddUrl(local);
    if (linked < 0) continue;
    UrlRecord& record = urls[size_t(linked)];
    if (record.lastPage != pageNo) {
      record.lastPage = pageNo;
      record.pagesSeen++;
      page.links.push_back(linked);
    }
  }
  page.hasPager = OrvFindPager(links, locals, urls[size_t(url)].local, page.pager);
  if (page.hasPager && page.pager.numbered == 0 && !ListsItems(page)) page.hasPager = false;
  if (page.hasPager) pagerVersion++;
  return pageNo;
}

bool OrvSizeCrawl::IsPagerPage(std::string_view local) const {
  for (const OrvSizeListingRecord& listing : listings) {
    int64_t value = OrvMatchPattern(listing.pattern, local);
    OrvSizePager rule;
    rule.step = listing.step, rule.offset = listing.offset;
    if (value >= 0 && rule.PageOf(value) >= 2) return true;
  }
  for (const PageRecord& page : pageTable) {
    if (!page.hasPager) continue;
    int64_t value = OrvMatchPattern(page.pager.pattern, local);
    if (value >= 0 && page.pager.PageOf(value) >= 2) return true;
  }
  return false;
}

// The shape read least so far first; within it a URL drawn at random, the
// same from run to run, so that the pages read sample the whole site and not
// only the neighbourhood of the entry.
bool OrvSizeCrawl::IsPagerUrl(int32_t url) const {
  UrlRecord& record = urls[size_t(url)];
  if (record.pagerCheck != pagerVersion) {
    record.pagerPage = IsPagerPage(record.local);
    record.pagerCheck = pagerVersion;
  }
  return record.pagerPage;
}

int32_t OrvSizeCrawl::NextToExplore() const {
  int32_t fewest = INT32_MAX;
  OrvSizeList<int32_t> candidates;
  for (size_t i = 0; i < urls.size(); ++i) {
    const UrlRecord& record = urls[i];
    if (record.state != 0) continue;
    int32_t fetched = shapeTable[size_t(record.shape)].fetched;
    if (fetched > fewest) continue;
    if (IsPagerUrl(int32_t(i))) continue;
    if (fetched < fewest) candidates.clear(), fewest = fetched;
    candidates.push_back(int32_t(i));
  }
  if (candidates.empty()) return -1;
  // The entry's own links come first: the site's sections.
  if (fewest == 0) return candidates.front();
  uint64_t draw = (uint64_t(pagesRead) + 1) * 0x9E3779B97F4A7C15ull;
  draw ^= draw >> 29;
  return candidates[size_t(draw % candidates.size())];
}

void OrvSizeCrawl::Explore(int64_t untilRequests) {
  while (!Spent() && OrvHttpLimits::GetRequests() - firstRequest < untilRequests) {
    int32_t next = NextToExplore();
    if (next < 0) return;
    Fetch(next, false, nullptr);
  }
}

void OrvSizeCrawl::Run(const char* entry, long len, int64_t budget) {
  urls.clear(), index.clear(), shapeTable.clear(), shapeIndex.clear(), pageTable.clear();
  listings.clear(), shapes.clear();
  requests = pagesRead = 0;
  pagerVersion = 0;
  pages = low = high = 0;
  if (!entry) return;
  if (len < 0) len = long(std::strlen(entry));
  entryUrl.assign(entry, size_t(len));
  OrvSizeText local = OrvLocalPart(entryUrl);
  if (local.empty()) return;
  size_t authority = entryUrl.find("://") + 3;
  size_t end = entryUrl.find_first_of("/?#", authority);
  origin = entryUrl.substr(0, end);
  maxRequests = budget > 0 ? budget : 60;
  firstRequest = OrvHttpLimits::GetRequests();

  int32_t start = AddUrl(local);
  if (start >= 0) Fetch(start, false, nullptr);
  if (pagesRead) {
    Explore(int64_t(double(maxRequests) * kExploreShare));
    FindListings();
    for (OrvSizeListingRecord& listing : listings) ProbeListing(listing, maxRequests);
    // What is left reads more pages, for the recapture counts.
    Explore(maxRequests);
    for (OrvSizeListingRecord& listing : listings) {
      CountItems(listing);
      CountFamily(listing);
    }
  }
  Sum();
  requests = OrvHttpLimits::GetRequests() - firstRequest;
}
