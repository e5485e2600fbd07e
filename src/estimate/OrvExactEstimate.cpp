#include "orvwebpage/OrvExactEstimate.h"

int64_t OrvExactEstimate(OrvWebPageCountEstimate& estimator) {
  int64_t sum = 0;
  for (int i = 0; i < estimator.GetShapeCount(); i++) {
    OrvEstimateShape shape{};
    if (!estimator.FetchShape(i, shape)) continue;
    int64_t pages = shape.estimate;
    OrvEstimateListing listing{};
    if (shape.listing >= 0 && estimator.FetchListing(shape.listing, listing) &&
        listing.lastPage > 0)
      pages = int64_t(listing.lastPage) * int64_t(listing.urlCount);
    // Counts are 32-bit in the estimator; a count past 2^31 reads as its bits.
    sum += pages * int64_t(uint32_t(shape.sightings));
  }
  return sum;
}
