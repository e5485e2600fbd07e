// Listings: which pagers the pages read show, one listing of each kind probed
// for its last page, and how many items a page of it lists.

#include <algorithm>

#include "orvwebpage/OrvHttpLimits.h"
#include "size/OrvSizeCrawl.h"
#include "size/OrvUrlShape.h"

namespace {

// Probes one listing may take: enough for a listing of thousands of pages at
// the precision that matters here.
constexpr int kMostProbes = 12;
// Links of one shape that make a page with a lone "next" a listing.
constexpr int32_t kLeastItems = 3;

OrvSizeText FamilyOfPattern(const OrvSizeText& pattern) {
  return OrvShapeOf(OrvFillPattern(pattern, 2));
}

}  // namespace

// A "next" link alone also stands on articles that lead to the next one; a
// listing page shows items too: several links of one shape other than its own.
bool OrvSizeCrawl::ListsItems(const PageRecord& page) const {
  const OrvSizeText& own = shapeTable[size_t(urls[size_t(page.url)].shape)].key;
  OrvSizeText pagerShape = FamilyOfPattern(page.pager.pattern);
  OrvSizeTextMap<int32_t> perShape;
  for (int32_t linked : page.links) {
    const OrvSizeText& shape = shapeTable[size_t(urls[size_t(linked)].shape)].key;
    if (shape == own || shape == pagerShape) continue;
    if (++perShape[shape] >= kLeastItems) return true;
  }
  return false;
}

void OrvSizeCrawl::FindListings() {
  OrvSizeTextMap<size_t> byPattern;
  for (PageRecord& page : pageTable) {
    if (page.hasPager && page.pager.numbered == 0 && !ListsItems(page)) {
      page.hasPager = false;
      pagerVersion++;
    }
    if (!page.hasPager) continue;
    const OrvSizeText& local = urls[size_t(page.url)].local;
    int64_t own = OrvMatchPattern(page.pager.pattern, local);
    bool isFirst = own < 0 || page.pager.PageOf(own) < 2;
    auto found = byPattern.find(page.pager.pattern);
    if (found == byPattern.end()) {
      OrvSizeListingRecord listing;
      listing.pattern = page.pager.pattern;
      listing.step = page.pager.step;
      listing.offset = page.pager.offset;
      found = byPattern.emplace(page.pager.pattern, listings.size()).first;
      listings.push_back(std::move(listing));
    }
    OrvSizeListingRecord& listing = listings[found->second];
    listing.shownLast = std::max(listing.shownLast, page.pager.maxPage);
    if (isFirst && listing.firstUrl.empty()) listing.firstUrl = local;
  }
  // One listing of each kind: the one whose pager reaches furthest.
  for (OrvSizeListingRecord& listing : listings)
    listing.family =
        listing.firstUrl.empty() ? FamilyOfPattern(listing.pattern) : OrvShapeOf(listing.firstUrl);
  std::stable_sort(listings.begin(), listings.end(),
                   [](const auto& a, const auto& b) { return a.shownLast > b.shownLast; });
  OrvSizeList<OrvSizeListingRecord> kept;
  for (OrvSizeListingRecord& listing : listings) {
    bool known = false;
    for (const OrvSizeListingRecord& k : kept) known |= k.family == listing.family;
    if (!known) kept.push_back(std::move(listing));
  }
  listings = std::move(kept);
  pagerVersion++;
}

bool OrvSizeCrawl::IsGoodProbe(const OrvSizeListingRecord& listing, int32_t page,
                               int64_t number) const {
  if (page < 0) return false;
  if (number <= 2) return true;
  // A page of the listing links its neighbours; past the end, a site that
  // shows its last page or its first links only pages far below the number.
  OrvSizePager rule;
  rule.step = listing.step, rule.offset = listing.offset;
  for (int32_t linked : pageTable[size_t(page)].links) {
    int64_t value = OrvMatchPattern(listing.pattern, urls[size_t(linked)].local);
    if (value >= 0 && rule.PageOf(value) >= number - 1) return true;
  }
  return false;
}

