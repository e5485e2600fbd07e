#include <cstdio>
#include <cstring>

#include "orvwebpage/OrvWebPage.h"

int main() {
  char page[] = "<div><ul><li class=x>Caf\xC3\xA9</li><li class=x>Tea</li></ul></div><p>Open daily";
  long length = long(std::strlen(page));
  OrvHtml doc;
  doc.Open(page, length, ORV_CHARSET_UTF8);  // valid UTF-8 without a declaration reads as UTF-8
  OrvWebPageVisibleNodes nodes;
  nodes.ClassifyNodes(doc.root);
  for (int c = 0; c < nodes.GetClassCount(); c++) {
    void* cls = nodes.FetchClass(c);
    std::printf("class %d:", c);
    for (int i = 0; i < nodes.GetNodesCount(cls); i++) {
      var_item* item;
      nodes.FetchNode(cls, i, item);  // item->text, item->text_len
      std::printf(" [%.*s]", int(item->text_len), item->text);
    }
    std::printf("\n");
  }
  nodes.ClearNodes();  // before the next page; the document may be closed first
  return 0;
}
