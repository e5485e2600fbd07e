#pragma once

// Builds var_item trees for tests from an indented text, so a test reads like
// the tree it describes:
//
//   ItemTree t(R"(
//     div class=row
//       a href=/p?id=1 title="first one"
//         "Item 1"
//       span#7
//         "  padded  "
//     "top-level text"
//   )");
//
// Rules:
// - One item per line; blank lines are skipped. A line indented deeper than the
//   one before is its child (any deeper indentation counts as one level); equal
//   indentation makes a sibling, less returns to the item of that indentation.
// - `"text"` is a text run: tag 0, name "$text", the text between the quotes
//   (escapes \" \\ \n \t \r). Both lengths are stored, never negative.
// - Otherwise the first word is the element name, optionally `name#N` for tag N.
//   Default tags: a 60 (ORV_TAG_LINK), script 87, style 92, title 93, and every
//   other name 100, 101, ... in order of first use within this tree, so equal
//   names share a tag.
// - Further words are attributes `key`, `key=value` or `key="value with blanks"`,
//   optionally `key#N=...` for attribute id N. Default ids: href 14
//   (ORV_ATTR_LINK_TARGET), every other name 1. `key` alone has an empty value.
//
// Items are numbered in line order (document order): t[0] is the first line.
// t.root() is the first top-level item. t.Find("Item 1") gives the first item
// whose text, or else whose name, equals the label. t.Nest(parent, n, "div")
// hangs a chain n deep below parent (null: at the top level) and returns its
// innermost item; t.Add(parent, "line") appends one item as the last child.
// Fields can be changed afterwards for odd cases (negative lengths, nulls).
// A malformed description throws std::invalid_argument.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "orvwebpage/OrvItem.h"

class ItemTree {
 public:
  ItemTree() = default;
  explicit ItemTree(const std::string& description) { Parse(description); }
  ItemTree(const ItemTree&) = delete;
  ItemTree& operator=(const ItemTree&) = delete;

  var_item* root() const { return top_; }
  var_item* operator[](size_t i) const { return order_.at(i); }
  size_t size() const { return order_.size(); }

  var_item* Find(const std::string& label) const {
    for (var_item* it : order_) {
      if (it->text && Equals(it->text, it->text_len, label)) return it;
    }
    for (var_item* it : order_) {
      if (it->name && Equals(it->name, it->name_len, label)) return it;
    }
    throw std::invalid_argument("no item labelled " + label);
  }

  var_item* Add(var_item* parent, const std::string& line) {
    var_item* item = MakeItem(line);
    Link(parent, item);
    return item;
  }

  var_item* Nest(var_item* parent, int32_t depth, const std::string& name) {
    var_item* last = parent;
    for (int32_t i = 0; i < depth; i++) {
      var_item* item = MakeItem(name);
      if (last == parent) {
        Link(parent, item);
      } else {
        item->parent = last;
        last->child = item;
      }
      last = item;
    }
    return last;
  }

 private:
  static bool Equals(const char* p, int32_t n, const std::string& s) {
    size_t len = n < 0 ? std::strlen(p) : static_cast<size_t>(n);
    return len == s.size() && std::memcmp(p, s.data(), len) == 0;
  }

  void Parse(const std::string& description) {
    std::vector<std::pair<size_t, var_item*>> open;  // indentation, item
    size_t start = 0;
    while (start <= description.size()) {
      size_t end = description.find('\n', start);
      if (end == std::string::npos) end = description.size();
      std::string line = description.substr(start, end - start);
      start = end + 1;
      size_t indent = line.find_first_not_of(" \t");
      if (indent == std::string::npos) continue;
      while (!open.empty() && open.back().first >= indent) open.pop_back();
      var_item* parent = open.empty() ? nullptr : open.back().second;
      var_item* item = Add(parent, line.substr(indent));
      open.emplace_back(indent, item);
    }
  }

  void Link(var_item* parent, var_item* item) {
    item->parent = parent;
    var_item** slot = parent ? &parent->child : &top_;
    while (*slot) slot = &(*slot)->next;
    *slot = item;
  }

  char* Keep(const std::string& s) {
    strings_.push_back(s);
    return strings_.back().data();
  }

  // Reads a word or a quoted text starting at pos; pos ends behind it.
  static std::string Token(const std::string& line, size_t& pos, const char* stops) {
    std::string out;
    if (pos < line.size() && line[pos] == '"') {
      pos++;
      while (pos < line.size() && line[pos] != '"') {
        char c = line[pos++];
        if (c == '\\' && pos < line.size()) {
          char e = line[pos++];
          c = e == 'n' ? '\n' : e == 't' ? '\t' : e == 'r' ? '\r' : e;
        }
        out += c;
      }
      if (pos >= line.size()) throw std::invalid_argument("unclosed quote: " + line);
      pos++;
      return out;
    }
    while (pos < line.size() && !std::strchr(stops, line[pos])) out += line[pos++];
    return out;
  }

  static int32_t Number(const std::string& line, size_t& pos) {
    size_t used = 0;
    int32_t n = std::stoi(line.substr(pos), &used);
    pos += used;
    return n;
  }

  var_item* MakeItem(const std::string& line) {
    items_.emplace_back();
    var_item* item = &items_.back();
    order_.push_back(item);
    size_t pos = 0;
    if (line[0] == '"') {
      std::string text = Token(line, pos, "");
      item->tag_id = 0;
      item->name = Keep("$text");
      item->name_len = 5;
      item->text = Keep(text);
      item->text_len = static_cast<int32_t>(text.size());
      return item;
    }
    std::string name = Token(line, pos, " #");
    item->name = Keep(name);
    item->name_len = static_cast<int32_t>(name.size());
    if (pos < line.size() && line[pos] == '#') {
      pos++;
      item->tag_id = static_cast<uint16_t>(Number(line, pos));
    } else {
      item->tag_id = DefaultTag(name);
    }
    var_attr** tail = &item->attr_list;
    for (;;) {
      while (pos < line.size() && line[pos] == ' ') pos++;
      if (pos >= line.size()) break;
      attrs_.emplace_back();
      var_attr* attr = &attrs_.back();
      std::string key = Token(line, pos, " #=");
      attr->name = Keep(key);
      attr->name_len = static_cast<int32_t>(key.size());
      attr->attr_id = key == "href" ? ORV_ATTR_LINK_TARGET : 1;
      if (pos < line.size() && line[pos] == '#') {
        pos++;
        attr->attr_id = static_cast<uint16_t>(Number(line, pos));
      }
      std::string value;
      if (pos < line.size() && line[pos] == '=') {
        pos++;
        value = Token(line, pos, " ");
      }
      attr->value = Keep(value);
      attr->value_len = static_cast<int32_t>(value.size());
      *tail = attr;
      tail = &attr->next;
    }
    return item;
  }

  uint16_t DefaultTag(const std::string& name) {
    if (name == "a") return ORV_TAG_LINK;
    if (name == "script") return ORV_TAG_NO_TEXT_A;
    if (name == "style") return ORV_TAG_NO_TEXT_B;
    if (name == "title") return ORV_TAG_NO_TEXT_C;
    auto found = tags_.find(name);
    if (found != tags_.end()) return found->second;
    uint16_t tag = static_cast<uint16_t>(100 + tags_.size());
    tags_.emplace(name, tag);
    return tag;
  }

  std::deque<var_item> items_;
  std::deque<var_attr> attrs_;
  std::deque<std::string> strings_;
  std::vector<var_item*> order_;
  std::map<std::string, uint16_t> tags_;
  var_item* top_ = nullptr;
};
