#pragma once

// The links of one fetched page as the size crawl needs them: every `a` and
// `area` target and `<link rel="next">`, resolved against the page and its
// `<base href>`, with the text of the link and whether it leads to the next
// page of a listing.

#include <cstdint>

#include "orvwebpage/OrvItem.h"
#include "size/OrvSizeText.h"

struct OrvSizeLink {
  OrvSizeText url;    // absolute, without fragment
  OrvSizeText label;  // the link's text, whitespace folded
  bool next = false;  // rel="next", a "next"/"older" class or label, or an arrow alone
};

// Replaces links with the first most of the tree below root, in document order.
void OrvReadSizeLinks(var_item* root, const char* pageUrl, long pageLen,
                      OrvSizeList<OrvSizeLink>& links, size_t most = SIZE_MAX);

// Whether a label or class says "the next page": next, older, more, or arrows only.
bool OrvIsNextLabel(const char* text, long length);
