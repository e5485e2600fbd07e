#include <cstdio>

#include "orvwebpage/OrvWebPage.h"

int main() {
  OrvWebPageUrls urls;
  urls.SetEntryUrl(OrvString("http://www.site.test/", -1));  // optional
  urls.AddLink(OrvString("http://www.site.test/news/1.html?id=1", -1), OrvString("One", -1),
               nullptr);
  urls.AddLink(OrvString("http://www.site.test/news/2.html?id=2", -1), OrvString("Two", -1),
               nullptr);
  urls.AddLink(OrvString("http://elsewhere.test/about", -1), OrvString("About", -1), nullptr);
  urls.ClassifyUrls();
  OrvString key, url, label;
  void* userData;
  for (int c = 0; c < urls.GetClassCount(); c++) {
    void* cls = urls.FetchClass(c);
    urls.GetClassKeyStr(cls, key);
    std::printf("class %d: %s\n", c, key.buf);
    for (int i = 0; i < urls.GetUrlCount(cls); i++) {
      urls.FetchUrl(cls, i, url, label, userData);
      std::printf("  %s  %s\n", url.buf, label.buf);
    }
  }
  urls.ClearLinks();  // before the next page
  return 0;
}
