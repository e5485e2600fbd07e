#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "orvwebpage/OrvHtml.h"
#include "orvwebpage/OrvItem.h"

// Bytes outside printable ASCII, '"', '\\' and '|' as \xNN.
inline std::string Escaped(const char* p, int32_t n) {
  std::string out;
  for (int32_t i = 0; i < n; i++) {
    unsigned char c = static_cast<unsigned char>(p[i]);
    char hex[8];
    std::snprintf(hex, sizeof hex, "\\x%02X", c);
    out += c < 0x20 || c > 0x7E || c == '"' || c == '\\' || c == '|' ? hex : std::string(1, p[i]);
  }
  return out;
}

// The tree in the indented form of support/ItemTree.h, its lines joined by
// '|', every text taken by its stored length so that a wrong length or a
// stray byte shows: `html|  body|    a href="/x"|      "Go"`. An item whose
// parent link is not the element above it is marked " !parent".
inline std::string Dump(var_item* root) {
  struct State {
    std::string out;
    std::vector<var_item*> open;  // the element of each depth
  } state;
  auto line = [](var_item* item, int32_t depth, void* user) {
    auto* s = static_cast<State*>(user);
    s->open.resize(size_t(depth));
    s->open[size_t(depth - 1)] = item;
    s->out += (s->out.empty() ? "" : "|") + std::string(size_t(2 * (depth - 1)), ' ');
    if (item->tag_id == 0) s->out += '"' + Escaped(item->text, item->text_len) + '"';
    if (item->tag_id != 0) s->out += Escaped(item->name, item->name_len);
    for (var_attr* a = item->attr_list; a; a = a->next)
      s->out += ' ' + Escaped(a->name, a->name_len) + "=\"" + Escaped(a->value, a->value_len) + '"';
    if (item->parent != (depth > 1 ? s->open[size_t(depth - 2)] : nullptr)) s->out += " !parent";
  };
  WalkItems(root, 1, line, &state);
  return state.out;
}
