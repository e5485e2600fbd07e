// Script and style bodies cut out before parsing must give the tree the
// parser gives when it reads them itself. Input: the whole of it is one page,
// opened both ways keeping its bytes and decoded; any difference aborts.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "orvwebpage/OrvItem.h"
#include "platform/html/OrvDocArena.h"
#include "platform/html/OrvHtmlBuilder.h"

namespace {

void Put(std::string& out, const char* text, int32_t length) {
  out.append(reinterpret_cast<const char*>(&length), sizeof length);
  if (text && length > 0) out.append(text, size_t(length));
}

std::string Serialized(var_item* root) {
  std::string out;
  WalkItems(
      root, 1,
      [](var_item* item, int32_t depth, void* user) {
        std::string& s = *static_cast<std::string*>(user);
        s.append(reinterpret_cast<const char*>(&depth), sizeof depth);
        s.append(reinterpret_cast<const char*>(&item->tag_id), sizeof item->tag_id);
        Put(s, item->name, item->name_len);
        Put(s, item->text, item->text_len);
        for (var_attr* a = item->attr_list; a; a = a->next) {
          s.append(reinterpret_cast<const char*>(&a->attr_id), sizeof a->attr_id);
          Put(s, a->name, a->name_len);
          Put(s, a->value, a->value_len);
        }
        s += '|';
      },
      &out);
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<char> page(data, data + size);
  for (ORV_CHARSET charset : {ORV_CHARSET_BYTES, ORV_CHARSET_UTF8}) {
    OrvDocArena cutArena, wholeArena;
    var_item* cut = nullptr;
    var_item* whole = nullptr;
    int cutResult = OrvBuildHtmlTree(page.data(), long(size), charset, nullptr, cutArena, cut);
    int wholeResult =
        OrvBuildHtmlTree(page.data(), long(size), charset, nullptr, wholeArena, whole, false);
    if (cutResult != wholeResult || Serialized(cut) != Serialized(whole)) std::abort();
  }
  return 0;
}
