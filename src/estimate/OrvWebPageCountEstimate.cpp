#include "orvwebpage/OrvWebPageCountEstimate.h"

#include "core/OrvMemory.h"
#include "core/OrvShared.h"
#include "estimate/OrvWebPageCountEstimateImpl.h"

OrvWebPageCountEstimate::OrvWebPageCountEstimate()
    : estimator(OrvNew<OrvWebPageCountEstimateImpl>()) {}

OrvWebPageCountEstimate::OrvWebPageCountEstimate(const OrvWebPageCountEstimate& other)
    : estimator(OrvShare(other.estimator)) {}

OrvWebPageCountEstimate::~OrvWebPageCountEstimate() { OrvRelease(estimator); }

OrvWebPageCountEstimate& OrvWebPageCountEstimate::operator=(const OrvWebPageCountEstimate& other) {
  return OrvAssignShared(*this, other, &OrvWebPageCountEstimate::estimator);
}

long OrvWebPageCountEstimate::EstimateCount(char* url, long length) {
  return estimator ? estimator->EstimateCount(url, length) : 0;
}

void OrvWebPageCountEstimate::StopEstimating() {
  if (estimator) estimator->StopEstimating();
}
