#include "platform/html/OrvTextConversion.h"

#include <cstdint>
#include <cstring>

#include "platform/html/OrvUtf8Scan.h"

namespace {

// windows-1252 at 0x80..0x9F; the holes keep their own number.
const uint16_t kHighControls[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

}  // namespace

size_t OrvRepairUtf8(char* out, const unsigned char* in, size_t n) {
  size_t o = 0;
  size_t i = 0;
  while (i < n) {
    size_t bad;
    size_t length = OrvUtf8Sequence(in + i, n - i, bad);
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
