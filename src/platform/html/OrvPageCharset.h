#pragma once

#include <cstddef>

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

// Every byte below 0x80, so the bytes are their own UTF-8.
bool OrvIsAscii(const unsigned char* text, size_t length);
