#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "orvwebpage/OrvHtml.h"
#include "orvwebpage/OrvItem.h"

// Writes a tree in the indented form of support/ItemTree.h, taking every text
// by its stored length, so a wrong length or a stray byte shows in the diff:
//   html
//     body
//       a href="/x"
//         "Go"
// Bytes outside printable ASCII appear as \xNN. A child whose parent pointer
// is not the element above it is marked " !parent".
inline std::string Escaped(const char* p, int32_t n) {
  std::string out;
  for (int32_t i = 0; i < n; i++) {
    unsigned char c = static_cast<unsigned char>(p[i]);
    if (c < 0x20 || c > 0x7E || c == '"' || c == '\\') {
      char hex[8];
      std::snprintf(hex, sizeof hex, "\\x%02X", c);
      out += hex;
    } else {
      out += static_cast<char>(c);
    }
  }
  return out;
}

struct DumpState {
  std::string out;
  std::vector<var_item*> open;  // element of each depth
};

inline void DumpItem(var_item* item, int32_t depth, void* user) {
  DumpState* s = static_cast<DumpState*>(user);
  s->open.resize(static_cast<size_t>(depth));
  s->open[static_cast<size_t>(depth - 1)] = item;
  var_item* expectedParent = depth > 1 ? s->open[static_cast<size_t>(depth - 2)] : nullptr;
  std::string line(static_cast<size_t>(2 * (depth - 1)), ' ');
  if (item->tag_id == 0) {
    line += '"' + Escaped(item->text, item->text_len) + '"';
  } else {
    line += Escaped(item->name, item->name_len);
    for (var_attr* a = item->attr_list; a; a = a->next) {
      line += ' ' + Escaped(a->name, a->name_len) + "=\"" + Escaped(a->value, a->value_len) + '"';
    }
  }
  if (item->parent != expectedParent) line += " !parent";
  s->out += line + '\n';
}

inline std::string Dump(var_item* root) {
  DumpState state;
  WalkItems(root, 1, DumpItem, &state);
  return state.out;
}

inline std::string OpenAndDump(const std::string& page, ORV_CHARSET charset = ORV_CHARSET_BYTES) {
  OrvHtml doc;
  std::string copy = page;
  if (doc.Open(copy.data(), static_cast<long>(copy.size()), charset) != 0) return "(failed)";
  return Dump(doc.root);
}
