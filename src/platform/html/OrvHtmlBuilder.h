#pragma once

#include "orvwebpage/OrvHtml.h"
#include "orvwebpage/OrvItem.h"
#include "platform/html/OrvDocArena.h"
#include "platform/html/OrvTreeBuilder.h"

// Parses a page with the HTML parser and builds its var_item forest in arena.
// Returns 0 and the first top-level item (null for a page without items), or
// non-zero when the page cannot be handed to the parser at all. contentType
// (may be null) is the Content-Type the page came with; only decoding reads it.
// cutRawBodies false leaves every script and style body to the parser, which
// gives the same tree more slowly; parses, if given, becomes the number of
// times the parser ran (2 when cut bodies were not met where they were cut).
// scope kLinks keeps only what links are read from (OrvTreeBuilder.h). With a
// sink, each top-level item goes to it as soon as it is complete and root
// stays null.
[[nodiscard]] int OrvBuildHtmlTree(const char* text, long length, ORV_CHARSET charset,
                                   const char* contentType, OrvDocArena& arena, var_item*& root,
                                   bool cutRawBodies = true, int* parses = nullptr,
                                   OrvTreeScope scope = OrvTreeScope::kWhole,
                                   const OrvLinkSink* sink = nullptr);
