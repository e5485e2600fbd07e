#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

// How a page's bytes are to be decoded, decided the way browsers decide it:
// a byte-order mark, else the charset of the HTTP Content-Type, else a meta
// declaration near the top of the page, else UTF-8 when every byte sequence is
// valid UTF-8, else windows-1252. A declared label that names no encoding the
// parser knows is passed over as if absent.
enum class OrvPageCharsetKind {
  kUtf8,
  kWindows1252,  // also every Latin-1 and ASCII label, as browsers read them
  kUtf16Le,
  kUtf16Be,
  kOther,   // label holds the name of a legacy converter (OrvLegacyDecode.h)
  kLatin1,  // every byte a character of its own: pages read as bytes
};

struct OrvPageCharset {
  OrvPageCharsetKind kind = OrvPageCharsetKind::kUtf8;
  size_t bomLength = 0;  // bytes of the page to skip before decoding
  char label[64] = {0};
};

// contentType may be null: the value of a Content-Type header, whose charset
// parameter counts.
OrvPageCharset OrvDecidePageCharset(const char* text, size_t length, const char* contentType);

// Strict UTF-8: no overlong forms, surrogates or code points past U+10FFFF.
bool OrvIsValidUtf8(const unsigned char* text, size_t length);

// Well-formed UTF-8 of text that should have been UTF-8: every ill-formed
// sequence becomes one U+FFFD, as browsers decode it. out holds 3 * length.
size_t OrvRepairUtf8(char* out, const unsigned char* in, size_t length);

// Pages are mostly ASCII, so they are read eight bytes at a time while no
// byte has its high bit set: true when the next eight (of left) are such.
inline bool OrvIsAsciiWord(const unsigned char* p, size_t left) {
  uint64_t word;
  return left >= 8 && (std::memcpy(&word, p, 8), (word & 0x8080808080808080ull) == 0);
}

bool OrvIsAscii(const unsigned char* text, size_t length);

// UTF-8 of Latin-1 bytes. out holds 2 * length.
size_t OrvLatin1ToUtf8(char* out, const unsigned char* in, size_t length);

// UTF-8 of windows-1252 bytes; bytes the code page leaves undefined become the
// C1 control of the same number, as browsers decode them. out holds 3 * length.
size_t OrvWindows1252ToUtf8(char* out, const unsigned char* in, size_t length);
