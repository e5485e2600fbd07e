#pragma once

#include <string>

#include "SiteRandom.h"

// Made-up English-looking text. Lengths are what matter to a reader of the
// page's shape: titles and notes stay short, paragraphs long.
std::string SiteWord(SiteRandom& random);
std::string SiteTitle(SiteRandom& random, int words);
// At least minBytes bytes that are not blanks, in whole sentences.
std::string SiteParagraph(SiteRandom& random, int minBytes);
