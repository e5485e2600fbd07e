#include "SiteListing.h"

#include <algorithm>

std::string SiteListing::Href(int page) const {
  std::string href = path + "?";
  for (const auto& [name, value] : fixed) href += name + "=" + value + "&";
  return href + pageParam + "=" + std::to_string(first + int64_t(page - 1) * step);
}

int SiteListing::PageOf(const SiteRequest& request) const {
  if (request.path != path || request.params.size() != fixed.size() + 1) return 0;
  // Any order of the parameters: a client may sort them.
  for (const auto& [name, value] : fixed) {
    const std::string* given = request.Param(name);
    if (!given || *given != value) return 0;
  }
  int64_t value = ParseCount(request.Param(pageParam));
  if (value < first) return 0;
  int64_t page = (value - first) / std::max(step, 1) + 1;
  if (page <= pages) return int(page);
  return pastEnd == PastEnd::LastPage ? pages : 0;
}

SiteBlock SiteListing::Pager(int page) const {
  SiteBlock block;
  block.kind = SiteBlockKind::Pager;
  block.cls = pagerClass;
  int low = 1, high = pages;
  if (pager != PagerKind::All) {
    low = std::max(1, page - window);
    high = std::min(pages, page + window);
  }
  auto number = [&](int n) {
    if (n == page && currentClass.empty())
      block.links.push_back({"", std::to_string(n), "current", ""});
    else
      block.links.push_back({Href(n), std::to_string(n), n == page ? currentClass : linkClass, ""});
  };
  if (nextPrev && page > 1) block.links.push_back({Href(page - 1), "Prev", "prev", ""});
  if (pager == PagerKind::WindowWithEnds && low > 1) {
    number(1);
    if (low > 2) block.links.push_back({"", "...", "gap", ""});
  }
  for (int n = low; n <= high; ++n) number(n);
  if (pager == PagerKind::WindowWithEnds && high < pages) {
    if (high < pages - 1) block.links.push_back({"", "...", "gap", ""});
    number(pages);
  }
  if (nextPrev && page < pages) block.links.push_back({Href(page + 1), "Next", "next", ""});
  return block;
}
