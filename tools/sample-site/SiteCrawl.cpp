#include "SiteCrawl.h"

#include <deque>
#include <string>
#include <unordered_set>

#include "SiteRequest.h"

namespace {

// Links the site's own server answers: absolute paths, not "//host" ones.
bool IsOnSite(const std::string& href) {
  return href.size() >= 1 && href[0] == '/' && (href.size() == 1 || href[1] != '/');
}

}  // namespace

int64_t CountReachablePages(const SiteProfile& profile) {
  std::unordered_set<std::string> seen{"/"};
  std::deque<std::string> queue{"/"};
  int64_t pages = 0;
  while (!queue.empty()) {
    std::string href = std::move(queue.front());
    queue.pop_front();
    SitePage page = profile.Serve(ParseTarget(href));
    if (!page.IsHtmlPage()) continue;
    ++pages;
    for (const SiteBlock& block : page.blocks)
      for (const SiteLink& link : block.links)
        if (IsOnSite(link.href) && seen.insert(link.href).second) queue.push_back(link.href);
  }
  return pages;
}
