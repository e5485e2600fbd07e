#pragma once

#include <cstddef>
#include <cstring>

// The tags of a page found roughly as the parser will find them: comments
// and the bodies of script and style are stepped over, quoted values may hold
// '>'. Used to tame a page and to cut raw bodies out of it; any byte outside
// ASCII counts as an ordinary character, so a page walks the same before and
// after it is decoded to UTF-8.
struct OrvTag {
  size_t name;  // first byte of the name, after '<'
  size_t nameLength;
  size_t end;      // the '>' that ends the tag, or the page's length
  size_t cutFrom;  // first attribute past OrvMaxAttributes, or 0
  size_t bodyEnd;  // script and style: where the closing tag starts (or the
                   // page's length); others: end
  bool raw;        // script or style
};

namespace orv_tag_walk {

inline bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
inline bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
inline bool IsNameStart(char c) { return IsLetter(c) || c == '_' || c == ':' || c == '.'; }
inline bool IsNameChar(char c) { return IsNameStart(c) || (c >= '0' && c <= '9') || c == '-'; }

inline char Lower(char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; }

inline bool EqualsCaseBlind(const char* p, const char* lower, size_t len) {
  for (size_t k = 0; k < len; k++) {
    if (Lower(p[k]) != lower[k]) return false;
  }
  return true;
}

// First position at or after from where needle (lower case, its first byte
// not a letter) starts, letters compared case-blindly; n if none.
inline size_t Find(const char* p, size_t n, size_t from, const char* needle, size_t len) {
  while (from + len <= n) {
    const void* hit = std::memchr(p + from, needle[0], n - from);
    if (!hit) return n;
    size_t at = size_t(static_cast<const char*>(hit) - p);
    if (at + len > n) return n;
    if (EqualsCaseBlind(p + at + 1, needle + 1, len - 1)) return at;
    from = at + 1;
  }
  return n;
}

// Moves past one attribute's name and its value, quoted or bare.
inline size_t SkipAttribute(const char* p, size_t n, size_t j) {
  while (j < n && !IsBlank(p[j]) && p[j] != '>' && p[j] != '=') j++;
  while (j < n && IsBlank(p[j])) j++;
  if (j >= n || p[j] != '=') return j;
  j++;
  while (j < n && IsBlank(p[j])) j++;
  if (j < n && (p[j] == '"' || p[j] == '\'')) {
    const void* close = std::memchr(p + j + 1, p[j], n - j - 1);
    return close ? size_t(static_cast<const char*>(close) - p) + 1 : n;
  }
  while (j < n && !IsBlank(p[j]) && p[j] != '>') j++;
  return j;
}

// Scans a tag's attributes from j to its '>' (or the end of the page) and
// returns where it stopped; cutFrom becomes the start of the first attribute
// too many, if there is one.
inline size_t ScanAttributes(const char* p, size_t n, size_t j, int maxAttributes,
                             size_t& cutFrom) {
  int attributes = 0;
  while (j < n && p[j] != '>') {
    char c = p[j];
    if (IsBlank(c)) {
      j++;
    } else if (IsNameStart(c)) {
      if (++attributes == maxAttributes + 1) cutFrom = j;
      j = SkipAttribute(p, n, j);
    } else {
      while (j < n && !IsBlank(p[j]) && p[j] != '>') j++;
    }
  }
  return j;
}

}  // namespace orv_tag_walk

// Calls onTag(const OrvTag&) for each tag in page order.
template <typename OnTag>
void OrvWalkTags(const char* p, size_t n, int maxAttributes, OnTag&& onTag) {
  using namespace orv_tag_walk;
  size_t i = 0;
  while (i < n) {
    const void* lt = std::memchr(p + i, '<', n - i);
    if (!lt) break;
    i = size_t(static_cast<const char*>(lt) - p);
    if (i + 1 >= n) break;
    if (p[i + 1] == '!' && i + 3 < n && p[i + 2] == '-' && p[i + 3] == '-') {
      size_t end = Find(p, n, i + 4, "-->", 3);
      i = end == n ? n : end + 3;
      continue;
    }
    if (!IsLetter(p[i + 1])) {
      i++;
      continue;
    }
    OrvTag tag;
    tag.name = i + 1;
    size_t j = tag.name;
    while (j < n && IsNameChar(p[j])) j++;
    tag.nameLength = j - tag.name;
    tag.raw = (tag.nameLength == 6 && EqualsCaseBlind(p + tag.name, "script", 6)) ||
              (tag.nameLength == 5 && EqualsCaseBlind(p + tag.name, "style", 5));
    tag.cutFrom = 0;
    tag.end = ScanAttributes(p, n, j, maxAttributes, tag.cutFrom);
    i = tag.end;
    if (tag.raw) {
      i = Find(p, n, i, tag.nameLength == 6 ? "</script" : "</style", tag.nameLength + 2);
    }
    tag.bodyEnd = i;
    onTag(tag);
  }
}
