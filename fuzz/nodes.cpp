// Documents and visible nodes. Input: the whole of it is one page, opened
// keeping its bytes, decoded, and decoded under a Content-Type that the
// input's length picks from a fixed list; every item of every class is read,
// and the lean tree of visible texts must give the same classes.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "FuzzInput.h"
#include "orvwebpage/OrvHtml.h"
#include "orvwebpage/OrvVisibleHtml.h"
#include "orvwebpage/OrvWebPageVisibleNodes.h"

namespace {

uint32_t TouchTree(var_item* root) {
  uint32_t sum = 0;
  WalkItems(
      root, 1,
      [](var_item* item, int32_t depth, void* user) {
        uint32_t& s = *static_cast<uint32_t*>(user);
        s += uint32_t(depth) + item->tag_id +
             FuzzTouch(item->name, MeasuredLen(item->name, item->name_len)) +
             FuzzTouch(item->text, MeasuredLen(item->text, item->text_len));
        for (var_attr* a = item->attr_list; a; a = a->next)
          s += FuzzTouch(a->name, MeasuredLen(a->name, a->name_len)) +
               FuzzTouch(a->value, MeasuredLen(a->value, a->value_len));
      },
      &sum);
  return sum;
}

// Every class's texts, one after another, each class closed by a NUL.
std::string ClassTexts(var_item* root) {
  OrvWebPageVisibleNodes nodes;
  nodes.ClassifyNodes(root);
  std::string out;
  for (int c = 0; c < nodes.GetClassCount(); c++) {
    void* handle = nodes.FetchClass(c);
    for (int i = 0; i < nodes.GetNodesCount(handle); i++) {
      var_item* item = nullptr;
      nodes.FetchNode(handle, i, item);
      out.append(item->text, size_t(MeasuredLen(item->text, item->text_len))).push_back('\n');
    }
    out.push_back('\0');
  }
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // The parser may read the page in place; give it a copy it may own.
  std::vector<char> page(data, data + size);
  volatile uint32_t sink = 0;
  OrvWebPageVisibleNodes nodes;
  const char* contentTypes[] = {"text/html; charset=windows-1251", "text/html;charset=\"utf-16\"",
                                "charset=shift_jis", "text/html; charset=utf-16be",
                                "charset=no-such-thing"};
  for (int round = 0; round < 3; round++) {
    OrvHtml doc;
    ORV_CHARSET charset = round == 0 ? ORV_CHARSET_BYTES : ORV_CHARSET_UTF8;
    const char* contentType = round == 2 ? contentTypes[size % 5] : nullptr;
    if (doc.Open(page.data(), long(page.size()), charset, contentType) != 0) continue;
    sink = sink + TouchTree(doc.root);
    OrvVisibleHtml lean;
    if (lean.Open(page.data(), long(page.size()), charset, contentType) != 0 ||
        ClassTexts(lean.root) != ClassTexts(doc.root))
      std::abort();
    nodes.ClassifyNodes(doc.root);
    int classes = nodes.GetClassCount();
    sink = sink + (nodes.FetchClass(-1) == nullptr) + (nodes.FetchClass(classes) == nullptr);
    for (int c = 0; c < classes; c++) {
      void* handle = nodes.FetchClass(c);
      int count = nodes.GetNodesCount(handle);
      for (int i = -1; i <= count; i++) {
        var_item* item = nullptr;
        if (nodes.FetchNode(handle, i, item))
          sink = sink + FuzzTouch(item->text, MeasuredLen(item->text, item->text_len));
      }
    }
    nodes.ClearNodes();
  }
  return 0;
}
