#include "platform/html/OrvPageCharset.h"

#include <cstdint>
#include <cstring>

#include "platform/html/OrvCharsetLabels.h"

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

// windows-1252 at 0x80..0x9F; the holes keep their own number.
const uint16_t kHighControls[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

}  // namespace

namespace {

// Bytes of the well-formed sequence that starts p, or 0 when none does; bad
// is then how many bytes one replacement character stands for: the longest
// start that could still have become a well-formed sequence.
size_t Utf8Sequence(const unsigned char* p, size_t n, size_t& bad) {
  unsigned char c = p[0];
  bad = 1;
  if (c < 0x80) return 1;
  size_t extra;
  unsigned char low = 0x80, high = 0xBF;  // bounds of the second byte
  if (c >= 0xC2 && c <= 0xDF) {
    extra = 1;
  } else if (c >= 0xE0 && c <= 0xEF) {
    extra = 2;
    if (c == 0xE0) low = 0xA0;
    if (c == 0xED) high = 0x9F;
  } else if (c >= 0xF0 && c <= 0xF4) {
    extra = 3;
    if (c == 0xF0) low = 0x90;
    if (c == 0xF4) high = 0x8F;
  } else {
    return 0;
  }
  for (size_t k = 1; k <= extra; k++) {
    if (k >= n || p[k] < (k == 1 ? low : 0x80) || p[k] > (k == 1 ? high : 0xBF)) return 0;
    bad = k + 1;
  }
  return extra + 1;
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
    size_t length = Utf8Sequence(p + i, n - i, bad);
    if (length == 0) return false;
    i += length;
  }
  return true;
}

size_t OrvRepairUtf8(char* out, const unsigned char* in, size_t n) {
  size_t o = 0;
  size_t i = 0;
  while (i < n) {
    size_t bad;
    size_t length = Utf8Sequence(in + i, n - i, bad);
    if (length) {
      std::memcpy(out + o, in + i, length);
      o += length;
      i += length;
    } else {
      std::memcpy(out + o, "\xEF\xBF\xBD", 3);
      o += 3;
      i += bad;
    }
  }
  return o;
}

bool OrvIsAscii(const unsigned char* p, size_t n) {
  size_t i = 0;
  while (OrvIsAsciiWord(p + i, n - i)) i += 8;
  for (; i < n; i++) {
    if (p[i] >= 0x80) return false;
  }
  return true;
}

size_t OrvLatin1ToUtf8(char* out, const unsigned char* in, size_t n) {
  size_t o = 0;
  size_t i = 0;
  while (i < n) {
    if (OrvIsAsciiWord(in + i, n - i)) {
      std::memcpy(out + o, in + i, 8);
      o += 8;
      i += 8;
      continue;
    }
    unsigned char c = in[i++];
    if (c < 0x80) {
      out[o++] = char(c);
    } else {
      out[o++] = char(0xC0 | (c >> 6));
      out[o++] = char(0x80 | (c & 0x3F));
    }
  }
  return o;
}

size_t OrvWindows1252ToUtf8(char* out, const unsigned char* in, size_t n) {
  size_t o = 0;
  for (size_t i = 0; i < n; i++) {
    uint32_t c = in[i];
    if (c >= 0x80 && c <= 0x9F) c = kHighControls[c - 0x80];
    if (c < 0x80) {
      out[o++] = char(c);
    } else if (c < 0x800) {
      out[o++] = char(0xC0 | (c >> 6));
      out[o++] = char(0x80 | (c & 0x3F));
    } else {
      out[o++] = char(0xE0 | (c >> 12));
      out[o++] = char(0x80 | ((c >> 6) & 0x3F));
      out[o++] = char(0x80 | (c & 0x3F));
    }
  }
  return o;
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
