#pragma once

#include <string>
#include <vector>

#include "orvwebpage/OrvString.h"

// A link as the links command takes it: the target and a label, in the
// classifier's own text type so that handing them over copies nothing more.
struct PageLink {
  OrvString url;
  OrvString label;
};

// The `a` and `area` links of an HTML page, in document order, each resolved
// against pageUrl and the page's <base> (see OrvPageLinks). contentType is the
// Content-Type the page came with, empty for none. resolved, when given, says
// whether there was a base to resolve against; without one the links are as
// written.
std::vector<PageLink> LinksOfPage(std::string html, const std::string& contentType = "",
                                  const std::string& pageUrl = "", bool* resolved = nullptr);
