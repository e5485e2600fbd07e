#include <cstring>
#include <utility>

#include "core/OrvOwned.h"
#include "orvwebpage/OrvItem.h"

namespace {

// Where to go on once a subtree is done: the sibling after the item whose
// children are being walked (possibly null). Shallow trees never touch the heap.
class ResumeStack {
 public:
  ResumeStack() : items(inlineItems), size(0), capacity(kInline) {}
  ResumeStack(const ResumeStack&) = delete;
  ResumeStack& operator=(const ResumeStack&) = delete;

  bool Empty() const { return size == 0; }
  var_item* Pop() { return items[--size]; }
  void Push(var_item* item) {
    if (size == capacity) Grow();
    items[size++] = item;
  }

 private:
  static constexpr size_t kInline = 256;

  void Grow() {
    size_t more = capacity * 2;
    OrvOwned<var_item*[]> bigger = OrvAllocOwned<var_item*[]>(more);
    // NOLINTNEXTLINE(bugprone-sizeof-expression): sizes an array of pointers
    std::memcpy(bigger.get(), items, size * sizeof(var_item*));
    heap = std::move(bigger);
    items = heap.get();
    capacity = more;
  }

  var_item** items;  // inlineItems or heap
  OrvOwned<var_item*[]> heap;
  size_t size;
  size_t capacity;
  var_item* inlineItems[kInline];
};

}  // namespace

void WalkItems(var_item* first, int32_t depth, OrvItemVisitor visit, void* user) {
  ResumeStack resume;
  uint32_t level = static_cast<uint32_t>(depth);
  var_item* item = first;
  for (;;) {
    while (item) {
      visit(item, static_cast<int32_t>(level), user);
      if (item->child) {
        resume.Push(item->next);
        item = item->child;
        level += 1u;
      } else {
        item = item->next;
      }
    }
    if (resume.Empty()) return;
    item = resume.Pop();
    level -= 1u;
  }
}
