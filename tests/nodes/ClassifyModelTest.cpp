#include <gtest/gtest.h>

#include <deque>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "nodes/OrvVisibleNodeClassifier.h"
#include "support/ItemTree.h"

namespace {

using Lists = std::vector<std::vector<var_item*>>;

// The classification in its plainest form: each accepted item records its
// whole chain of ancestors by depth and by parent, "already recorded" is a
// scan, every parent is examined again at every depth, all pairs of children
// are compared and a block is collected by recursion. Like the classifier it
// adds to what earlier runs left.
class LiteralModel {
 public:
  using List = std::vector<var_item*>;

  explicit LiteralModel(OrvNodeTest nodeTest) : test(nodeTest) {}

  Lists Classify(var_item* root) {
    minDepth = 65535;
    maxDepth = 0;
    WalkItems(root, 1, OnItem, this);
    List parents;
    for (int32_t depth = minDepth + 1; depth <= maxDepth; depth++) {
      for (var_item* item : levels.Find(depth) ? **levels.Find(depth) : List())
        if (!Has(parents, item->parent)) parents.push_back(item->parent);
      for (var_item* parent : parents) {
        auto found = children.find(parent);
        if (found == children.end() || !HasLikePair(found->second)) continue;
        List block;
        for (var_item* child : List(found->second)) Below(block, child);
        children.erase(parent);
        if (!block.empty()) classes.push_back(block);
      }
    }
    Lists out = classes;
    out.emplace_back();
    levels.DropFlat();
    levels.Flatten();
    for (uint32_t e = 0; levels.flat && e < levels.count; e++)
      for (var_item* item : *levels.flat[e]->value)
        if (test(item)) out.back().push_back(item);
    if (out.back().empty()) out.pop_back();
    classes = out;
    return out;
  }

 private:
  OrvNodeTest test;
  OrvIntMap<int32_t, List*> levels;  // the same map, for the same flat order
  std::deque<List> lists;
  std::map<var_item*, List> children;
  Lists classes;
  int32_t minDepth = 65535, maxDepth = 0;

  static bool Has(const List& list, var_item* item) {
    for (var_item* i : list)
      if (i == item) return true;
    return false;
  }
  static void AddOnce(List& list, var_item* item) {
    if (!Has(list, item)) list.push_back(item);
  }
  List& AtDepth(int32_t depth) {
    List** slot = levels.Insert(depth);
    if (!*slot) *slot = &lists.emplace_back();
    return **slot;
  }
  static bool HasLikePair(const List& list) {
    for (size_t i = 0; i < list.size(); i++)
      for (size_t j = i + 1; j < list.size(); j++)
        if (OrvVisibleNodeClassifier::IsSimilarItem(list[i], list[j])) return true;
    return false;
  }
  void Below(List& block, var_item* item) {
    if (!children.count(item)) return;
    for (var_item* child : List(children[item])) {
      if (test(child)) block.push_back(child);
      Below(block, child);
    }
    children.erase(item);
  }
  static void OnItem(var_item* item, int32_t depth, void* user) {
    auto* m = static_cast<LiteralModel*>(user);
    if (!m->test(item)) return;
    m->children[item->parent].push_back(item);
    m->AtDepth(depth).push_back(item);
    int32_t at = depth;
    for (var_item* up = item->parent; up; up = up->parent) {
      AddOnce(m->children[up->parent], up);
      AddOnce(m->AtDepth(--at), up);
    }
    m->minDepth = std::min(m->minDepth, depth);
    m->maxDepth = std::max(m->maxDepth, depth);
  }
};

bool TextOrMarked(var_item* item) {
  if (item->tag_id == 0) return IsVisibleText(item);
  return FindAttrByName(item->attr_list, "mark", 4) != nullptr;
}

// Small trees of few names and class values, now and then a parent wider
// than the pairwise search.
std::string RandomTree(std::mt19937& rng) {
  static const char* names[] = {"div", "li", "LI", "span", "p", "script"};
  static const char* classes[] = {"",         " class=a", " class=A",
                                  " class=b", " class",   " class=\"a b\""};
  std::string out = "root\n";
  std::vector<int> open = {int(rng() % 4) + 1};  // children still to make per open element
  for (int budget = 20 + int(rng() % 80); !open.empty() && budget > 0; budget--) {
    if (open.back()-- == 0) {
      open.pop_back();
      continue;
    }
    std::string indent(2 * open.size(), ' ');
    if (rng() % 10 < 3 || open.size() > 9) {
      out += indent + "\"t" + std::to_string(budget) + "\"\n";
      continue;
    }
    out += indent + names[rng() % 6] + classes[rng() % 6] + (rng() % 7 ? "" : " mark") + "\n";
    open.push_back(rng() % 12 == 0 ? 18 + int(rng() % 10) : int(rng() % 5));
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
    for (int k = 0; round % 3 == 2 && k < 3 && t.size() > 2; k++) {
      size_t i = 1 + rng() % (t.size() - 1), target = rng() % (i + 1);
      t[i]->parent = target == i ? nullptr : t[target];
    }
    // A subtree root now and then, so that the climb goes above depth 1.
    var_item* root = round % 5 == 4 && t.size() > 2 ? t[1] : t.root();
    for (OrvNodeTest test : {static_cast<OrvNodeTest>(IsVisibleText), TextOrMarked}) {
      LiteralModel model(test);
      OrvVisibleNodeClassifier classifier;
      classifier.nodeTest = test;
      for (int run = 0; run < 2; run++) {  // the second without Clear
        Lists expected = model.Classify(root);
        classifier.Classify(root);
        Lists got(size_t(classifier.classes.count));
        for (size_t c = 0; c < got.size(); c++) {
          const OrvNodeList& list = classifier.classes.items[c];
          for (int32_t i = 0; i < list.count; i++) got[c].push_back(list.items[i]->item);
        }
        ASSERT_EQ(got, expected) << "round " << round << " run " << run << "\n" << description;
      }
    }
  }
}
