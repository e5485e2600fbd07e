#include "platform/html/OrvLegacyDecode.h"

#include <errno.h>
#include <iconv.h>

#include <cstdint>
#include <cstring>

#include "core/OrvMemory.h"
#include "core/OrvOwned.h"

namespace {

void PutReplacement(char* out, size_t& o) {
  std::memcpy(out + o, "\xEF\xBF\xBD", 3);
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

// The converter is closed on every way out.
struct Converter {
  iconv_t cd;
  explicit Converter(const char* name) : cd(iconv_open("UTF-8", name)) {}
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  ~Converter() {
    if (cd != iconv_t(-1)) iconv_close(cd);
  }
};

}  // namespace

OrvOwned<char> OrvLegacyToUtf8(const char* converter, const unsigned char* in, size_t n,
                               size_t maxOut, size_t& outLength) {
  outLength = 0;
  Converter conv(converter);
  if (conv.cd == iconv_t(-1)) return nullptr;
  // Every byte gives at most one character of up to three bytes, or one
  // replacement; the rare four-byte character stands for four bytes.
  size_t capacity = 3 * n + 16;
  OrvOwned<char> out = OrvAllocOwned<char>(capacity);
  size_t o = 0;
  auto* from = reinterpret_cast<char*>(const_cast<unsigned char*>(in));
  size_t left = n;
  while (o <= maxOut) {
    char* to = out.get() + o;
    size_t room = capacity - o;
    size_t done = left ? iconv(conv.cd, &from, &left, &to, &room)
                       : iconv(conv.cd, nullptr, nullptr, &to, &room);
    int error = errno;
    o = size_t(to - out.get());
    if (done != size_t(-1)) {
      if (left == 0 && from) {
        from = nullptr;  // once more without input: the shift state is closed
        continue;
      }
      break;
    }
    if (error == E2BIG || capacity - o < 3) {
      capacity = error == E2BIG ? capacity * 2 : capacity + 16;
      out.reset(static_cast<char*>(OrvReallocBytes(out.release(), capacity)));
    } else if (error == EILSEQ) {
      PutReplacement(out.get(), o);
      from++, left--;
    } else {  // a sequence the input ends inside of
      PutReplacement(out.get(), o);
      from = nullptr, left = 0;
    }
  }
  if (o > maxOut) return nullptr;
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
