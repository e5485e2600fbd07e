// The crawl's figure: every shape sized by its distinct URLs and how often
// they recur, the shapes a listing lists sized by that listing, and the
// pages of the listings past their first added.

#include <algorithm>
#include <cmath>

#include "size/OrvRecapture.h"
#include "size/OrvSizeCrawl.h"

namespace {

// Fewer links of a shape than this never make a page an index of it.
constexpr int32_t kLeastHubLinks = 8;

}  // namespace

// Two samples of each shape's URLs: the pages that list many of them (an
// index, a start page) against the pages that mention a few; when the pages
// read are not of both kinds, the pages read taken in turns. One pass over
// the links, whatever the number of shapes.
void OrvSizeCrawl::Recapture(OrvSizeList<OrvRecapture>& out) const {
  // Links of each shape on each page, as (page, count) runs per shape.
  OrvSizeList<OrvSizeList<std::pair<int32_t, int32_t>>> byShape(shapeTable.size());
  OrvSizeList<int32_t> onPage(shapeTable.size(), 0);
  for (size_t p = 0; p < pageTable.size(); ++p) {
    for (int32_t linked : pageTable[p].links) onPage[size_t(urls[size_t(linked)].shape)]++;
    for (int32_t linked : pageTable[p].links) {
      size_t shape = size_t(urls[size_t(linked)].shape);
      if (onPage[shape]) byShape[shape].push_back({int32_t(p), onPage[shape]}), onPage[shape] = 0;
    }
  }
  OrvSizeList<int32_t> hub(shapeTable.size(), 0);
  OrvSizeList<bool> byHub(shapeTable.size(), false);
  OrvSizeList<int32_t> counts;
  for (size_t s = 0; s < byShape.size(); ++s) {
    if (byShape[s].empty()) continue;
    counts.clear();
    for (const auto& run : byShape[s]) counts.push_back(run.second);
    std::nth_element(counts.begin(), counts.begin() + counts.size() / 2, counts.end());
    hub[s] = std::max(kLeastHubLinks, 2 * counts[counts.size() / 2]);
    int32_t hubs = 0;
    for (const auto& run : byShape[s]) hubs += run.second >= hub[s];
    byHub[s] = hubs > 0 && size_t(hubs) < byShape[s].size();
  }
  OrvSizeList<uint8_t> sides(urls.size(), 0);
  for (size_t p = 0; p < pageTable.size(); ++p) {
    const OrvSizeList<int32_t>& links = pageTable[p].links;
    for (int32_t linked : links) onPage[size_t(urls[size_t(linked)].shape)]++;
    for (int32_t linked : links) {
      size_t s = size_t(urls[size_t(linked)].shape);
      sides[size_t(linked)] |= byHub[s] ? (onPage[s] >= hub[s] ? 1 : 2) : uint8_t(1u << (p & 1));
    }
    for (int32_t linked : links) onPage[size_t(urls[size_t(linked)].shape)] = 0;
  }
  out.assign(shapeTable.size(), OrvRecapture());
  for (size_t s = 0; s < shapeTable.size(); ++s) {
    int64_t first = 0, second = 0, both = 0, unsampled = 0;
    for (int32_t no : shapeTable[s].urls) {
      const UrlRecord& u = urls[size_t(no)];
      if (u.state == 2 || IsPagerUrl(no)) continue;
      uint8_t side = sides[size_t(no)];
      first += (side & 1) != 0, second += (side & 2) != 0, both += side == 3;
      unsampled += side == 0;
    }
    OrvRecapture& r = out[s];
    r = OrvChapman(first, second, both);
    r.estimate += double(unsampled), r.low += double(unsampled), r.high += double(unsampled);
  }
}

