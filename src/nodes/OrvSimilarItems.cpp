#include <cstring>

#include "core/OrvMemory.h"
#include "nodes/OrvVisibleNodeClassifier.h"

namespace {

constexpr char kClass[] = "class";

var_attr* ClassAttr(var_item* item) { return FindAttrByName(item->attr_list, kClass, 5); }

// Agrees with CapsEqual: texts it calls equal hash alike.
uint32_t FoldHash(uint32_t h, const char* text, int32_t length) {
  int32_t n = MeasuredLen(text, length);
  h = (h ^ static_cast<uint32_t>(n)) * 16777619u;
  if (!text) return h;
  for (int32_t i = 0; i < n; i++) {
    unsigned char c = static_cast<unsigned char>(text[i]);
    if (c >= 'A' && c <= 'Z') c = static_cast<unsigned char>(c + 32);
    h = (h ^ c) * 16777619u;
  }
  return h;
}

// Lists up to this long are searched pair by pair; longer ones by kind.
constexpr int32_t kPairwiseLimit = 16;

}  // namespace

// Same element name and the same "class" value, letters folded; both must
// have the attribute. Nothing else counts.
bool OrvVisibleNodeClassifier::IsSimilarItem(var_item* a, var_item* b) {
  if (!CapsEqual(a->name, a->name_len, b->name, b->name_len)) return false;
  var_attr* first = ClassAttr(a);
  if (!first) return false;
  var_attr* second = ClassAttr(b);
  if (!second) return false;
  return CapsEqual(first->value, first->value_len, second->value, second->value_len);
}

// `group` ends as the first record that has a like partner further on, with
// all its like records after it; without such a record, as the last record
// but one alone. Likeness is an equivalence (folded name and folded value),
// so the first record with a partner is the first one of a kind that occurs
// twice, which a count by kind finds without comparing every pair.
void OrvVisibleNodeClassifier::FindSimilarGroup(OrvPtrList& group, const OrvNodeList& list) {
  group.count = 0;
  int32_t n = list.count;
  auto itemAt = [&](int32_t i) { return list.items[i]->item; };
  if (n < 2) {
    if (n == 1) group.Add(list.items[0]);
    return;
  }
  int32_t first = -1;
  if (n <= kPairwiseLimit) {
    for (int32_t i = 0; i + 1 < n && first < 0; i++)
      for (int32_t j = i + 1; j < n; j++)
        if (IsSimilarItem(itemAt(i), itemAt(j))) {
          first = i;
          break;
        }
  } else {
    first = FirstWithPartner(list);
  }
  int32_t i = first < 0 ? n - 2 : first;
  group.Add(list.items[i]);
  if (first < 0) return;
  for (int32_t j = i + 1; j < n; j++)
    if (IsSimilarItem(itemAt(i), itemAt(j))) group.Add(list.items[j]);
}

int32_t OrvVisibleNodeClassifier::FirstWithPartner(const OrvNodeList& list) {
  int32_t n = list.count;
  uint32_t capacity = 16;
  while (capacity < uint32_t(n) * 2u) capacity *= 2u;
  if (capacity > likeCapacity) {
    likeSlots.reset();
    likeSlots = OrvAllocOwned<LikeSlot[]>(capacity);
    likeCapacity = capacity;
  }
  if (n > likeOfCapacity) {
    likeOf.reset();
    likeOf = OrvAllocOwned<int32_t[]>(size_t(n));
    likeOfCapacity = n;
  }
  for (uint32_t s = 0; s < capacity; s++) likeSlots[s].first = -1;
  uint32_t mask = capacity - 1;

  for (int32_t k = 0; k < n; k++) {
    var_item* item = list.items[k]->item;
    likeOf[k] = -1;
    var_attr* attr = ClassAttr(item);
    if (!attr) continue;
    uint32_t hash =
        FoldHash(FoldHash(2166136261u, item->name, item->name_len), attr->value, attr->value_len);
    for (uint32_t s = (hash ^ (hash >> 15)) & mask;; s = (s + 1) & mask) {
      LikeSlot& slot = likeSlots[s];
      if (slot.first < 0) {
        slot = LikeSlot{hash, k, 1};
        likeOf[k] = int32_t(s);
        break;
      }
      if (slot.hash == hash && IsSimilarItem(list.items[slot.first]->item, item)) {
        slot.count++;
        likeOf[k] = int32_t(s);
        break;
      }
    }
  }
  for (int32_t k = 0; k < n; k++)
    if (likeOf[k] >= 0 && likeSlots[likeOf[k]].count > 1) return k;
  return -1;
}
