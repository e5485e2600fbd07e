#include "orvwebpage/OrvString.h"

#include <cstdint>
#include <cstring>

#include "core/OrvBytes.h"
#include "core/OrvMemory.h"
#include "core/OrvTextLength.h"

char OrvString::emptyText[1] = {0};

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

int HexValue(unsigned char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

unsigned char FoldCase(unsigned char c) { return (c >= 'A' && c <= 'Z') ? c + 32 : c; }

}  // namespace

OrvString::OrvString(const OrvString& other) : buf(emptyText), len(0), cap(0) {
  if (other.len > 0) CopyBuf(other.buf, other.len);
}

OrvString::OrvString(const char* text, long length) : buf(emptyText), len(0), cap(0) {
  CopyBuf(text, length);
}

OrvString::~OrvString() {
  if (cap) OrvFreeBytes(buf);
}

void OrvString::Grow(uint32_t need) {
  // need counts the NUL too.
  if (need <= cap) return;
  uint64_t wanted = cap < 16 ? 16 : uint64_t(cap) + cap / 2;
  if (wanted < need) wanted = need;
  // Whole 16-byte units, so that word-wise scans of the text stay inside.
  wanted = (wanted + 15) & ~uint64_t(15);
  if (wanted > uint64_t(INT32_MAX) + 1) wanted = uint64_t(INT32_MAX) + 1;
  // Scans may read the whole allocation, so none of it is left undefined.
  uint32_t kept = 0;
  if (cap) {
    buf = static_cast<char*>(OrvReallocBytes(buf, wanted));
    kept = cap;
  } else {
    char* fresh = static_cast<char*>(OrvAllocBytes(wanted));
    if (buf && len > 0) std::memcpy(fresh, buf, size_t(len));
    buf = fresh;
    kept = len > 0 ? uint32_t(len) : 0;
  }
  std::memset(buf + kept, 0, size_t(wanted - kept));
  cap = uint32_t(wanted);
}

void OrvString::Reserve(long n) {
  if (n < 0) return;
  Grow(OrvCheckedLength(n) + 1u);
  buf[len] = 0;
}

OrvString& OrvString::operator=(const OrvString& other) {
  if (this != &other) CopyBuf(other.buf, other.len);
  return *this;
}

OrvString& OrvString::operator=(OrvString&& other) noexcept {
  if (this != &other) {
    if (cap) OrvFreeBytes(buf);
    buf = other.buf ? other.buf : emptyText;
    len = other.len;
    cap = other.cap;
    other.buf = nullptr;
    other.len = 0;
    other.cap = 0;
  }
  return *this;
}

OrvString& OrvString::operator=(const char* text) {
  CopyBuf(text, -1);
  return *this;
}

int OrvString::operator==(const OrvString& other) const {
  if (len != other.len) return 0;
  return len <= 0 || std::memcmp(buf, other.buf, size_t(len)) == 0;
}

OrvString& OrvString::operator+=(const OrvString& other) {
  if (other.len > 0) Append(other.buf, other.len);
  return *this;
}

OrvString& OrvString::operator+=(const char* text) {
  Append(text, -1);
  return *this;
}

OrvString& OrvString::operator+=(char c) {
  Grow(uint32_t(len) + 2u);
  buf[len++] = c;
  buf[len] = 0;
  return *this;
}

void OrvString::Append(const char* text, long length) {
  uint32_t n = OrvTextLength(text, length);
  if (n == 0) {
    if (!buf) buf = emptyText;
    return;
  }
  uint32_t newLen = OrvCheckedLength(long(len) + long(n));
  // The text may lie inside this string's own buffer, which Grow can move.
  bool inside = cap && text >= buf && text < buf + cap;
  size_t offset = inside ? size_t(text - buf) : 0;
  Grow(newLen + 1u);
  if (inside)
    std::memmove(buf + len, buf + offset, n);
  else
    OrvCopyBytes(buf + len, text, n);
  len = int32_t(newLen);
  buf[len] = 0;
}

void OrvString::CopyBuf(const char* text, long length) {
  // The common case first: a counted text that fits and lies elsewhere.
  if (length > 0 && uint64_t(length) < cap && text && (text >= buf + cap || text + length <= buf)) {
    OrvCopyBytes(buf, text, size_t(length));
    len = int32_t(length);
    buf[length] = 0;
    return;
  }
  CopyBufAnyway(text, length);
}

void OrvString::CopyBufAnyway(const char* text, long length) {
  uint32_t n = OrvTextLength(text, length);
  if (n == 0) {
    len = 0;
    if (cap)
      buf[0] = 0;
    else
      buf = emptyText;
    return;
  }
  bool inside = cap && text >= buf && text < buf + cap;
  if (inside) {
    // Own text: no growth is needed, it already fits.
    std::memmove(buf, text, n);
  } else {
    if (n + 1u > cap) {
      len = 0;  // nothing to keep across the growth
      Grow(n + 1u);
    }
    OrvCopyBytes(buf, text, n);
  }
  len = int32_t(n);
  buf[len] = 0;
}

