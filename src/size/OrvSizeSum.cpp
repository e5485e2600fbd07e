// The crawl's figure: every shape sized by its distinct URLs and how often
// they recur, the shapes a listing lists sized by that listing, and the
// pages of the listings past their first added.

#include <algorithm>

#include "size/OrvRecapture.h"
#include "size/OrvSizeCrawl.h"

void OrvSizeCrawl::Sum() {
  shapes.clear();
  pages = low = high = 0;
  OrvSizeTextMap<size_t> byKey;
  for (const ShapeRecord& table : shapeTable) {
    OrvSizeShapeRecord shape;
    shape.key = table.key;
    int64_t f1 = 0, f2 = 0, failed = 0;
    for (int32_t no : table.urls) {
      const UrlRecord& u = urls[size_t(no)];
      if (u.state == 2) {
        failed++;
        continue;
      }
      if (IsPagerPage(u.local)) continue;
      shape.seen++;
      f1 += u.pagesSeen == 1;
      f2 += u.pagesSeen == 2;
    }
    shape.fetched = table.fetched;
    OrvRecapture r = OrvChao1(shape.seen, f1, f2);
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
    listing.members = int64_t(members + 0.5);
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
  // A shape that listings list counts as the largest listing of it that
  // lists them all, or else the largest kind of listing: archives list the
  // same posts as the main listing, not others.
  for (OrvSizeShapeRecord& shape : shapes) {
    const OrvSizeListingRecord* single = nullptr;
    const OrvSizeListingRecord* many = nullptr;
    for (const OrvSizeListingRecord& listing : listings) {
      if (listing.itemShape != shape.key || listing.items <= 0) continue;
      const OrvSizeListingRecord*& slot = listing.members <= 1 ? single : many;
      if (!slot || listing.items > slot->items) slot = &listing;
    }
    const OrvSizeListingRecord* by = single ? single : many;
    if (!by) continue;
    double seen = double(shape.seen);
    shape.estimate = std::max(seen, by->items);
    shape.low = std::max(seen, by->itemsLow);
    shape.high = std::max(shape.estimate, by->itemsHigh);
    shape.how = "listing items";
  }
  for (const OrvSizeShapeRecord& shape : shapes)
    pages += shape.estimate, low += shape.low, high += shape.high;
  for (const OrvSizeListingRecord& listing : listings)
    pages += listing.extraPages, low += listing.extraLow, high += listing.extraHigh;
  std::stable_sort(shapes.begin(), shapes.end(),
                   [](const auto& a, const auto& b) { return a.estimate > b.estimate; });
}
