#include "orvwebpage/OrvWebPageCountEstimate.h"

#include <utility>

#include "core/OrvMemory.h"
#include "core/OrvShared.h"
#include "estimate/OrvWebPageCountEstimateImpl.h"

OrvWebPageCountEstimate::OrvWebPageCountEstimate()
    : estimator(OrvNew<OrvWebPageCountEstimateImpl>()) {}

OrvWebPageCountEstimate::OrvWebPageCountEstimate(const OrvWebPageCountEstimate& other)
    : estimator(OrvShare(other.estimator)) {}

OrvWebPageCountEstimate::~OrvWebPageCountEstimate() {
  if (OrvLetGo(estimator)) OrvDelete(estimator);
}

OrvWebPageCountEstimate& OrvWebPageCountEstimate::operator=(const OrvWebPageCountEstimate& other) {
  OrvWebPageCountEstimate copy(other);
  std::swap(estimator, copy.estimator);
  return *this;
}

long OrvWebPageCountEstimate::EstimateCount(char* url, long length) {
  return estimator ? estimator->EstimateCount(url, length) : 0;
}

void OrvWebPageCountEstimate::StopEstimating() {
  if (estimator) estimator->StopEstimating();
}
