#pragma once

#include <cstdint>

#include "core/OrvPtrList.h"
#include "estimate/OrvPageHarvest.h"
#include "orvwebpage/OrvWebPageUrl.h"

// How the URL of any page of a listing is made: the page parameter of a pager
// link is step * (page - 1) + offset.
struct OrvPageTemplate : OrvLinkRecord {
  int32_t paramIndex = -1;  // index into params of the page parameter
  int32_t step = 0;
  int32_t offset = 0;
};

// First index at which both URLs have a parameter of the same name (letters
// folded) with different values; -1 if none. Goes by position, not by name.
int32_t FindChangedParam(const OrvUrlParam* a, int32_t aCount, const OrvUrlParam* b,
                         int32_t bCount);
// Derives the template from the first pair of neighbouring run records whose
// targets differ in one parameter and whose numbers differ. Gives the position
// of the pair's second record, or -1 with the template unchanged.
int32_t BuildPageTemplate(OrvPageTemplate& pageTemplate, const OrvPtrList& list);
// The template's link with the page parameter set for that page; the caller
// rebuilds the text.
void MakePageUrl(OrvLinkRecord& out, long page, const OrvPageTemplate& pageTemplate);
