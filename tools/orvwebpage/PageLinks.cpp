#include "PageLinks.h"

#include "PageMemory.h"
#include "orvwebpage/OrvLinkHtml.h"
#include "orvwebpage/OrvPageLinks.h"

std::vector<PageLink> LinksOfPage(std::string html, const std::string& contentType,
                                  const std::string& pageUrl, bool* resolved) {
  CheckPageMemory(html, PageTree::kLinks);
  OrvPageLinks links;
  {
    OrvLinkHtml doc;  // only what links are read from: a page of deep markup stays small
    var_item* root = nullptr;
    if (doc.Open(html.data(), long(html.size()), ORV_CHARSET_UTF8, contentType.c_str()) == 0)
      root = doc.root;
    std::string().swap(html);  // the tree holds copies: the raw page is no longer needed
    links.Read(root, pageUrl.data(), long(pageUrl.size()));
  }  // the links hold copies: the tree goes before the list is made
  std::vector<PageLink> out;
  out.reserve(size_t(links.GetCount()));
  OrvString url, label;
  for (int i = 0; i < links.GetCount(); i++)
    if (links.Get(i, url, label))
      out.push_back(
          {std::string(url.buf, size_t(url.len)), std::string(label.buf, size_t(label.len))});
  if (resolved) *resolved = links.HasBase() != 0;
  return out;
}
