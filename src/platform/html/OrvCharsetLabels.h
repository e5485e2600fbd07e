#pragma once

#include <cstddef>

#include "platform/html/OrvPageCharset.h"

// One encoding and the labels that name it.
struct OrvCharsetLabels {
  OrvPageCharsetKind kind;
  const char* converter;  // for kOther, the legacy converter's name
  const char* labels;     // lower case, separated by one blank
};

// The entry of a lower-case, trimmed label, or null for a label browsers do
// not know.
const OrvCharsetLabels* OrvFindCharsetLabel(const char* label);

// Every entry, for whoever must try them all.
const OrvCharsetLabels* OrvCharsetLabelTable(size_t& count);
