#pragma once

#include <string>
#include <vector>

// A link as the links command takes it: the target and a label.
struct PageLink {
  std::string url;
  std::string label;
};

// The `a` elements of an HTML page that have a link target, in document
// order: the target as written, and the text below the element, its runs
// joined by a space and every stretch of blanks made one space.
// contentType is the Content-Type the page came with, empty for none.
std::vector<PageLink> LinksOfPage(std::string html, const std::string& contentType = "");
