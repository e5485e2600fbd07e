#pragma once

#include "orvwebpage/OrvString.h"

// href resolved against base as a browser does; 1, or 0 with out empty.
int OrvSizeResolve(const char* base, long baseLen, const char* href, long hrefLen, OrvString& out);
