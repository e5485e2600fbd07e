#include "platform/html/OrvPageCharset.h"

#include <cstdint>
#include <cstring>

#include "platform/html/OrvCharsetLabels.h"
#include "platform/html/OrvUtf8Scan.h"

namespace {

using Kind = OrvPageCharsetKind;

// Browsers look for the declaration before the body; past this many bytes
// a page is taken to have none.
constexpr size_t kMetaWindow = 64 * 1024;

bool IsSpace(unsigned char c) {
  return c == 0x09 || c == 0x0A || c == 0x0C || c == 0x0D || c == 0x20;
}
bool IsLetter(unsigned char c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z'; }
char Lower(unsigned char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : char(c); }

bool StartsCaseBlind(const char* p, size_t n, const char* lower) {
  size_t len = std::strlen(lower);
  if (n < len) return false;
  for (size_t k = 0; k < len; k++) {
    if (Lower(uint8_t(p[k])) != lower[k]) return false;
  }
  return true;
}

// A bounded text gathered from the page; too long marks it as no label at all.
struct Label {
  char text[64] = {0};
  size_t length = 0;
  bool tooLong = false;
  bool present = false;

  void Clear() { *this = Label(); }
  void Add(char c) {
    if (length + 1 < sizeof text)
      text[length++] = c;
    else
      tooLong = true;
  }
  bool Is(const char* lower) const { return !tooLong && std::strcmp(text, lower) == 0; }
};

// The encoding a label names, or false when the parser knows none by it.
bool Resolve(const char* text, size_t length, bool fromMeta, OrvPageCharset& out) {
  while (length && IsSpace(uint8_t(*text))) text++, length--;
  while (length && IsSpace(uint8_t(text[length - 1]))) length--;
  Label label;
  for (size_t i = 0; i < length; i++) label.Add(Lower(uint8_t(text[i])));
  if (label.tooLong || label.length == 0) return false;
  const OrvCharsetLabels* entry = OrvFindCharsetLabel(label.text);
  if (!entry) return false;
  out.kind = entry->kind;
  // A page that could be read to its meta is no UTF-16 page.
  if (fromMeta && (out.kind == Kind::kUtf16Le || out.kind == Kind::kUtf16Be))
    out.kind = Kind::kUtf8;
  if (out.kind == Kind::kOther) std::strncpy(out.label, entry->converter, sizeof out.label - 1);
  return true;
}

// The charset parameter of a Content-Type value, or of a meta content.
bool CharsetParameter(const char* p, size_t n, const char*& value, size_t& length) {
  size_t i = 0;
  for (;;) {
    while (i < n && !StartsCaseBlind(p + i, n - i, "charset")) i++;
    if (i >= n) return false;
    i += 7;
    while (i < n && IsSpace(uint8_t(p[i]))) i++;
    if (i >= n || p[i] != '=') continue;
    i++;
    while (i < n && IsSpace(uint8_t(p[i]))) i++;
    if (i < n && (p[i] == '"' || p[i] == '\'')) {
      const void* close = std::memchr(p + i + 1, p[i], n - i - 1);
      if (!close) return false;
      value = p + i + 1;
      length = size_t(static_cast<const char*>(close) - value);
      return true;
    }
    size_t from = i;
    while (i < n && !IsSpace(uint8_t(p[i])) && p[i] != ';') i++;
    value = p + from;
    length = i - from;
    return length > 0;
  }
}

// One attribute of a tag, as the prescan reads it: names in lower case.
struct Attribute {
  Label name;
  const char* value = nullptr;
  size_t valueLength = 0;
};

// Reads the next attribute at i, or gives false at the end of the tag.
bool NextAttribute(const char* p, size_t n, size_t& i, Attribute& attr) {
  while (i < n && (IsSpace(uint8_t(p[i])) || p[i] == '/')) i++;
  if (i >= n || p[i] == '>') return false;
  attr.name.Clear();
  attr.value = p + i;
  attr.valueLength = 0;
  do {
    attr.name.Add(Lower(uint8_t(p[i])));
    i++;
  } while (i < n && p[i] != '=' && p[i] != '/' && p[i] != '>' && !IsSpace(uint8_t(p[i])));
  while (i < n && IsSpace(uint8_t(p[i]))) i++;
  if (i >= n || p[i] != '=') return true;
  i++;
  while (i < n && IsSpace(uint8_t(p[i]))) i++;
  if (i < n && (p[i] == '"' || p[i] == '\'')) {
    char quote = p[i++];
    size_t from = i;
    while (i < n && p[i] != quote) i++;
    attr.value = p + from;
    attr.valueLength = i - from;
    if (i < n) i++;
    return true;
  }
  size_t from = i;
  while (i < n && p[i] != '>' && !IsSpace(uint8_t(p[i]))) i++;
  attr.value = p + from;
  attr.valueLength = i - from;
  return true;
}

// The charset of the first usable meta declaration before the body.
bool MetaCharset(const char* p, size_t n, OrvPageCharset& out) {
  if (n > kMetaWindow) n = kMetaWindow;
  size_t i = 0;
  while (i < n) {
    const void* lt = std::memchr(p + i, '<', n - i);
    if (!lt) return false;
    i = size_t(static_cast<const char*>(lt) - p);
    if (StartsCaseBlind(p + i, n - i, "<!--")) {
      size_t end = i + 2;
      while (end < n && !StartsCaseBlind(p + end, n - end, "-->")) end++;
      i = end + 3;
    } else if (StartsCaseBlind(p + i, n - i, "<meta") && i + 5 < n &&
               (IsSpace(uint8_t(p[i + 5])) || p[i + 5] == '/')) {
      i += 5;
      bool seenHttpEquiv = false, seenContent = false, seenCharset = false;
      bool gotPragma = false;
      int needPragma = -1;  // -1 nothing found, 0 a charset attribute, 1 a content charset
      const char* charset = nullptr;
      size_t charsetLength = 0;
      Attribute attr;
      while (NextAttribute(p, n, i, attr)) {
        if (attr.name.Is("http-equiv") && !seenHttpEquiv) {
          seenHttpEquiv = true;
          Label value;
          for (size_t k = 0; k < attr.valueLength; k++) value.Add(Lower(uint8_t(attr.value[k])));
          gotPragma = value.Is("content-type");
        } else if (attr.name.Is("content") && !seenContent) {
          seenContent = true;
          if (!charset && CharsetParameter(attr.value, attr.valueLength, charset, charsetLength))
            needPragma = 1;
        } else if (attr.name.Is("charset") && !seenCharset) {
          seenCharset = true;
          charset = attr.value;
          charsetLength = attr.valueLength;
          needPragma = 0;
        }
      }
      if (needPragma == -1 || (needPragma == 1 && !gotPragma) || !charset) continue;
      if (Resolve(charset, charsetLength, true, out)) return true;
    } else if (i + 1 < n && (IsLetter(uint8_t(p[i + 1])) ||
                             (p[i + 1] == '/' && i + 2 < n && IsLetter(uint8_t(p[i + 2]))))) {
      if (StartsCaseBlind(p + i, n - i, "<body") &&
          (i + 5 >= n || IsSpace(uint8_t(p[i + 5])) || p[i + 5] == '>' || p[i + 5] == '/'))
        return false;
      while (i < n && !IsSpace(uint8_t(p[i])) && p[i] != '>') i++;
      Attribute attr;
      while (NextAttribute(p, n, i, attr)) {
      }
    } else if (i + 1 < n && (p[i + 1] == '!' || p[i + 1] == '/' || p[i + 1] == '?')) {
      const void* gt = std::memchr(p + i, '>', n - i);
      if (!gt) return false;
      i = size_t(static_cast<const char*>(gt) - p);
    }
    i++;
  }
  return false;
}

}  // namespace

bool OrvIsValidUtf8(const unsigned char* p, size_t n) {
  size_t i = 0;
  while (i < n) {
    if (OrvIsAsciiWord(p + i, n - i)) {
      i += 8;
      continue;
    }
    size_t bad;
    size_t length = OrvUtf8Sequence(p + i, n - i, bad);
    if (length == 0) return false;
    i += length;
  }
  return true;
}

bool OrvIsAscii(const unsigned char* p, size_t n) {
  size_t i = 0;
  while (OrvIsAsciiWord(p + i, n - i)) i += 8;
  for (; i < n; i++) {
    if (p[i] >= 0x80) return false;
  }
  return true;
}

OrvPageCharset OrvDecidePageCharset(const char* text, size_t n, const char* contentType) {
  OrvPageCharset out;
  const auto* p = reinterpret_cast<const unsigned char*>(text);
  if (n >= 3 && p[0] == 0xEF && p[1] == 0xBB && p[2] == 0xBF) {
    out.bomLength = 3;
    return out;
  }
  if (n >= 2 && ((p[0] == 0xFF && p[1] == 0xFE) || (p[0] == 0xFE && p[1] == 0xFF))) {
    out.kind = p[0] == 0xFF ? Kind::kUtf16Le : Kind::kUtf16Be;
    out.bomLength = 2;
    return out;
  }
  const char* value = nullptr;
  size_t length = 0;
  if (contentType && CharsetParameter(contentType, std::strlen(contentType), value, length) &&
      Resolve(value, length, false, out))
    return out;
  if (MetaCharset(text, n, out)) return out;
  out.kind = OrvIsValidUtf8(p, n) ? Kind::kUtf8 : Kind::kWindows1252;
  return out;
}
