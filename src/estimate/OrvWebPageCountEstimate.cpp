#include "orvwebpage/OrvWebPageCountEstimate.h"

#include "core/OrvMemory.h"
#include "estimate/OrvWebPageCountEstimateImpl.h"

OrvWebPageCountEstimate::OrvWebPageCountEstimate()
    : estimator(OrvNew<OrvWebPageCountEstimateImpl>()) {}

OrvWebPageCountEstimate::OrvWebPageCountEstimate(const OrvWebPageCountEstimate& other)
    : estimator(other.estimator) {
  if (estimator) estimator->references++;
}

OrvWebPageCountEstimate::~OrvWebPageCountEstimate() { Release(); }

OrvWebPageCountEstimate& OrvWebPageCountEstimate::operator=(const OrvWebPageCountEstimate& other) {
  if (estimator == other.estimator) return *this;
  OrvWebPageCountEstimateImpl* shared = other.estimator;
  if (shared) shared->references++;
  Release();
  estimator = shared;
  return *this;
}

void OrvWebPageCountEstimate::Release() {
  if (estimator && --estimator->references == 0) OrvDelete(estimator);
  estimator = nullptr;
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
