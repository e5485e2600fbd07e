#include "orvwebpage/OrvItem.h"

var_attr* FindAttrByName(var_attr* head, const char* name, int32_t length) {
  int32_t wanted = MeasuredLen(name, length);
  for (var_attr* a = head; a; a = a->next) {
    if (MeasuredLen(a->name, a->name_len) != wanted) continue;
    if (wanted == 0 || CapsEqual(a->name, wanted, name, wanted)) return a;
  }
  return nullptr;
}

var_attr* FindLinkAttr(var_attr* head) {
  for (var_attr* a = head; a; a = a->next) {
    if (a->attr_id == ORV_ATTR_LINK_TARGET) return a;
  }
  return nullptr;
}

bool IsEqualAttr(const var_attr* a, const var_attr* b) {
  if (!a && !b) return true;
  if (!a || !b) return false;
  const char* aValue = a->value;
  int32_t aLength = a->value_len;
  const char* bValue = b->value;
  int32_t bLength = b->value_len;
  TrimBlanks(aValue, aLength);
  TrimBlanks(bValue, bLength);
  if (!CapsEqual(a->name, a->name_len, b->name, b->name_len)) return false;
  return CapsEqual(aValue, aLength, bValue, bLength);
}
