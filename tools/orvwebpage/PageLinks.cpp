#include "PageLinks.h"

#include "PageMemory.h"
#include "orvwebpage/OrvPageLinks.h"

std::vector<PageLink> LinksOfPage(std::string html, const std::string& contentType,
                                  const std::string& pageUrl, bool* resolved) {
  CheckPageMemory(html, PageTree::kLinks);
  OrvPageLinks links;
  links.Begin(pageUrl.data(), long(pageUrl.size()));
  links.AddPage(html.data(), long(html.size()), ORV_CHARSET_UTF8, contentType.c_str());
  std::string().swap(html);  // resolving lengthens the links: make room first
  links.End();
  std::vector<PageLink> out(size_t(links.GetCount()));
  for (int i = 0; i < links.GetCount(); i++)
    links.Take(i, out[size_t(i)].url, out[size_t(i)].label);
  if (resolved) *resolved = links.HasBase() != 0;
  return out;
}
