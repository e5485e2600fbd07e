#include <gtest/gtest.h>

#include <deque>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "NodeClasses.h"
#include "support/ItemTree.h"

namespace {

// The classification in its plainest form: every accepted item records its
// whole chain of ancestors by depth and by parent, with linear scans for
// "already recorded"; every parent is examined again at every depth, all
// pairs of children compared, and a block collected by recursion. Small random
// trees must come out the same as from the classifier.
class LiteralModel {
 public:
  struct Rec {
    int32_t depth;
    var_item* item;
  };
  using List = std::vector<Rec*>;

  explicit LiteralModel(OrvNodeTest test) : test(test) {}

  std::vector<std::vector<var_item*>> Classify(var_item* root) {
    minDepth = 65535;
    maxDepth = 0;
    WalkItems(root, 1, OnItem, this);
    List parents;
    for (int32_t L = minDepth + 1; L <= maxDepth; L++) {
      List** level = levels.Find(L);
      if (!level) continue;
      for (Rec* r : **level) {
        var_item* q = r->item->parent;
        if (!Has(parents, q)) parents.push_back(New(r->depth - 1, q));
      }
      size_t n = parents.size();
      for (size_t i = 0; i < n; i++) {
        auto found = children.find(parents[i]->item);
        if (found == children.end() || found->second->size() < 2) continue;
        List* list = found->second;
        if (GroupSize(*list) < 2) continue;
        classes.emplace_back();
        for (Rec* r : *list) Below(classes.back(), r);
        children.erase(parents[i]->item);
        if (classes.back().empty()) classes.pop_back();
      }
    }
    classes.emplace_back();
    levels.DropFlat();
    levels.Flatten();
    for (uint32_t e = 0; levels.flat && e < levels.count; e++)
      for (Rec* r : *levels.flat[e]->value)
        if (test(r->item)) classes.back().push_back(r);
    if (classes.back().empty()) classes.pop_back();
    std::vector<std::vector<var_item*>> out;
    for (const List& c : classes) {
      out.emplace_back();
      for (Rec* r : c) out.back().push_back(r->item);
    }
    return out;
  }

 private:
  OrvNodeTest test;
  OrvIntMap<int32_t, List*> levels;
  std::map<var_item*, List*> children;
  std::deque<Rec> records;
  std::deque<List> lists;
  std::vector<List> classes;
  int32_t minDepth = 65535;
  int32_t maxDepth = 0;

  Rec* New(int32_t depth, var_item* item) {
    records.push_back(Rec{depth, item});
    return &records.back();
  }
  List* NewList() {
    lists.emplace_back();
    return &lists.back();
  }
  static bool Has(const List& list, var_item* item) {
    for (Rec* r : list)
      if (r->item == item) return true;
    return false;
  }
  List*& Under(var_item* parent) {
    List*& list = children[parent];
    if (!list) list = NewList();
    return list;
  }
  List* AtDepth(int32_t depth) {
    List** list = levels.Insert(depth);
    if (!*list) *list = NewList();
    return *list;
  }

  static void OnItem(var_item* item, int32_t depth, void* user) {
    auto* m = static_cast<LiteralModel*>(user);
    if (!m->test(item)) return;
    Rec* r = m->New(depth, item);
    m->Under(item->parent)->push_back(r);
    List chain;
    int32_t d = depth;
    for (var_item* a = item->parent; a; a = a->parent) chain.push_back(m->New(--d, a));
    for (Rec* a : chain) {
      auto found = m->children.find(a->item->parent);
      if (found != m->children.end() && Has(*found->second, a->item)) continue;
      m->Under(a->item->parent)->push_back(a);
    }
    m->AtDepth(depth)->push_back(r);
    for (Rec* a : chain) {
      List** level = m->levels.Find(a->depth);
      if (level && Has(**level, a->item)) continue;
      m->AtDepth(a->depth)->push_back(a);
    }
    if (m->minDepth > depth) m->minDepth = depth;
    if (m->maxDepth < depth) m->maxDepth = depth;
  }

