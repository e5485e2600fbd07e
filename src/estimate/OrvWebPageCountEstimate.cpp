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
