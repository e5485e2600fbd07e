#include "PageLinks.h"

#include "PageMemory.h"
#include "orvwebpage/OrvLinkHtml.h"
#include "orvwebpage/OrvPageLinks.h"

namespace {

struct LinkReading {
  OrvPageLinks links;
  const std::string* pageUrl;

  void Begin() { links.Begin(pageUrl->data(), long(pageUrl->size())); }
};

}  // namespace

std::vector<PageLink> LinksOfPage(std::string html, const std::string& contentType,
                                  const std::string& pageUrl, bool* resolved) {
  CheckPageMemory(html, PageTree::kLinks);
  LinkReading reading{{}, &pageUrl};
  reading.Begin();
  {
    // Each link is read as soon as it is parsed: no tree of the page is held.
    OrvLinkSink sink{
        [](var_item* top, void* user) { static_cast<LinkReading*>(user)->links.Add(top); },
        [](void* user) { static_cast<LinkReading*>(user)->Begin(); }, &reading};
    OrvLinkHtml doc;
    if (doc.Stream(html.data(), long(html.size()), ORV_CHARSET_UTF8, contentType.c_str(), sink) !=
        0)
      reading.Begin();
  }
  std::string().swap(html);  // resolving lengthens the links: make room first
  OrvPageLinks& links = reading.links;
  links.End();
  std::vector<PageLink> out(size_t(links.GetCount()));
  for (int i = 0; i < links.GetCount(); i++)
    links.Take(i, out[size_t(i)].url, out[size_t(i)].label);
  if (resolved) *resolved = links.HasBase() != 0;
  return out;
}
