#pragma once

#include <cstddef>

#include "core/OrvOwned.h"

// Decoders of the declared charsets the parser's own would stop in: whatever
// cannot be decoded becomes one U+FFFD and decoding reads on, as browsers do,
// so a stray byte never costs the rest of the page.

// UTF-8 of n bytes in the named converter's encoding; null when the converter
// cannot be opened or the result would exceed maxOut bytes.
[[nodiscard]] OrvOwned<char> OrvLegacyToUtf8(const char* converter, const unsigned char* in,
                                             size_t n, size_t maxOut, size_t& outLength);

// UTF-8 of UTF-16 code units; an unpaired surrogate or an odd last byte
// becomes U+FFFD. out holds 3 * (n / 2) + 3 bytes.
size_t OrvUtf16ToUtf8(char* out, const unsigned char* in, size_t n, bool bigEndian);
