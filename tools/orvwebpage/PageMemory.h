#pragma once

#include <string_view>

// The library ends the process when memory runs out while it builds a page's
// tree, so a page is first weighed against the memory the process may still
// take: a tree item for every tag, copies of the text. Throws CommandError
// naming both figures when the page would not fit. A tree of links only
// (OrvLinkHtml) holds items for links alone.
enum class PageTree { kWhole, kLinks };
void CheckPageMemory(std::string_view page, PageTree tree = PageTree::kWhole);
