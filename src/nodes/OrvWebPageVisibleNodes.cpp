#include "orvwebpage/OrvWebPageVisibleNodes.h"

#include "core/OrvMemory.h"
#include "nodes/OrvVisibleNodeClassifier.h"

OrvWebPageVisibleNodes::OrvWebPageVisibleNodes() : classifier(OrvNew<OrvVisibleNodeClassifier>()) {}

OrvWebPageVisibleNodes::OrvWebPageVisibleNodes(const OrvWebPageVisibleNodes& other)
    : classifier(other.classifier) {
  if (classifier) classifier->references++;
}

OrvWebPageVisibleNodes::~OrvWebPageVisibleNodes() { Release(); }

OrvWebPageVisibleNodes& OrvWebPageVisibleNodes::operator=(const OrvWebPageVisibleNodes& other) {
  if (classifier == other.classifier) return *this;
  OrvVisibleNodeClassifier* shared = other.classifier;
  if (shared) shared->references++;
  Release();
  classifier = shared;
  return *this;
}

void OrvWebPageVisibleNodes::Release() {
  if (classifier && --classifier->references == 0) OrvDelete(classifier);
  classifier = nullptr;
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
