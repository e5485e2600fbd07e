#pragma once

#include <string_view>

// The library ends the process when memory runs out while it builds a page's
// tree, so a page is first weighed against the memory the process may still
// take: the parser's stack for every tag, copies of the text, and the items
// the tree may hold. Throws CommandError naming both figures when the page
// would not fit. A tree of links (OrvLinkHtml) holds items for links alone;
// one of visible texts (OrvVisibleHtml) for texts and at most every tag that
// comes before the last of them.
enum class PageTree { kTexts, kLinks };
void CheckPageMemory(std::string_view page, PageTree tree);
