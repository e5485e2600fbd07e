#include "size/OrvSizeLinks.h"

#include <cstring>

#include "orvwebpage/OrvPageLinks.h"
#include "orvwebpage/OrvString.h"

namespace {

std::string_view View(const char* text, int32_t length) {
  int32_t n = MeasuredLen(text, length);
  return n > 0 ? std::string_view(text, size_t(n)) : std::string_view();
}

bool NameIs(const var_item* item, const char* name) {
  return CapsEqual(item->name, item->name_len, name, int32_t(std::strlen(name)));
}

std::string_view AttrValue(var_item* item, const char* name) {
  var_attr* attr = FindAttrByName(item->attr_list, name, int32_t(std::strlen(name)));
  return attr ? View(attr->value, attr->value_len) : std::string_view();
}

char Lower(char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; }

bool HasWord(std::string_view text, const char* word) {
  size_t n = std::strlen(word);
  for (size_t i = 0; i + n <= text.size(); ++i) {
    size_t j = 0;
    while (j < n && Lower(text[i + j]) == word[j]) ++j;
    if (j == n) return true;
  }
  return false;
}

void AppendFolded(OrvSizeText& out, std::string_view text) {
  for (char c : text) {
    bool blank = c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
    if (!blank)
      out += c;
    else if (!out.empty() && out.back() != ' ')
      out += ' ';
  }
}

struct RawLink {
  std::string_view href;
  OrvSizeText label;
  bool next = false;
  int32_t depth = 0;  // of the `a`; deeper text belongs to it
};

struct Reader {
  OrvSizeList<RawLink> raw;
  std::string_view base;
  int32_t open = -1;  // index of the `a` whose text is being gathered

  static void Visit(var_item* item, int32_t depth, void* self) {
    static_cast<Reader*>(self)->Take(item, depth);
  }

  void Take(var_item* item, int32_t depth) {
    if (open >= 0 && depth <= raw[size_t(open)].depth) open = -1;
    if (item->tag_id == 0) {
      if (open >= 0 && IsVisibleText(item)) {
        OrvSizeText& label = raw[size_t(open)].label;
        if (!label.empty() && label.back() != ' ') label += ' ';
        AppendFolded(label, View(item->text, item->text_len));
      }
      return;
    }
    bool anchor = item->tag_id == ORV_TAG_LINK;
    if (anchor || NameIs(item, "area")) {
      var_attr* href =
          anchor ? FindLinkAttr(item->attr_list) : FindAttrByName(item->attr_list, "href", 4);
      if (!href) return;
      RawLink link;
      link.href = View(href->value, href->value_len);
      link.depth = depth;
      link.next =
          HasWord(AttrValue(item, "rel"), "next") ||
          OrvIsNextLabel(AttrValue(item, "class").data(), long(AttrValue(item, "class").size()));
      raw.push_back(std::move(link));
      if (anchor) open = int32_t(raw.size() - 1);
    } else if (NameIs(item, "link") && HasWord(AttrValue(item, "rel"), "next")) {
      RawLink link;
      link.href = AttrValue(item, "href");
      link.next = true;
      link.depth = depth;
      raw.push_back(std::move(link));
    } else if (NameIs(item, "base") && base.empty()) {
      base = AttrValue(item, "href");
    }
  }
};

}  // namespace

bool OrvIsNextLabel(const char* text, long length) {
  std::string_view label(text ? text : "", text && length > 0 ? size_t(length) : 0);
  if (HasWord(label, "next") || HasWord(label, "older") || HasWord(label, "nächste") ||
      HasWord(label, "suivant"))
    return true;
  // Arrows alone, with blanks.
  bool arrow = false;
  for (size_t i = 0; i < label.size();) {
    std::string_view rest = label.substr(i);
    if (rest[0] == ' ') {
      ++i;
    } else if (rest[0] == '>') {
      arrow = true, ++i;
    } else if (rest.starts_with("\xC2\xBB")) {
      arrow = true, i += 2;
    } else if (rest[0] == '\xBB') {
      arrow = true, ++i;  // a page read as bytes keeps Latin-1's one
    } else if (rest.starts_with("\xE2\x80\xBA") || rest.starts_with("\xE2\x86\x92") ||
               rest.starts_with("\xE2\x87\x92") || rest.starts_with("\xE2\x87\x89") ||
               rest.starts_with("\xE2\x89\xAB")) {
      arrow = true, i += 3;  // › → ⇒ ⇉ ≫
    } else {
      return false;
    }
  }
  return arrow;
}

void OrvReadSizeLinks(var_item* root, const char* pageUrl, long pageLen,
                      OrvSizeList<OrvSizeLink>& links, size_t most) {
  links.clear();
  Reader reader;
  WalkItems(root, 1, Reader::Visit, &reader);

  OrvString base, resolved;
  if (pageLen < 0) pageLen = long(std::strlen(pageUrl));
  base.CopyBuf(pageUrl, pageLen);
  if (!reader.base.empty() &&
      OrvResolveUrl(pageUrl, pageLen, reader.base.data(), long(reader.base.size()), resolved))
    base = resolved;
  for (RawLink& raw : reader.raw) {
    // Resolving is what a page of a million links costs.
    if (links.size() >= most) break;
    if (!OrvResolveUrl(base.buf, base.len, raw.href.data(), long(raw.href.size()), resolved))
      continue;
    OrvSizeLink link;
    link.url.assign(resolved.buf, size_t(resolved.len));
    size_t hash = link.url.find('#');
    if (hash != OrvSizeText::npos) link.url.resize(hash);
    while (!raw.label.empty() && raw.label.back() == ' ') raw.label.pop_back();
    link.label = std::move(raw.label);
    link.next = raw.next || OrvIsNextLabel(link.label.data(), long(link.label.size()));
    links.push_back(std::move(link));
  }
}
