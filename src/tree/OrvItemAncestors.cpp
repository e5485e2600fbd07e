#include "orvwebpage/OrvItem.h"

var_item* FindAncestor(var_item* item, uint16_t tag) {
  for (var_item* up = item->parent; up; up = up->parent) {
    if (up->tag_id == tag) return up;
  }
  return nullptr;
}

var_item_pos FindAncestorPos(const var_item_pos& pos, uint16_t tag) {
  uint32_t depth = static_cast<uint32_t>(pos.depth);
  for (var_item* up = pos.item->parent; up; up = up->parent) {
    depth -= 1u;
    if (up->tag_id == tag) return var_item_pos{up, static_cast<int32_t>(depth)};
  }
  return var_item_pos{nullptr, static_cast<int32_t>(depth)};
}

bool IsVisibleText(var_item* item) {
  if (item->tag_id != 0) return false;
  if (item->text_len < 1) return false;
  if (!CapsEqual(item->name, item->name_len, "$text", 5)) return false;
  var_item* parent = item->parent;
  if (!parent) return false;
  uint16_t kind = parent->tag_id;
  return kind != ORV_TAG_NO_TEXT_C && kind != ORV_TAG_NO_TEXT_B && kind != ORV_TAG_NO_TEXT_A;
}
