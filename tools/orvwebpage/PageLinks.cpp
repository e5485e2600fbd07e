#include "PageLinks.h"

#include <cstdint>
#include <utility>

#include "orvwebpage/OrvHtml.h"
#include "orvwebpage/OrvItem.h"

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

void AppendWords(std::string& label, const char* text, int32_t length) {
  for (int32_t i = 0; i < length; i++) {
    if (IsBlank(text[i])) {
      if (!label.empty() && label.back() != ' ') label += ' ';
    } else {
      label += text[i];
    }
  }
}

// The walk visits parents before children, so the links open around an item
// are those on the stack at a smaller depth: no climbing per text run, which
// a deeply nested page would make quadratic.
struct Harvest {
  std::vector<PageLink> links;
  std::vector<std::pair<int32_t, size_t>> open;  // depth of an open link, its index

  static void Visit(var_item* item, int32_t depth, void* user) {
    auto* self = static_cast<Harvest*>(user);
    while (!self->open.empty() && self->open.back().first >= depth) self->open.pop_back();
    if (item->tag_id == ORV_TAG_LINK) {
      var_attr* target = FindLinkAttr(item->attr_list);
      if (!target) return;
      int32_t length = MeasuredLen(target->value, target->value_len);
      self->links.push_back({std::string(target->value ? target->value : "", size_t(length)), ""});
      self->open.emplace_back(depth, self->links.size() - 1);
    } else if (item->tag_id == 0 && item->text && !self->open.empty()) {
      // Runs are kept apart by a space: the markup between them often stands
      // for a break (a heading and a summary inside one link).
      std::string& label = self->links[self->open.back().second].label;
      if (!label.empty() && label.back() != ' ') label += ' ';
      AppendWords(label, item->text, MeasuredLen(item->text, item->text_len));
    }
  }
};

}  // namespace

std::vector<PageLink> LinksOfPage(std::string html, const std::string& contentType) {
  OrvHtml doc;
  Harvest harvest;
  if (doc.Open(html.data(), long(html.size()), ORV_CHARSET_UTF8, contentType.c_str()) == 0 &&
      doc.root)
    WalkItems(doc.root, 1, &Harvest::Visit, &harvest);
  doc.Close();
  for (PageLink& link : harvest.links)
    while (!link.label.empty() && link.label.back() == ' ') link.label.pop_back();
  return std::move(harvest.links);
}
