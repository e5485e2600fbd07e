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
#include <sstream>
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
    for (bool byText : {true, false}) {
      for (var_item* it : order_) {
        const char* p = byText ? it->text : it->name;
        int32_t n = byText ? it->text_len : it->name_len;
        if (p && std::string(p, n < 0 ? std::strlen(p) : size_t(n)) == label) return it;
      }
    }
    throw std::invalid_argument("no item labelled " + label);
  }

  var_item* Add(var_item* parent, const std::string& line) {
    var_item* item = MakeItem(line);
    item->parent = parent;
    var_item** slot = parent ? &parent->child : &top_;
    while (*slot) slot = &(*slot)->next;
    return *slot = item;
  }

  var_item* Nest(var_item* parent, int32_t depth, const std::string& name) {
    for (int32_t i = 0; i < depth; i++) parent = Add(parent, name);
    return parent;
  }

 private:
  void Parse(const std::string& description) {
    std::vector<std::pair<size_t, var_item*>> open;  // indentation, item
    std::istringstream lines(description);
    for (std::string line; std::getline(lines, line);) {
      size_t indent = line.find_first_not_of(" \t");
      if (indent == std::string::npos) continue;
      while (!open.empty() && open.back().first >= indent) open.pop_back();
      var_item* parent = open.empty() ? nullptr : open.back().second;
      open.emplace_back(indent, Add(parent, line.substr(indent)));
    }
  }

  char* Keep(const std::string& s, int32_t& length) {
    length = static_cast<int32_t>(s.size());
    return strings_.emplace_back(s).data();
  }

  // Reads a word up to one of stops, or a quoted text; pos ends behind it.
  static std::string Token(const std::string& line, size_t& pos, const char* stops) {
    std::string out;
    bool quoted = pos < line.size() && line[pos] == '"';
    for (pos += quoted; pos < line.size(); pos++) {
      char c = line[pos];
      if (quoted ? c == '"' : std::strchr(stops, c) != nullptr) break;
      if (quoted && c == '\\' && pos + 1 < line.size()) {
        char e = line[++pos];
        c = e == 'n' ? '\n' : e == 't' ? '\t' : e == 'r' ? '\r' : e;
      }
      out += c;
    }
    if (quoted && pos++ >= line.size()) throw std::invalid_argument("unclosed quote: " + line);
    return out;
  }

  static int32_t Number(const std::string& line, size_t& pos) {
    size_t used = 0;
    int32_t n = std::stoi(line.substr(pos), &used);
    pos += used;
    return n;
  }

  var_item* MakeItem(const std::string& line) {
    var_item* item = &items_.emplace_back();
    order_.push_back(item);
    size_t pos = 0;
    if (line[0] == '"') {  // a text run: tag 0
      item->text = Keep(Token(line, pos, ""), item->text_len);
      item->name = Keep("$text", item->name_len);
      return item;
    }
    std::string name = Token(line, pos, " #");
    item->name = Keep(name, item->name_len);
    bool numbered = pos < line.size() && line[pos] == '#';
    item->tag_id = numbered ? static_cast<uint16_t>(Number(line, ++pos)) : DefaultTag(name);
    for (var_attr** tail = &item->attr_list;; tail = &(*tail)->next) {
      pos = line.find_first_not_of(' ', pos);
      if (pos == std::string::npos) break;
      var_attr* attr = *tail = &attrs_.emplace_back();
      std::string key = Token(line, pos, " #=");
      attr->name = Keep(key, attr->name_len);
      attr->attr_id = key == "href" ? ORV_ATTR_LINK_TARGET : 1;
      if (pos < line.size() && line[pos] == '#') attr->attr_id = uint16_t(Number(line, ++pos));
      bool valued = pos < line.size() && line[pos] == '=';
      attr->value = Keep(valued ? Token(line, ++pos, " ") : std::string(), attr->value_len);
    }
    return item;
  }

  uint16_t DefaultTag(const std::string& name) {
    static const std::map<std::string, uint16_t> fixed = {{"a", ORV_TAG_LINK},
                                                          {"script", ORV_TAG_NO_TEXT_A},
                                                          {"style", ORV_TAG_NO_TEXT_B},
                                                          {"title", ORV_TAG_NO_TEXT_C}};
    if (fixed.count(name)) return fixed.at(name);
    return tags_.emplace(name, static_cast<uint16_t>(100 + tags_.size())).first->second;
  }

  std::deque<var_item> items_;
  std::deque<var_attr> attrs_;
  std::deque<std::string> strings_;
  std::vector<var_item*> order_;
  std::map<std::string, uint16_t> tags_;
  var_item* top_ = nullptr;
};
