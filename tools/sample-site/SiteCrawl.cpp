#include "SiteCrawl.h"

#include <deque>
#include <string>
#include <unordered_set>
#include <vector>

#include "SiteRequest.h"

namespace {

// The target a link of the page at `from` asks the site's own server for:
// absolute paths as they are, relative ones joined to the page's directory
// with "." and ".." worked out; empty for "//host" and scheme links.
std::string Target(const std::string& from, const std::string& href) {
  if (href.empty() || href.rfind("//", 0) == 0) return "";
  if (href[0] == '/') return href;
  size_t colon = href.find(':');
  if (colon != std::string::npos && colon < href.find_first_of("/?#")) return "";
  std::string path = from.substr(0, from.find('?'));
  if (href[0] == '?') return path + href;
  std::string joined = path.substr(0, path.rfind('/') + 1) + href;
  std::vector<std::string> parts;
  size_t query = joined.find('?');
  std::string tail = query == std::string::npos ? "" : joined.substr(query);
  std::string dirs = joined.substr(0, query);
  for (size_t start = 1; start <= dirs.size();) {
    size_t slash = dirs.find('/', start);
    if (slash == std::string::npos) slash = dirs.size();
    std::string part = dirs.substr(start, slash - start);
    bool last = slash == dirs.size();
    if (part == "..") {
      if (!parts.empty()) parts.pop_back();
      if (last) parts.push_back("");
    } else if (part == ".") {
      if (last) parts.push_back("");
    } else {
      parts.push_back(part);
    }
    start = slash + 1;
  }
  std::string out;
  for (const std::string& part : parts) out += "/" + part;
  return (out.empty() ? "/" : out) + tail;
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
        if (std::string target = Target(href, link.href);
            !target.empty() && seen.insert(target).second)
          queue.push_back(target);
  }
  return pages;
}