void OrvSizeCrawl::Sum() {
  shapes.clear();
  pages = low = high = 0;
  OrvSizeTextMap<size_t> byKey;
  OrvSizeList<OrvRecapture> recaptured;
  Recapture(recaptured);
  for (size_t shapeNo = 0; shapeNo < shapeTable.size(); ++shapeNo) {
    const ShapeRecord& table = shapeTable[shapeNo];
    OrvSizeShapeRecord shape;
    shape.key = table.key;
    int64_t failed = 0;
    for (int32_t no : table.urls) {
      const UrlRecord& u = urls[size_t(no)];
      if (u.state == 2) {
        failed++;
        continue;
      }
      if (!IsPagerUrl(no)) shape.seen++;
    }
    shape.fetched = table.fetched;
    const OrvRecapture& r = recaptured[shapeNo];
    // URLs of a shape that failed when fetched say the unread ones fail as often.
    double unseen = r.estimate - double(shape.seen);
    double share = table.fetched > 0 ? 1.0 - double(failed) / double(table.fetched) : 1.0;
    shape.estimate = double(shape.seen) + unseen * share;
    shape.low = r.low > double(shape.seen)
                    ? double(shape.seen) + (r.low - double(shape.seen)) * share
                    : double(shape.seen);
    shape.high = double(shape.seen) + (r.high - double(shape.seen)) * share;
    shape.how = shape.estimate > double(shape.seen) + 0.5 ? "recapture" : "seen";
    if (shape.seen == 0) continue;
    byKey.emplace(shape.key, shapes.size());
    shapes.push_back(std::move(shape));
  }

  // How many listings of each kind, then what they add.
  for (OrvSizeListingRecord& listing : listings) {
    auto family = byKey.find(listing.family);
    double members = 1, membersLow = 1, membersHigh = 1;
    if (family != byKey.end()) {
      const OrvSizeShapeRecord& s = shapes[family->second];
      members = std::max(1.0, s.estimate), membersLow = std::max(1.0, s.low);
      membersHigh = std::max(1.0, s.high);
    }
    listing.members = std::llround(members);
    listing.extraPages = members * listing.memberExtra;
    listing.extraLow = membersLow * listing.memberExtraLow;
    listing.extraHigh = membersHigh * listing.memberExtraHigh;
    if (listing.members <= 1) {
      listing.items = std::max(listing.items, 0.0);
    } else {
      listing.items = members * listing.memberItems;
      listing.itemsLow = membersLow * listing.memberItems * 0.5;
      listing.itemsHigh = membersHigh * listing.memberItems * 1.5;
    }
  }
  // The shapes that listings list count as the largest listing of them that
  // lists them all, or else the largest kind of listing: archives list the
  // same posts as the main listing, not others.
  OrvSizeTextSet done;
  for (const OrvSizeListingRecord& first : listings) {
    if (first.itemShape.empty() || !done.insert(first.itemShape).second) continue;
    const OrvSizeListingRecord* single = nullptr;
    const OrvSizeListingRecord* many = nullptr;
    OrvSizeTextSet members;
    for (const OrvSizeListingRecord& listing : listings) {
      if (listing.itemShape != first.itemShape || listing.items <= 0) continue;
      members.insert(listing.itemShapes.begin(), listing.itemShapes.end());
      const OrvSizeListingRecord*& slot = listing.members <= 1 ? single : many;
      if (!slot || listing.items > slot->items) slot = &listing;
    }
    const OrvSizeListingRecord* by = single ? single : many;
    if (!by) continue;
    double seen = 0;
    for (const OrvSizeShapeRecord& shape : shapes)
      if (members.count(shape.key)) seen += double(shape.seen);
    if (seen <= 0) continue;
    // Shared out by what was seen of each.
    for (OrvSizeShapeRecord& shape : shapes) {
      if (!members.count(shape.key)) continue;
      double part = double(shape.seen) / seen;
      shape.estimate = std::max(double(shape.seen), by->items * part);
      shape.low = std::max(double(shape.seen), by->itemsLow * part);
      shape.high = std::max(shape.estimate, by->itemsHigh * part);
      shape.how = "listing items";
    }
  }
  for (const OrvSizeShapeRecord& shape : shapes)
    pages += shape.estimate, low += shape.low, high += shape.high;
  for (const OrvSizeListingRecord& listing : listings)
    pages += listing.extraPages, low += listing.extraLow, high += listing.extraHigh;
  std::stable_sort(shapes.begin(), shapes.end(),
                   [](const auto& a, const auto& b) { return a.estimate > b.estimate; });
}
