#pragma once

#include <cstdint>

#include "core/OrvGrowArray.h"
#include "estimate/OrvPageRecord.h"
#include "estimate/OrvPageTemplate.h"
#include "orvwebpage/OrvString.h"
#include "orvwebpage/OrvWebPageCountEstimate.h"

struct OrvListingRecord {
  int32_t shape = -1;
  OrvString pageParam;
  int32_t step = 0;
  int32_t offset = 0;
  int32_t firstProbe = 0;  // into the run's probes
  int32_t probeCount = 0;
  int32_t lastPage = -1;
  int32_t urlCount = 0;
};

struct OrvProbeRecord {
  int32_t page = 0;
  int32_t outcome = ORV_PROBE_UNFETCHED;
  int32_t httpStatus = 0;
  int32_t lastNumber = -1;
};

// What one EstimateCount was made of, kept for the caller to read after it.
// Listings and probes are logged as the crawl goes; the shapes are taken
// over from the crawl's own records when it ends.
struct OrvEstimateExplanation {
  OrvGrowArray<OrvPageRecord> shapes;  // in the order the sum runs over
  OrvGrowArray<OrvListingRecord> listings;
  OrvGrowArray<OrvProbeRecord> probes;  // those of each listing in a row

  // Frees everything, so a run leaves nothing of the one before.
  void Clear();
  // Gives the new listing's number; its probes follow with AddProbe.
  int32_t AddListing(const OrvPageTemplate& pageTemplate, int32_t urlCount);
  void AddProbe(const OrvProbeRecord& probe);

  int FetchShape(int index, OrvEstimateShape& shape) const;
  int FetchListing(int index, OrvEstimateListing& listing) const;
  int FetchProbe(int listing, int index, OrvEstimateProbe& probe) const;
};
