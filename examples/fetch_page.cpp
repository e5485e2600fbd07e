#include <cstdio>

#include "orvwebpage/OrvWebPage.h"

// Counts the elements of a page fetched over HTTP.
void Visit(var_item* item, int32_t, void* user) {
  if (item->tag_id != 0) ++*static_cast<int*>(user);
}

int main(int argc, char** argv) {
  if (argc < 2) return 2;
  char* url = argv[1];
  OrvHttp http;
  if (http.Run(url, -1, ORV_HTTP_GET) == ORV_HTTP_OK) {  // 0 only for a final 2xx
    OrvString body, type;
    http.GetBody(body);
    http.GetContentType(type);  // its charset decodes before the page's own declaration
    OrvHtml doc;
    int elements = 0;
    if (doc.Open(body.buf, body.len, ORV_CHARSET_UTF8, type.buf) == 0)
      WalkItems(doc.root, 1, Visit, &elements);
    doc.Close();  // harmless when closed, also run by the destructor
    std::printf("%s: %d bytes, %d elements\n", url, body.len, elements);
    return 0;
  }
  std::printf("%s: failed, status %ld\n", url, http.GetResponseCode());
  return 1;
}
