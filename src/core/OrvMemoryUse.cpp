#include "orvwebpage/OrvMemoryUse.h"

#include "core/OrvMemory.h"

std::atomic<int64_t> orvHeldBytes{0};

int64_t OrvGetHeldBytes() { return orvHeldBytes.load(std::memory_order_relaxed); }
