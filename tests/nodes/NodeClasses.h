#pragma once

#include <string>
#include <vector>

#include "orvwebpage/OrvItem.h"
#include "orvwebpage/OrvWebPageVisibleNodes.h"

using Classes = std::vector<std::vector<std::string>>;

// A text run reads as its text, an element as its name.
inline std::string Label(const var_item* item) {
  if (item->tag_id == 0 && item->text_len > 0)
    return std::string(item->text, size_t(item->text_len));
  return std::string(item->name, size_t(MeasuredLen(item->name, item->name_len)));
}

// The items of every class, read through the handles.
inline std::vector<std::vector<var_item*>> Items(OrvWebPageVisibleNodes& nodes) {
  std::vector<std::vector<var_item*>> out(size_t(nodes.GetClassCount()));
  for (size_t i = 0; i < out.size(); i++) {
    void* handle = nodes.FetchClass(int(i));
    out[i].resize(size_t(nodes.GetNodesCount(handle)));
    for (size_t j = 0; j < out[i].size(); j++) nodes.FetchNode(handle, int(j), out[i][j]);
  }
  return out;
}

inline Classes Classify(var_item* root) {
  OrvWebPageVisibleNodes nodes;
  nodes.ClassifyNodes(root);
  Classes out;
  for (const auto& items : Items(nodes)) {
    out.emplace_back();
    for (const var_item* item : items) out.back().push_back(Label(item));
  }
  return out;
}
