#include "orvwebpage/OrvWebPageVisibleNodes.h"

#include <utility>

#include "core/OrvMemory.h"
#include "core/OrvShared.h"
#include "nodes/OrvVisibleNodeClassifier.h"

OrvWebPageVisibleNodes::OrvWebPageVisibleNodes() : classifier(OrvNew<OrvVisibleNodeClassifier>()) {}

OrvWebPageVisibleNodes::OrvWebPageVisibleNodes(const OrvWebPageVisibleNodes& other)
    : classifier(OrvShare(other.classifier)) {}

OrvWebPageVisibleNodes::~OrvWebPageVisibleNodes() {
  if (OrvLetGo(classifier)) OrvDelete(classifier);
}

OrvWebPageVisibleNodes& OrvWebPageVisibleNodes::operator=(const OrvWebPageVisibleNodes& other) {
  OrvWebPageVisibleNodes copy(other);
  std::swap(classifier, copy.classifier);
  return *this;
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
  return static_cast<OrvPtrList*>(handle)->count;
}

int OrvWebPageVisibleNodes::FetchNode(void* handle, int index, var_item*& item) {
  auto* list = static_cast<OrvPtrList*>(handle);
  if (index < 0 || index >= list->count) return 0;
  item = static_cast<OrvNodeRecord*>(list->items[index])->item;
  return 1;
}