  static size_t GroupSize(const List& list) {
    size_t group = 1;
    for (size_t i = 0; i + 1 < list.size(); i++) {
      group = 1;
      for (size_t j = i + 1; j < list.size(); j++)
        if (OrvVisibleNodeClassifier::IsSimilarItem(list[i]->item, list[j]->item)) group++;
      if (group > 1) break;
    }
    return group;
  }

  void Below(List& block, Rec* r) {
    auto found = children.find(r->item);
    if (found == children.end()) return;
    List* list = found->second;
    for (Rec* d : *list) {
      if (test(d->item)) block.push_back(d);
      Below(block, d);
    }
    children.erase(r->item);
  }
};

bool TextOrMarked(var_item* item) {
  if (item->tag_id == 0) return IsVisibleText(item);
  return item->attr_list && FindAttrByName(item->attr_list, "mark", 4);
}

std::string RandomTree(std::mt19937& rng) {
  static const char* names[] = {"div", "li", "LI", "span", "p", "script"};
  static const char* classes[] = {"",         " class=a", " class=A",
                                  " class=b", " class",   " class=\"a b\""};
  std::string out;
  // (indentation, children still to make) per open element.
  std::vector<int> open;
  int budget = 20 + int(rng() % 80);
  out += "root\n";
  open.push_back(int(rng() % 4) + 1);
  while (!open.empty() && budget-- > 0) {
    if (open.back() == 0) {
      open.pop_back();
      continue;
    }
    open.back()--;
    std::string indent(2 * open.size(), ' ');
    unsigned kind = rng() % 10;
    if (kind < 3 || open.size() > 9) {
      out += indent + "\"t" + std::to_string(budget) + "\"\n";
    } else {
      out +=
          indent + names[rng() % 6] + classes[rng() % 6] + (rng() % 7 == 0 ? " mark" : "") + "\n";
      // Now and then a wide parent, to go past the pairwise search.
      open.push_back(rng() % 12 == 0 ? 18 + int(rng() % 10) : int(rng() % 5));
    }
  }
  return out;
}

}  // namespace

TEST(ClassifyModel, RandomTreesMatchTheLiteralSteps) {
  std::mt19937 rng(20261123);
  for (int round = 0; round < 1500; round++) {
    std::string description = RandomTree(rng);
    ItemTree t(description);
    // Now and then parent links that disagree with the shape: each points to
    // an earlier item (never a descendant) or nowhere.
    if (round % 3 == 2) {
      for (int k = 0; k < 3 && t.size() > 2; k++) {
        size_t i = 1 + rng() % (t.size() - 1);
        size_t target = rng() % (i + 1);
        t[i]->parent = target == i ? nullptr : t[target];
      }
    }
    for (OrvNodeTest test : {static_cast<OrvNodeTest>(IsVisibleText), TextOrMarked}) {
      // A subtree root now and then, so that the climb goes above depth 1.
      var_item* root = round % 5 == 4 && t.size() > 2 ? t[1] : t.root();
      LiteralModel model(test);
      OrvVisibleNodeClassifier classifier;
      classifier.nodeTest = test;
      for (int run = 0; run < 2; run++) {
        std::vector<std::vector<var_item*>> expected = model.Classify(root);
        classifier.Classify(root);
        std::vector<std::vector<var_item*>> got;
        for (int32_t c = 0; c < classifier.classes.count; c++) {
          got.emplace_back();
          const OrvPtrList& list = classifier.classes.items[c];
          for (int32_t i = 0; i < list.count; i++)
            got.back().push_back(static_cast<OrvNodeRecord*>(list.items[i])->item);
        }
        ASSERT_EQ(got, expected) << "round " << round << " run " << run << "\n" << description;
      }
    }
  }
}
