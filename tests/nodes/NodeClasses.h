#pragma once

#include <string>
#include <vector>

#include "nodes/OrvVisibleNodeClassifier.h"
#include "orvwebpage/OrvItem.h"

using Classes = std::vector<std::vector<std::string>>;

// A text run reads as its text, an element as its name.
inline std::string Label(const var_item* item) {
  if (!item) return "(null)";
  if (item->tag_id == 0 && item->text && item->text_len > 0)
    return std::string(item->text, static_cast<size_t>(item->text_len));
  if (!item->name) return "";
  return std::string(item->name, static_cast<size_t>(MeasuredLen(item->name, item->name_len)));
}

inline std::vector<std::string> Labels(const OrvPtrList& list) {
  std::vector<std::string> out;
  for (int32_t i = 0; i < list.count; i++)
    out.push_back(Label(static_cast<OrvNodeRecord*>(list.items[i])->item));
  return out;
}

inline Classes ClassLabels(const OrvVisibleNodeClassifier& classifier) {
  Classes out;
  for (int32_t i = 0; i < classifier.classes.count; i++)
    out.push_back(Labels(classifier.classes.items[i]));
  return out;
}

inline Classes Classify(var_item* root, OrvNodeTest test = IsVisibleText) {
  OrvVisibleNodeClassifier classifier;
  classifier.nodeTest = test;
  classifier.Classify(root);
  return ClassLabels(classifier);
}
