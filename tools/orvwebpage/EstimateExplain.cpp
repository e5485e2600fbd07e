#include "EstimateExplain.h"

#include <algorithm>
#include <cstdio>

#include "ShownText.h"

namespace {

std::string FromOrv(const OrvString& s) { return s.buf ? std::string(s.buf, size_t(s.len)) : ""; }

}  // namespace

const char* KindName(int kind) {
  switch (kind) {
    case ORV_PAGE_CONTENT:
      return "content";
    case ORV_PAGE_LISTING:
      return "listing";
    case ORV_PAGE_PLAIN:
      return "plain";
    default:
      return "unread";
  }
}

const char* OutcomeName(int outcome) {
  switch (outcome) {
    case ORV_PROBE_PAGER:
      return "pager";
    case ORV_PROBE_NO_PAGER:
      return "no pager";
    case ORV_PROBE_UNPARSED:
      return "unparsed";
    default:
      return "unfetched";
  }
}

namespace {

// "100 404", "50 ok to 60", "7 no pager".
std::string ProbeText(const OrvEstimateProbe& probe) {
  std::string text = std::to_string(probe.page) + " ";
  switch (probe.outcome) {
    case ORV_PROBE_PAGER:
      return text + "ok to " + std::to_string(probe.lastNumber);
    case ORV_PROBE_UNFETCHED:
      return text + (probe.httpStatus ? std::to_string(probe.httpStatus) : "failed");
    default:
      return text + OutcomeName(probe.outcome);
  }
}

ExplainedListing ReadListing(OrvWebPageCountEstimate& estimator, int index) {
  OrvEstimateListing listing{};
  estimator.FetchListing(index, listing);
  ExplainedListing out;
  OrvEstimateShape shape{};
  if (estimator.FetchShape(listing.shape, shape)) {
    out.key = FromOrv(shape.key);
    out.url = FromOrv(shape.url);
  }
  out.param = FromOrv(listing.pageParam);
  out.step = listing.step;
  out.offset = listing.offset;
  out.lastPage = listing.lastPage;
  out.urlCount = listing.urlCount;
  for (int i = 0; i < listing.probeCount; i++) {
    OrvEstimateProbe probe{};
    if (estimator.FetchProbe(index, i, probe)) out.probes.push_back(probe);
  }
  return out;
}

size_t Width(long value) { return std::to_string(value).size(); }

}  // namespace

Explanation ReadExplanation(OrvWebPageCountEstimate& estimator) {
  Explanation out;
  for (int i = 0; i < estimator.GetShapeCount(); i++) {
    OrvEstimateShape shape{};
    if (!estimator.FetchShape(i, shape)) continue;
    ExplainedShape s;
    s.key = FromOrv(shape.key);
    s.url = FromOrv(shape.url);
    s.kind = shape.kind;
    s.read = shape.read != 0;
    s.estimate = shape.estimate;
    s.sightings = shape.sightings;
    s.pages = int32_t(uint32_t(shape.estimate) * uint32_t(shape.sightings));
    s.listing = shape.listing;
    out.shapes.push_back(std::move(s));
  }
  std::stable_sort(
      out.shapes.begin(), out.shapes.end(),
      [](const ExplainedShape& a, const ExplainedShape& b) { return a.pages > b.pages; });
  for (int i = 0; i < estimator.GetListingCount(); i++)
    out.listings.push_back(ReadListing(estimator, i));
  return out;
}

void PrintExplanation(const Explanation& explanation, std::ostream& out) {
  size_t keyWidth = 0, estimateWidth = 0, sightingsWidth = 0, pagesWidth = 0;
  for (const ExplainedShape& s : explanation.shapes) {
    keyWidth = std::max(keyWidth, s.key.size());
    estimateWidth = std::max(estimateWidth, Width(s.estimate));
    sightingsWidth = std::max(sightingsWidth, Width(s.sightings));
    pagesWidth = std::max(pagesWidth, Width(s.pages));
  }
  keyWidth = std::min<size_t>(keyWidth, 40);
  out << "\nshapes: " << explanation.shapes.size() << ", largest first\n";
  for (const ExplainedShape& s : explanation.shapes) {
    char figures[96];
    std::snprintf(figures, sizeof figures, "%-7s %*ld x %-*ld = %*ld", KindName(s.kind),
                  int(estimateWidth), s.estimate, int(sightingsWidth), s.sightings, int(pagesWidth),
                  s.pages);
    std::string key = ShownText(s.key);
    if (key.size() < keyWidth) key.resize(keyWidth, ' ');
    out << "  " << key << "  " << figures << "  " << ShownText(s.url) << "\n";
  }
  out << "\nlistings: " << explanation.listings.size() << "\n";
  for (const ExplainedListing& l : explanation.listings) {
    out << "  " << ShownText(l.key) << "  " << ShownText(l.url) << "\n"
        << "    pager: " << ShownText(l.param) << ", step " << l.step << ", offset " << l.offset
        << "\n"
        << "    probes:";
    for (size_t i = 0; i < l.probes.size(); i++) out << (i ? ", " : " ") << ProbeText(l.probes[i]);
    out << "\n    last page: ";
    if (l.lastPage > 0)
      out << l.lastPage << " x " << l.urlCount << " URLs on its page\n";
    else
      out << "not found\n";
  }
}

void AddExplanation(const Explanation& explanation, nlohmann::ordered_json& doc) {
  nlohmann::ordered_json shapes = nlohmann::ordered_json::array();
  for (const ExplainedShape& s : explanation.shapes) {
    shapes.push_back({{"key", s.key},
                      {"kind", KindName(s.kind)},
                      {"read", s.read},
                      {"estimate", s.estimate},
                      {"sightings", s.sightings},
                      {"pages", s.pages},
                      {"url", s.url},
                      {"listing", s.listing >= 0 ? nlohmann::ordered_json(s.listing) : nullptr}});
  }
  nlohmann::ordered_json listings = nlohmann::ordered_json::array();
  for (const ExplainedListing& l : explanation.listings) {
    nlohmann::ordered_json probes = nlohmann::ordered_json::array();
    for (const OrvEstimateProbe& p : l.probes) {
      probes.push_back({{"page", p.page},
                        {"outcome", OutcomeName(p.outcome)},
                        {"status", p.httpStatus},
                        {"last", p.lastNumber}});
    }
    listings.push_back({{"key", l.key},
                        {"url", l.url},
                        {"param", l.param},
                        {"step", l.step},
                        {"offset", l.offset},
                        {"probes", std::move(probes)},
                        {"lastPage", l.lastPage},
                        {"urls", l.urlCount}});
  }
  doc["shapes"] = std::move(shapes);
  doc["listings"] = std::move(listings);
}
