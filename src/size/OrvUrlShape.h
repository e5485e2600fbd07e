#pragma once

// What the size crawl reads from a URL alone: the part behind the host, in a
// form where the same page has one text, and its shape, which puts articles,
// list pages, archives and their pagers apart even when none has a query.

#include "size/OrvSizeText.h"

// Path and query of an absolute http(s) URL, parameters sorted by name;
// empty when url is no http(s) URL.
OrvSizeText OrvLocalPart(std::string_view url);

// Whether a link target is worth a page fetch: no image, style sheet, script,
// archive, document or feed.
bool OrvIsPageLike(std::string_view local);

// The shape of a local part: directories that lead to more directories keep
// their name at the top or before a number ("category/*/", "page/#/"), numbers
// become "#", words with a number keep the word ("page#", "index#.html"),
// other names "*"; the extension and the sorted parameter names stay
// ("*.php?id", "?paged").
OrvSizeText OrvShapeOf(std::string_view local);

// A shape whose first directory, when kept by name, is any name:
// "wood/*/" and "glass/*/" both give "*/*/".
OrvSizeText OrvLooseShape(std::string_view shape);

// A local part with one run of digits taken out: "/page/{}/" and value 7 for
// "/page/7/". Runs are counted from 0 in text order.
struct OrvNumberSlot {
  OrvSizeText pattern;  // the text with "{}" where the digits stood
  int64_t value = 0;
  bool padded = false;  // written with leading zeros ("02")
  bool last = false;    // the last run of digits in the text
};
void OrvNumberSlots(std::string_view local, OrvSizeList<OrvNumberSlot>& slots);

// The digits that fill pattern's "{}" in local, or -1 when local is not of
// the pattern.
int64_t OrvMatchPattern(std::string_view pattern, std::string_view local);

// The pattern with n in place of "{}".
OrvSizeText OrvFillPattern(std::string_view pattern, int64_t n);
