#pragma once

#include <string>
#include <utility>
#include <vector>

#include "SitePage.h"
#include "SiteRequest.h"

// A paged listing: which URL each page has, which page a request asks for,
// and the pager that each page shows.
struct SiteListing {
  enum class PastEnd { NotFound, LastPage };
  enum class PagerKind {
    All,             // every page number
    Window,          // the numbers within `window` of the current one
    WindowWithEnds,  // the window, plus the first and the last number
  };

  std::string path = "/list";
  std::vector<std::pair<std::string, std::string>> fixed;  // parameters before the page one
  std::string pageParam = "page";
  int first = 1;  // the parameter's value on page 1
  int step = 1;   // its change from one page to the next
  int pages = 1;
  PastEnd pastEnd = PastEnd::NotFound;
  PagerKind pager = PagerKind::All;
  int window = 3;
  std::string pagerClass = "pager";
  std::string linkClass;     // class of the number links; empty: none
  std::string currentClass;  // non-empty: the current page is a link of this class, not text
  bool nextPrev = false;     // "Prev" and "Next" links beside the numbers

  std::string Href(int page) const;
  // The page a request of this listing asks for: 1 to pages, or 0 when it is
  // not this listing's URL or lies outside it (past the end per pastEnd).
  int PageOf(const SiteRequest& request) const;
  SiteBlock Pager(int page) const;
};
