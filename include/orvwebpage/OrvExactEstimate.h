#pragma once

#include <cstdint>

#include "orvwebpage/OrvExport.h"
#include "orvwebpage/OrvWebPageCountEstimate.h"

// The result of the estimator's last EstimateCount summed in 64 bits: each
// shape's pages (a listing's last page times its URLs, else the shape's
// estimate) times its sightings. EstimateCount keeps its 32-bit arithmetic
// with wrap-around, so where the two differ, its result wrapped.
ORV_API int64_t OrvExactEstimate(OrvWebPageCountEstimate& estimator);