void OrvString::TrimBanks() {
  if (len <= 0) return;
  int32_t start = 0, end = len;
  while (start < end && IsBlank(buf[start])) start++;
  while (end > start && IsBlank(buf[end - 1])) end--;
  if (start == 0 && end == len) return;
  if (end == start) {
    Clear();
    return;
  }
  std::memmove(buf, buf + start, size_t(end - start));
  len = end - start;
  buf[len] = 0;
}

void OrvString::ChangeToChar() {
  if (len <= 0) return;
  // Names are short: a plain loop finds the first "%" sooner than a call.
  char* in = nullptr;
  if (len < 32) {
    for (char* p = buf; p < buf + len; p++)
      if (*p == '%') {
        in = p;
        break;
      }
  } else {
    in = static_cast<char*>(std::memchr(buf, '%', size_t(len)));
  }
  if (!in) return;
  char* out = in;
  char* end = buf + len;
  while (in < end) {
    if (*in == '%' && end - in >= 3) {
      int hi = HexValue(static_cast<unsigned char>(in[1]));
      int lo = HexValue(static_cast<unsigned char>(in[2]));
      if (hi >= 0 && lo >= 0) {
        *out++ = char(hi * 16 + lo);
        in += 3;
        continue;
      }
    }
    *out++ = *in++;
  }
  len = int32_t(out - buf);
  buf[len] = 0;
}

long OrvString::Cutlen(long n) {
  if (n < 0) n = 0;
  if (n >= len) return len;
  len = int32_t(n);
  buf[len] = 0;
  return len;
}

long OrvString::CutBefore(long n) {
  if (n <= 0 || len <= 0) return len;
  if (n >= len) {
    Clear();
    return 0;
  }
  std::memmove(buf, buf + n, size_t(len - n));
  len -= int32_t(n);
  buf[len] = 0;
  return len;
}

int OrvString::Find(const char* needle, long length, long from) const {
  uint32_t n = OrvTextLength(needle, length);
  if (from < 0) from = 0;
  if (from > len) return -1;
  if (n == 0) return int(from);
  if (int64_t(n) > int64_t(len) - from) return -1;
  const char* p = buf + from;
  const char* last = buf + len - n;
  while (p <= last) {
    p = static_cast<const char*>(std::memchr(p, needle[0], size_t(last - p) + 1));
    if (!p) return -1;
    if (std::memcmp(p, needle, n) == 0) return int(p - buf);
    p++;
  }
  return -1;
}

int OrvString::Findc(char c, long from) const {
  if (from < 0) from = 0;
  if (from >= len) return -1;
  const void* p = std::memchr(buf + from, c, size_t(len - from));
  return p ? int(static_cast<const char*>(p) - buf) : -1;
}

int OrvString::RightFindc(char c, long from) const {
  if (len <= 0) return -1;
  long i = (from < 0 || from >= len) ? len - 1 : from;
  const void* p = memrchr(buf, c, size_t(i) + 1);
  return p ? int(static_cast<const char*>(p) - buf) : -1;
}

int OrvString::ReplaceAll(const char* oldText, long oldLength, const char* newText,
                          long newLength) {
  uint32_t oldN = OrvTextLength(oldText, oldLength);
  uint32_t newN = OrvTextLength(newText, newLength);
  if (oldN == 0 || len < int32_t(oldN)) return 0;
  int first = Find(oldText, oldN, 0);
  if (first < 0) return 0;
  // Built into a fresh string: the replacement may be longer than what it
  // replaces, and either text may point into this one.
  OrvString out;
  out.Reserve(len);
  int replaced = 0;
  long pos = 0;
  long at = first;
  while (at >= 0) {
    out.Append(buf + pos, at - pos);
    out.Append(newN ? newText : "", newN);
    replaced++;
    pos = at + oldN;
    at = Find(oldText, oldN, pos);
  }
  out.Append(buf + pos, len - pos);
  *this = static_cast<OrvString&&>(out);
  return replaced;
}

int OrvString::CapsIsEqual(const char* text, long length) const {
  uint32_t n = OrvTextLength(text, length);
  if (int64_t(n) != len) return 0;
  for (uint32_t i = 0; i < n; i++)
    if (FoldCase(static_cast<unsigned char>(buf[i])) !=
        FoldCase(static_cast<unsigned char>(text[i])))
      return 0;
  return 1;
}

long OrvString::Compare(const char* text, long length) const {
  uint32_t n = OrvTextLength(text, length);
  uint32_t mine = len > 0 ? uint32_t(len) : 0;
  uint32_t common = mine < n ? mine : n;
  int c = common ? std::memcmp(buf, text, common) : 0;
  if (c) return c;
  return mine == n ? 0 : (mine < n ? -1 : 1);
}
