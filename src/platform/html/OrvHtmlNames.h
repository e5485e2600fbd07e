#pragma once

#include <cstdint>

// Numbers the builder gives elements and attributes by their (lower-case)
// names. Known names get fixed small numbers; others a stable number from
// their bytes, at 1000 or above, so no name ever takes the numbers the
// analysers test unless it is the element or attribute they stand for.
uint16_t OrvHtmlTagNumber(const char* name);
uint16_t OrvHtmlAttrNumber(const char* name);
