#include "core/OrvMemory.h"

void OrvOutOfMemory() { std::abort(); }
