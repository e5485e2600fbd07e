#pragma once

#include <cstdint>

#include "orvwebpage/OrvExport.h"

// Bytes the library's analysers and HTTP clients hold at this moment, over
// the whole process: what a memory budget is measured against.
ORV_API int64_t OrvGetHeldBytes();
