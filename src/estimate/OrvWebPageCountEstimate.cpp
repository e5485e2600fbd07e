#include "orvwebpage/OrvWebPageCountEstimate.h"

#include "core/OrvMemory.h"
#include "core/OrvShared.h"
#include "estimate/OrvWebPageCountEstimateImpl.h"

OrvWebPageCountEstimate::OrvWebPageCountEstimate()
    : estimator(OrvNew<OrvWebPageCountEstimateImpl>()) {}

OrvWebPageCountEstimate::OrvWebPageCountEstimate(const OrvWebPageCountEstimate& other)
    : estimator(OrvShare(other.estimator)) {}

OrvWebPageCountEstimate::~OrvWebPageCountEstimate() { OrvRelease(estimator); }

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): copy and swap, safe on itself
OrvWebPageCountEstimate& OrvWebPageCountEstimate::operator=(const OrvWebPageCountEstimate& other) {
  return OrvAssignShared(*this, other, &OrvWebPageCountEstimate::estimator);
}

long OrvWebPageCountEstimate::EstimateCount(char* url, long length) {
  return estimator ? estimator->EstimateCount(url, length) : 0;
}

void OrvWebPageCountEstimate::StopEstimating() {
  if (estimator) estimator->StopEstimating();
}

int OrvWebPageCountEstimate::GetPhase() {
  return estimator ? estimator->phase.load(std::memory_order_relaxed) : int(ORV_ESTIMATE_IDLE);
}

int OrvWebPageCountEstimate::GetShapeCount() {
  return estimator ? estimator->explanation.shapes.count : 0;
}

int OrvWebPageCountEstimate::FetchShape(int index, OrvEstimateShape& shape) {
  return estimator ? estimator->explanation.FetchShape(index, shape) : 0;
}

int OrvWebPageCountEstimate::GetListingCount() {
  return estimator ? estimator->explanation.listings.count : 0;
}

int OrvWebPageCountEstimate::FetchListing(int index, OrvEstimateListing& listing) {
  return estimator ? estimator->explanation.FetchListing(index, listing) : 0;
}

int OrvWebPageCountEstimate::FetchProbe(int listing, int index, OrvEstimateProbe& probe) {
  return estimator ? estimator->explanation.FetchProbe(listing, index, probe) : 0;
}
