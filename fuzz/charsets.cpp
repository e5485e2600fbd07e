// Declared charsets: the input's bytes, with '<', '&' and NUL made blanks so
// that they open no markup, stand between a declaration and a sentinel,
// `<meta charset=LABEL><p>BYTES<b>SENTINEL</b>`, for every label the parser
// knows and a few it does not. Whatever the bytes, the sentinel must still
// be read after them, and every text and attribute must be UTF-8.

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "orvwebpage/OrvHtml.h"
#include "platform/html/OrvCharsetLabels.h"
#include "platform/html/OrvPageCharset.h"

namespace {

std::vector<std::string> AllLabels() {
  std::vector<std::string> labels = {"utf-7", "hz-gb-2312", "ucs-4",
                                     "cp037", "\"utf-16\"", "no-such-thing"};
  size_t count = 0;
  const OrvCharsetLabels* table = OrvCharsetLabelTable(count);
  for (size_t i = 0; i < count; i++) {
    for (const char* p = table[i].labels;;) {
      const char* end = std::strchr(p, ' ');
      labels.emplace_back(p, end ? size_t(end - p) : std::strlen(p));
      if (!end) break;
      p = end + 1;
    }
  }
  return labels;
}

bool IsUtf8(const char* text, int32_t length) {
  return length <= 0 ||
         OrvIsValidUtf8(reinterpret_cast<const unsigned char*>(text), size_t(length));
}

struct Check {
  bool sentinel = false;
  bool utf8 = true;
};

void Visit(var_item* item, int32_t, void* user) {
  auto* check = static_cast<Check*>(user);
  if (item->tag_id == 0) {
    int32_t length = MeasuredLen(item->text, item->text_len);
    check->utf8 = check->utf8 && IsUtf8(item->text, length);
    if (length >= 8 &&
        std::string(item->text, size_t(length)).find("SENTINEL") != std::string::npos)
      check->sentinel = true;
  }
  for (var_attr* a = item->attr_list; a; a = a->next)
    check->utf8 = check->utf8 && IsUtf8(a->value, MeasuredLen(a->value, a->value_len));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::vector<std::string> labels = AllLabels();
  std::string bytes(reinterpret_cast<const char*>(data), size);
  for (char& c : bytes)
    if (c == '<' || c == '&' || c == '\0') c = ' ';
  for (const std::string& label : labels) {
    // The escape back to ASCII ends whatever ISO-2022-JP mode the bytes left.
    std::string page = "<meta charset=" + label + "><p>" + bytes + "\x1b(B<b>SENTINEL</b>";
    OrvHtml doc;
    if (doc.Open(page.data(), long(page.size()), ORV_CHARSET_UTF8) != 0) __builtin_trap();
    Check check;
    WalkItems(doc.root, 1, Visit, &check);
    if (!check.sentinel || !check.utf8) __builtin_trap();
  }
  return 0;
}
