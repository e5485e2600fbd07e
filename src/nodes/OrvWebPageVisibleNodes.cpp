#include "orvwebpage/OrvWebPageVisibleNodes.h"

#include "core/OrvMemory.h"
#include "core/OrvShared.h"
#include "nodes/OrvVisibleNodeClassifier.h"

OrvWebPageVisibleNodes::OrvWebPageVisibleNodes() : classifier(OrvNew<OrvVisibleNodeClassifier>()) {}

OrvWebPageVisibleNodes::OrvWebPageVisibleNodes(const OrvWebPageVisibleNodes& other)
    : classifier(OrvShare(other.classifier)) {}

OrvWebPageVisibleNodes::~OrvWebPageVisibleNodes() { OrvRelease(classifier); }

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): copy and swap, safe on itself
OrvWebPageVisibleNodes& OrvWebPageVisibleNodes::operator=(const OrvWebPageVisibleNodes& other) {
  return OrvAssignShared(*this, other, &OrvWebPageVisibleNodes::classifier);
}

int OrvWebPageVisibleNodes::ClassifyNodes(var_item* root) {
  classifier->Classify(root);
  return 1;
}

void OrvWebPageVisibleNodes::ClearNodes() { classifier->Clear(); }

int OrvWebPageVisibleNodes::GetClassCount() { return classifier->classes.count; }

void* OrvWebPageVisibleNodes::FetchClass(int index) {
  if (index < 0 || index >= classifier->classes.count) return nullptr;
  return &classifier->classes.items[index];
}

int OrvWebPageVisibleNodes::GetNodesCount(void* handle) {
  return static_cast<OrvNodeList*>(handle)->count;
}

int OrvWebPageVisibleNodes::FetchNode(void* handle, int index, var_item*& item) {
  auto* list = static_cast<OrvNodeList*>(handle);
  if (index < 0 || index >= list->count) return 0;
  item = list->items[index]->item;
  return 1;
}
