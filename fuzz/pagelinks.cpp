// Links read while a page is parsed must be the links read from its whole
// link tree. Input: the whole of it is one page, read both ways against a
// fixed page URL; any difference aborts.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "orvwebpage/OrvLinkHtml.h"
#include "orvwebpage/OrvPageLinks.h"

namespace {

const char kPageUrl[] = "http://s.test/d/p.html";

std::string Listed(OrvPageLinks& links) {
  std::string out = links.HasBase() ? "B" : "-";
  OrvString url, label;
  for (int i = 0; i < links.GetCount(); i++) {
    if (!links.Get(i, url, label)) std::abort();
    out.append(url.buf, size_t(url.len)).append(1, '\0');
    out.append(label.buf, size_t(label.len)).append(1, '\0');
  }
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<char> page(data, data + size);
  OrvLinkHtml doc;
  OrvPageLinks whole, streamed;
  int opened = doc.Open(page.data(), long(size), ORV_CHARSET_UTF8);
  whole.Read(doc.root, kPageUrl, -1);
  doc.Close();
  streamed.Begin(kPageUrl, -1);
  OrvLinkSink sink{[](var_item* top, void* user) { static_cast<OrvPageLinks*>(user)->Add(top); },
                   [](void* user) { static_cast<OrvPageLinks*>(user)->Begin(kPageUrl, -1); },
                   &streamed};
  int read = doc.Stream(page.data(), long(size), ORV_CHARSET_UTF8, nullptr, sink);
  streamed.End();
  if (opened != read || Listed(whole) != Listed(streamed)) std::abort();
  return 0;
}
