#include "platform/html/OrvLegacyDecode.h"

#include <errno.h>
#include <iconv.h>

#include <cstdint>
#include <cstring>

#include "core/OrvMemory.h"

namespace {

constexpr char kReplacement[3] = {'\xEF', '\xBF', '\xBD'};  // U+FFFD

void PutReplacement(char* out, size_t& o) {
  std::memcpy(out + o, kReplacement, sizeof kReplacement);
  o += 3;
}

void PutCodePoint(char* out, size_t& o, uint32_t c) {
  if (c < 0x80) {
    out[o++] = char(c);
  } else if (c < 0x800) {
    out[o++] = char(0xC0 | (c >> 6));
    out[o++] = char(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    out[o++] = char(0xE0 | (c >> 12));
    out[o++] = char(0x80 | ((c >> 6) & 0x3F));
    out[o++] = char(0x80 | (c & 0x3F));
  } else {
    out[o++] = char(0xF0 | (c >> 18));
    out[o++] = char(0x80 | ((c >> 12) & 0x3F));
    out[o++] = char(0x80 | ((c >> 6) & 0x3F));
    out[o++] = char(0x80 | (c & 0x3F));
  }
}

}  // namespace

char* OrvLegacyToUtf8(const char* converter, const unsigned char* in, size_t n, size_t maxOut,
                      size_t& outLength) {
  outLength = 0;
  iconv_t cd = iconv_open("UTF-8", converter);
  // NOLINTNEXTLINE(performance-no-int-to-ptr): iconv_open's failure value
  if (cd == iconv_t(-1)) return nullptr;
  // Every byte gives at most one character of up to three bytes, or one
  // replacement; the rare four-byte character stands for four bytes.
  size_t capacity = 3 * n + 16;
  char* out = static_cast<char*>(OrvAllocBytes(capacity));
  size_t o = 0;
  auto* from = reinterpret_cast<char*>(const_cast<unsigned char*>(in));
  size_t left = n;
  bool fits = true;
  while (fits) {
    char* to = out + o;
    size_t room = capacity - o;
    size_t done =
        left ? iconv(cd, &from, &left, &to, &room) : iconv(cd, nullptr, nullptr, &to, &room);
    int error = errno;
    o = size_t(to - out);
    if (done != size_t(-1)) {
      if (left == 0 && from) {
        from = nullptr;  // once more without input: the shift state is closed
        continue;
      }
      break;
    }
    if (error == E2BIG) {
      capacity = capacity * 2;
      out = static_cast<char*>(OrvReallocBytes(out, capacity));
    } else if (capacity - o < 3) {
      capacity += 16;
      out = static_cast<char*>(OrvReallocBytes(out, capacity));
    } else if (error == EILSEQ) {
      PutReplacement(out, o);
      from++, left--;
    } else {  // a sequence the input ends inside of
      PutReplacement(out, o);
      from = nullptr, left = 0;
    }
    fits = o <= maxOut;
  }
  iconv_close(cd);
  if (!fits || o > maxOut) {
    OrvFreeBytes(out);
    return nullptr;
  }
  outLength = o;
  return out;
}

size_t OrvUtf16ToUtf8(char* out, const unsigned char* in, size_t n, bool bigEndian) {
  auto unit = [in, bigEndian](size_t i) -> uint32_t {
    return bigEndian ? uint32_t(in[i]) << 8 | in[i + 1] : uint32_t(in[i + 1]) << 8 | in[i];
  };
  size_t o = 0, i = 0;
  for (; i + 1 < n; i += 2) {
    uint32_t c = unit(i);
    if (c >= 0xD800 && c <= 0xDBFF && i + 3 < n) {
      uint32_t low = unit(i + 2);
      if (low >= 0xDC00 && low <= 0xDFFF) {
        PutCodePoint(out, o, 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00));
        i += 2;
        continue;
      }
    }
    if (c >= 0xD800 && c <= 0xDFFF)
      PutReplacement(out, o);
    else
      PutCodePoint(out, o, c);
  }
  if (i < n) PutReplacement(out, o);
  return o;
}
