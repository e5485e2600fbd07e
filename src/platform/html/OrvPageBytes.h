#pragma once

#include <cstddef>
#include <cstring>

#include "platform/html/OrvUtf8Scan.h"

// The parser reads a page as Latin-1 and hands back UTF-8; this undoes that,
// so every byte of the page comes back as itself. Characters above U+00FF
// (only a reference can produce them) keep their UTF-8 bytes. The output is
// never longer than the input, so out may be in.
inline size_t OrvUtf8ToPageBytes(char* out, const unsigned char* in, size_t n) {
  size_t o = 0;
  size_t i = 0;
  while (i < n) {
    if (OrvIsAsciiWord(in + i, n - i)) {
      std::memmove(out + o, in + i, 8);  // out may be in
      o += 8;
      i += 8;
      continue;
    }
    unsigned char c = in[i];
    if (c < 0x80) {
      out[o++] = static_cast<char>(c);
      i++;
    } else if ((c == 0xC2 || c == 0xC3) && i + 1 < n && (in[i + 1] & 0xC0) == 0x80) {
      out[o++] = static_cast<char>(((c & 0x03) << 6) | (in[i + 1] & 0x3F));
      i += 2;
    } else {
      out[o++] = static_cast<char>(c);
      i++;
    }
  }
  return o;
}
