#include "estimate/OrvEstimateExplanation.h"

void OrvEstimateExplanation::Clear() {
  shapes.Release();
  listings.Release();
  probes.Release();
}

int32_t OrvEstimateExplanation::AddListing(const OrvPageTemplate& pageTemplate, int32_t urlCount) {
  OrvListingRecord* listing = listings.AddSlot();
  listing->shape = -1;
  const OrvUrlParam& param = pageTemplate.params[pageTemplate.paramIndex];
  listing->pageParam.CopyBuf(param.name.buf, param.name.len);
  listing->step = pageTemplate.step;
  listing->offset = pageTemplate.offset;
  listing->firstProbe = probes.count;
  listing->probeCount = 0;
  listing->lastPage = -1;
  listing->urlCount = urlCount;
  return listings.count - 1;
}

void OrvEstimateExplanation::AddProbe(const OrvProbeRecord& probe) {
  if (listings.count == 0) return;
  *probes.AddSlot() = probe;
  listings.items[listings.count - 1].probeCount++;
}

int OrvEstimateExplanation::FetchShape(int index, OrvEstimateShape& shape) const {
  if (index < 0 || index >= shapes.count) return 0;
  const OrvPageRecord& record = shapes.items[index];
  shape.key = record.key;
  shape.url = record.url;
  shape.read = record.state != ORV_PAGE_UNREAD;
  shape.kind = record.state;
  shape.estimate = record.estimate;
  shape.sightings = record.sightings;
  shape.listing = record.listing;
  return 1;
}

int OrvEstimateExplanation::FetchListing(int index, OrvEstimateListing& listing) const {
  if (index < 0 || index >= listings.count) return 0;
  const OrvListingRecord& record = listings.items[index];
  listing.shape = record.shape;
  listing.pageParam = record.pageParam;
  listing.step = record.step;
  listing.offset = record.offset;
  listing.probeCount = record.probeCount;
  listing.lastPage = record.lastPage;
  listing.urlCount = record.urlCount;
  return 1;
}

int OrvEstimateExplanation::FetchProbe(int listing, int index, OrvEstimateProbe& probe) const {
  if (listing < 0 || listing >= listings.count) return 0;
  const OrvListingRecord& record = listings.items[listing];
  if (index < 0 || index >= record.probeCount) return 0;
  const OrvProbeRecord& found = probes.items[record.firstProbe + index];
  probe.page = found.page;
  probe.outcome = found.outcome;
  probe.httpStatus = found.httpStatus;
  probe.lastNumber = found.lastNumber;
  return 1;
}
