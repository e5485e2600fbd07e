#include "platform/html/OrvPageTaming.h"

#include <cstring>

#include "core/OrvMemory.h"

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool IsNameStart(char c) { return IsLetter(c) || c == '_' || c == ':' || c == '.'; }
bool IsNameChar(char c) { return IsNameStart(c) || (c >= '0' && c <= '9') || c == '-'; }

bool LooksWide(const unsigned char* p, size_t n) {
  if (n >= 2 && ((p[0] == 0xFF && p[1] == 0xFE) || (p[0] == 0xFE && p[1] == 0xFF))) return true;
  return n >= 4 && (p[0] == 0 || p[1] == 0) && (p[2] == 0 || p[3] == 0);
}

char Lower(char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; }

bool EqualsCaseBlind(const char* p, const char* lower, size_t len) {
  for (size_t k = 0; k < len; k++) {
    if (Lower(p[k]) != lower[k]) return false;
  }
  return true;
}

// First position at or after from where needle (lower case, its first byte
// not a letter) starts, letters compared case-blindly; n if none.
size_t Find(const char* p, size_t n, size_t from, const char* needle, size_t len) {
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

struct Cut {
  size_t from;
  size_t to;
};

// Moves past one attribute's name and its value, quoted or bare.
size_t SkipAttribute(const char* p, size_t n, size_t j) {
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
size_t ScanAttributes(const char* p, size_t n, size_t j, size_t& cutFrom) {
  int attributes = 0;
  while (j < n && p[j] != '>') {
    char c = p[j];
    if (IsBlank(c)) {
      j++;
    } else if (IsNameStart(c)) {
      if (++attributes == OrvMaxAttributes + 1) cutFrom = j;
      j = SkipAttribute(p, n, j);
    } else {
      while (j < n && !IsBlank(p[j]) && p[j] != '>') j++;
    }
  }
  return j;
}

// Walks the tags of the page roughly as the parser will, skipping comments and
// the bodies of script and style, and notes for every tag with too many
// attributes the stretch from its first attribute too many to its end.
// Returns the number of cuts found (at most capacity are stored; the caller
// scans again after applying them if there were more).
size_t FindCuts(const char* p, size_t n, Cut* cuts, size_t capacity) {
  size_t found = 0;
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
    size_t name = i + 1;
    size_t j = name;
    while (j < n && IsNameChar(p[j])) j++;
    size_t nameLength = j - name;
    bool raw = (nameLength == 6 && EqualsCaseBlind(p + name, "script", 6)) ||
               (nameLength == 5 && EqualsCaseBlind(p + name, "style", 5));
    size_t cutFrom = 0;
    j = ScanAttributes(p, n, j, cutFrom);
    if (cutFrom) {
      if (found < capacity) cuts[found] = Cut{cutFrom, j};
      found++;
    }
    i = j;
    if (raw) {
      i = Find(p, n, i, nameLength == 6 ? "</script" : "</style", nameLength + 2);
    }
  }
  return found;
}

}  // namespace

char* OrvTamePage(const char* text, size_t& length, bool mayBeWide) {
  char* copy = nullptr;
  const char* page = text;
  if (std::memchr(text, 0, length) &&
      !(mayBeWide && LooksWide(reinterpret_cast<const unsigned char*>(text), length))) {
    copy = static_cast<char*>(OrvAllocBytes(length));
    size_t kept = 0;
    for (size_t i = 0; i < length; i++) {
      if (text[i] != '\0') copy[kept++] = text[i];
    }
    length = kept;
    page = copy;
  }
  Cut cuts[64];
  for (;;) {
    size_t found = FindCuts(page, length, cuts, 64);
    if (found == 0) break;
    if (!copy) {
      copy = static_cast<char*>(OrvAllocBytes(length));
      std::memcpy(copy, text, length);
      page = copy;
    }
    size_t stored = found < 64 ? found : 64;
    size_t out = cuts[0].from;
    for (size_t k = 0; k < stored; k++) {
      size_t keepEnd = k + 1 < stored ? cuts[k + 1].from : length;
      std::memmove(copy + out, copy + cuts[k].to, keepEnd - cuts[k].to);
      out += keepEnd - cuts[k].to;
    }
    length = out;
    if (found <= 64) break;
  }
  return copy;
}
