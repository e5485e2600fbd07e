#pragma once

#include <cstddef>

// Conversions of a page's bytes to the UTF-8 the parser reads without a
// decoder of its own. Each writes to out, which holds the stated worst case,
// and returns the bytes written.

// Well-formed UTF-8 of text that should have been UTF-8: every ill-formed
// sequence becomes one U+FFFD, as browsers decode it. out holds 3 * length.
size_t OrvRepairUtf8(char* out, const unsigned char* in, size_t length);

// UTF-8 of Latin-1 bytes. out holds 2 * length.
size_t OrvLatin1ToUtf8(char* out, const unsigned char* in, size_t length);

// UTF-8 of windows-1252 bytes; bytes the code page leaves undefined become the
// C1 control of the same number, as browsers decode them. out holds 3 * length.
size_t OrvWindows1252ToUtf8(char* out, const unsigned char* in, size_t length);