void OrvSizeCrawl::ProbeListing(OrvSizeListingRecord& listing, int64_t untilRequests) {
  OrvSizePager rule;
  rule.step = listing.step, rule.offset = listing.offset;
  int64_t good = std::max<int64_t>(listing.shownLast, 1);
  int64_t bad = -1;
  for (int probes = 0; probes < kMostProbes; ++probes) {
    if (Spent() || OrvHttpLimits::GetRequests() - firstRequest >= untilRequests) break;
    int64_t number;
    if (bad < 0)
      number = probes == 0 ? good + 1 : good * 2;
    else if (bad - good > std::max<int64_t>(1, good / 16))
      number = good + (bad - good) / 2;
    else
      break;
    OrvSizeText local = OrvFillPattern(listing.pattern, rule.ValueOf(number));
    int32_t url = AddUrl(local);
    if (url < 0) break;
    long status = 0;
    int32_t page = -1;
    for (size_t i = 0; i < pageTable.size() && urls[size_t(url)].state == 1; ++i)
      if (pageTable[i].url == url) page = int32_t(i);
    if (page < 0 && urls[size_t(url)].state == 0) page = Fetch(url, true, &status);
    OrvSizeProbeRecord probe;
    probe.page = number;
    probe.status = status;
    probe.good = IsGoodProbe(listing, page, number);
    listing.probes.push_back(probe);
    if (probe.good) {
      listing.deepPages.push_back(page);
      good = number;
      const PageRecord& read = pageTable[size_t(page)];
      if (read.hasPager && read.pager.pattern == listing.pattern)
        good = std::max(good, read.pager.maxPage);
      if (bad >= 0 && good >= bad) bad = good + 1;
    } else {
      bad = number;
    }
  }
  // One page inside the listing tells its items from the frame of the site.
  int64_t middle = std::max<int64_t>(2, good / 2);
  if (listing.deepPages.empty() && good >= 2 && !Spent() &&
      OrvHttpLimits::GetRequests() - firstRequest < untilRequests) {
    int32_t url = AddUrl(OrvFillPattern(listing.pattern, rule.ValueOf(middle)));
    if (url >= 0 && urls[size_t(url)].state == 0) {
      int32_t page = Fetch(url, true, nullptr);
      if (IsGoodProbe(listing, page, std::min<int64_t>(middle, 2)))
        listing.deepPages.push_back(page);
    }
  }
  listing.lastLow = good;
  if (bad < 0) {
    // Never past the end: at least what was seen, perhaps twice as much.
    listing.lastPage = good;
    listing.lastHigh = good * 2;
  } else {
    listing.lastHigh = bad - 1;
    listing.lastPage = (listing.lastLow + listing.lastHigh + 1) / 2;
  }
}

