#include <cstdio>

#include "orvwebpage/OrvWebPage.h"

int main() {
  OrvWebPageUrlsSearch search;
  search.SetEntryUrl(OrvString("https://www.site.test/", -1));  // any time before a search
  // As often as needed; the same text twice stands twice.
  search.AddUrl(OrvString("https://site.test/news/12/a.html?page=1&id=3", -1));
  search.AddUrl(OrvString("https://site.test/news/12/a.html?id=3&page=1", -1));
  OrvString key, url;
  search.SearchUrls(OrvString("https://site.test/news/9/b.htm?page=2&id=7", -1), key);
  std::printf("key: %s\n", key.buf);
  for (unsigned i = 0; i < search.GetFoundUrlsCount(); i++) {
    search.GetFoundUrl(i, url);
    std::printf("  %s\n", url.buf);  // only the first: the parameters come in another order
  }
  search.ClearUrls();  // forgets stored and found URLs, keeps the entry URL
  return 0;
}
