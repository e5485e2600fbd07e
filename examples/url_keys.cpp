#include <cstdio>

#include "orvwebpage/OrvWebPage.h"

int main() {
  OrvWebPageUrl entry, url;
  entry.url = OrvString("https://www.site.test/", -1);
  entry.Parse(1);
  OrvUrlFilterExtractor keys;
  keys.SetEntryHost(entry.host);  // the domain is site.test

  url.url = OrvString("https://site.test/news/201/a.html?page=2&id=7#top", -1);
  url.Parse(1);  // sorts the parameters by name
  url.Rebuild();
  std::printf("%s\n", url.url.buf);  // https://site.test/news/201/a.html?id=7&page=2
  for (uint8_t level = 0; level < 4; level++) {
    OrvString key;
    keys.Extract(level, key, url);  // \$, /\s/\d, /(.htm\E,...), ?id;&page
    std::printf("%d %s\n", level, key.buf);
  }

  OrvWebPageUrlsSearch search;  // the search key keeps the parameters' order
  search.SetEntryUrl(entry.url);
  OrvString shape;
  search.SearchUrls(OrvString("https://site.test/news/201/a.html?page=2&id=7", -1), shape);
  std::printf("%s\n", shape.buf);
  return 0;
}