void OrvSizeCrawl::CountItems(OrvSizeListingRecord& listing) {
  // Pages past the first read by the crawl count as well.
  for (size_t i = 0; i < pageTable.size(); ++i) {
    const PageRecord& page = pageTable[i];
    if (page.probe || !page.hasPager || page.pager.pattern != listing.pattern) continue;
    int64_t value = OrvMatchPattern(listing.pattern, urls[size_t(page.url)].local);
    if (value >= 0 && page.pager.PageOf(value) >= 2) listing.deepPages.push_back(int32_t(i));
  }
  OrvSizePager rule;
  rule.step = listing.step, rule.offset = listing.offset;
  // Links to listings of this kind are the listing's neighbours, not its items.
  OrvSizeText pagerShape = FamilyOfPattern(listing.pattern);
  auto isPager = [&](int32_t url) {
    const OrvSizeText& shape = shapeTable[size_t(urls[size_t(url)].shape)].key;
    return shape == listing.family || shape == pagerShape ||
           OrvMatchPattern(listing.pattern, urls[size_t(url)].local) >= 0;
  };
  // Links on every third page or more are the site's frame, not items.
  int32_t frame = std::max<int32_t>(3, int32_t(double(pagesRead) * 0.3));

  OrvSizeList<int32_t> samples = listing.deepPages;
  bool deep = !samples.empty();
  if (!deep) {
    for (size_t i = 0; i < pageTable.size(); ++i)
      if (!pageTable[i].probe && urls[size_t(pageTable[i].url)].local == listing.firstUrl)
        samples.push_back(int32_t(i));
  }
  if (samples.empty()) return;

  // The item shape: on pages deep in the listing, the links seen there and
  // hardly anywhere else; on its first page, the shape with most links off the frame.
  // Sections name their items' first directory ("/wood/entry-5/",
  // "/glass/entry-9/"): shapes that differ only there vote together.
  OrvSizeTextMap<int64_t> votes;
  for (int32_t p : samples)
    for (int32_t linked : pageTable[size_t(p)].links) {
      const UrlRecord& u = urls[size_t(linked)];
      // An item stands on its listing page and perhaps on one archive's.
      bool counts = deep ? u.pagesSeen <= 2 : u.pagesSeen < frame;
      if (counts && !isPager(linked)) votes[OrvLooseShape(shapeTable[size_t(u.shape)].key)]++;
    }
  const OrvSizeText* best = nullptr;
  int64_t most = 0;
  for (const auto& [key, n] : votes)
    if (n > most || (n == most && best && key < *best)) best = &key, most = n;
  if (!best) return;
  listing.itemShape = *best;
  OrvSizeList<bool> isItem(shapeTable.size(), false);
  for (int32_t p : samples)
    for (int32_t linked : pageTable[size_t(p)].links) {
      const UrlRecord& u = urls[size_t(linked)];
      bool counts = deep ? u.pagesSeen <= 2 : u.pagesSeen < frame;
      if (counts && !isPager(linked) &&
          OrvLooseShape(shapeTable[size_t(u.shape)].key) == listing.itemShape)
        isItem[size_t(u.shape)] = true;
    }
  for (size_t s = 0; s < isItem.size(); ++s)
    if (isItem[s]) listing.itemShapes.push_back(shapeTable[s].key);

  OrvSizeList<int64_t> counts;
  for (int32_t p : samples) {
    int64_t n = 0;
    for (int32_t linked : pageTable[size_t(p)].links) {
      const UrlRecord& u = urls[size_t(linked)];
      n += isItem[size_t(u.shape)] && u.pagesSeen < frame && !isPager(linked);
    }
    // The last page may be short; it does not speak for the others.
    int64_t value = OrvMatchPattern(listing.pattern, urls[size_t(pageTable[size_t(p)].url)].local);
    if (samples.size() > 1 && value >= 0 && rule.PageOf(value) == listing.lastHigh) continue;
    counts.push_back(n);
  }
  if (counts.empty()) return;
  std::sort(counts.begin(), counts.end());
  listing.itemsPerPage = double(counts[counts.size() / 2]);
  double k = listing.itemsPerPage;
  listing.items = k * (double(listing.lastPage) - 0.5);
  listing.itemsLow = k * (double(listing.lastLow) - 0.5);
  listing.itemsHigh = k * double(listing.lastHigh);
}

void OrvSizeCrawl::CountFamily(OrvSizeListingRecord& listing) {
  // The listings of this kind that were read: their pages past the first as
  // their pagers show them, the probed one as its probes found.
  double extra = 0, extraLow = 0, extraHigh = 0, items = 0;
  int64_t members = 0;
  for (const PageRecord& page : pageTable) {
    if (page.probe) continue;
    const UrlRecord& u = urls[size_t(page.url)];
    if (shapeTable[size_t(u.shape)].key != listing.family) continue;
    if (IsPagerUrl(page.url)) continue;
    members++;
    if (u.local == listing.firstUrl) {
      extra += double(listing.lastPage - 1);
      extraLow += double(listing.lastLow - 1);
      extraHigh += double(listing.lastHigh - 1);
      items += listing.items;
    } else if (page.hasPager) {
      double last = double(page.pager.maxPage);
      extra += last - 1, extraLow += last - 1, extraHigh += last * 2 - 1;
      items += listing.itemsPerPage * (last - 0.5);
    } else {
      items += listing.itemsPerPage * 0.5;
    }
  }
  if (members == 0) {
    members = 1;
    extra = double(listing.lastPage - 1), extraLow = double(listing.lastLow - 1);
    extraHigh = double(listing.lastHigh - 1), items = listing.items;
  }
  listing.memberExtra = extra / double(members);
  listing.memberExtraLow = extraLow / double(members);
  listing.memberExtraHigh = extraHigh / double(members);
  listing.memberItems = items / double(members);
}
