#include "orvwebpage/OrvItemPath.h"

#include <cstdio>
#include <vector>

#include "core/OrvMemory.h"

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }

bool IsPlain(unsigned char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
         c == '_' || c >= 0x80;
}

// An identifier as a selector writes it: a leading digit and controls as hex
// escapes, other punctuation behind a backslash.
void AppendIdent(OrvString& path, const char* text, int32_t length) {
  for (int32_t i = 0; i < length; i++) {
    unsigned char c = static_cast<unsigned char>(text[i]);
    if (IsPlain(c) && !(i == 0 && c >= '0' && c <= '9')) {
      path.Append(text + i, 1);
    } else if (c < 0x20 || c == 0x7F || (c >= '0' && c <= '9')) {
      char hex[8];
      int n = std::snprintf(hex, sizeof hex, "\\%x ", c);
      path.Append(hex, n);
    } else {
      path.Append("\\", 1);
      path.Append(text + i, 1);
    }
  }
}

void AppendStep(OrvString& path, const var_item* item) {
  if (path.len > 0) path.Append(" > ", 3);
  path.Append(item->name, MeasuredLen(item->name, item->name_len));
  if (const var_attr* id = FindAttrByName(item->attr_list, "id", 2); id && id->value) {
    const char* value = id->value;
    int32_t length = MeasuredLen(id->value, id->value_len);
    while (length > 0 && IsBlank(value[0])) value++, length--;
    while (length > 0 && IsBlank(value[length - 1])) length--;
    if (length > 0) {
      path.Append("#", 1);
      AppendIdent(path, value, length);
    }
  }
  if (const var_attr* cls = FindAttrByName(item->attr_list, "class", 5); cls && cls->value) {
    const char* value = cls->value;
    int32_t length = MeasuredLen(cls->value, cls->value_len);
    for (int32_t i = 0; i < length;) {
      while (i < length && IsBlank(value[i])) i++;
      int32_t start = i;
      while (i < length && !IsBlank(value[i])) i++;
      if (i > start) {
        path.Append(".", 1);
        AppendIdent(path, value + start, i - start);
      }
    }
  }
}

}  // namespace

void OrvItemPath(const var_item* element, OrvString& path) {
  path.Clear();
  std::vector<const var_item*, OrvAllocator<const var_item*>> chain;
  for (const var_item* item = element; item; item = item->parent)
    if (item->name && MeasuredLen(item->name, item->name_len) > 0) chain.push_back(item);
  for (size_t i = chain.size(); i-- > 0;) AppendStep(path, chain[i]);
}
