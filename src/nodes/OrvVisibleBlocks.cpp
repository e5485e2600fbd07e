#include "orvwebpage/OrvVisibleBlocks.h"

#include <vector>

#include "core/OrvIntMap.h"
#include "core/OrvMemory.h"
#include "orvwebpage/OrvItemPath.h"
#include "orvwebpage/OrvWebPageVisibleNodes.h"

namespace {

struct Text {
  const char* text;
  int32_t length;
};

template <class T>
using Vector = std::vector<T, OrvAllocator<T>>;

struct TextClass {
  Vector<Text> texts;
  OrvString path;
};

inline uint64_t Key(const var_item* item) { return uint64_t(reinterpret_cast<uintptr_t>(item)); }

// The innermost item above every text of the class. The ancestors of the
// first text are listed with their heights above it; each further text climbs
// until it meets one of them no lower than the holder so far, so a text costs
// only the steps from it to the block.
const var_item* Holder(const Vector<var_item*>& items) {
  if (items.empty()) return nullptr;
  OrvIntMap<uint64_t, int64_t, OrvAddressBits> chain;
  int64_t height = 0;
  for (const var_item* item = items[0]->parent; item; item = item->parent)
    *chain.Insert(Key(item)) = ++height;
  const var_item* holder = items[0]->parent;
  int64_t holderHeight = holder ? 1 : 0;
  for (size_t i = 1; i < items.size() && holder; i++) {
    for (const var_item* item = items[i]->parent; item; item = item->parent) {
      int64_t* found = chain.Find(Key(item));
      if (found && *found >= holderHeight) {
        holder = item;
        holderHeight = *found;
        break;
      }
    }
  }
  return holder;
}

}  // namespace

struct OrvVisibleBlocks::Classes {
  Vector<TextClass> list;
};

OrvVisibleBlocks::OrvVisibleBlocks() : classes(OrvNew<Classes>()) {}
OrvVisibleBlocks::~OrvVisibleBlocks() { OrvDelete(classes); }

void OrvVisibleBlocks::Read(var_item* root) {
  classes->list.clear();
  OrvWebPageVisibleNodes nodes;
  nodes.ClassifyNodes(root);
  int count = nodes.GetClassCount();
  Vector<var_item*> items;
  for (int c = 0; c < count; c++) {
    void* handle = nodes.FetchClass(c);
    TextClass& out = classes->list.emplace_back();
    bool block = c + 1 < count;  // the page class has no path to find
    items.clear();
    out.texts.reserve(size_t(nodes.GetNodesCount(handle)));
    for (int i = 0; i < nodes.GetNodesCount(handle); i++) {
      var_item* item = nullptr;
      if (!nodes.FetchNode(handle, i, item)) continue;
      out.texts.push_back({item->text, MeasuredLen(item->text, item->text_len)});
      if (block) items.push_back(item);
    }
    if (block) OrvItemPath(Holder(items), out.path);
  }
}

int OrvVisibleBlocks::GetClassCount() const { return int(classes->list.size()); }

int OrvVisibleBlocks::GetTextCount(int cls) const {
  if (cls < 0 || size_t(cls) >= classes->list.size()) return 0;
  return int(classes->list[size_t(cls)].texts.size());
}

int OrvVisibleBlocks::GetText(int cls, int index, const char*& text, int32_t& length) const {
  if (index < 0 || index >= GetTextCount(cls)) return 0;
  const Text& t = classes->list[size_t(cls)].texts[size_t(index)];
  text = t.text;
  length = t.length;
  return 1;
}

int OrvVisibleBlocks::GetPath(int cls, OrvString& path) const {
  if (cls < 0 || size_t(cls) >= classes->list.size()) {
    path.Clear();
    return 0;
  }
  path.CopyBuf(classes->list[size_t(cls)].path.buf, classes->list[size_t(cls)].path.len);
  return 1;
}
