#include "platform/html/OrvPageDecoding.h"

#include <climits>
#include <utility>

#include "platform/html/OrvLegacyDecode.h"
#include "platform/html/OrvPageTaming.h"
#include "platform/html/OrvTextConversion.h"

namespace {

using Kind = OrvPageCharsetKind;

void Take(OrvDecodedPage& page, OrvOwned<char> copy, size_t size) {
  page.owned = std::move(copy);
  page.text = page.owned.get();
  page.size = size;
}

const unsigned char* Bytes(const OrvDecodedPage& page) {
  return reinterpret_cast<const unsigned char*>(page.text);
}

// The parser's own decoders stop at the first byte they cannot decode and
// drop the rest of the page; these put U+FFFD there and read on.
bool DecodeLegacyOrWide(OrvDecodedPage& page) {
  Kind kind = page.charset.kind;
  size_t size = 0;
  OrvOwned<char> utf8;
  if (kind == Kind::kOther) {
    utf8 = OrvLegacyToUtf8(page.charset.label, Bytes(page), page.size, size_t(INT_MAX), size);
  } else if (page.size / 2 <= size_t(INT_MAX) / 3 - 1) {
    utf8 = OrvAllocOwned<char>(3 * (page.size / 2) + 3);
    size = OrvUtf16ToUtf8(utf8.get(), Bytes(page), page.size, kind == Kind::kUtf16Be);
  }
  if (!utf8) return false;
  Take(page, std::move(utf8), size);
  page.charset.kind = Kind::kUtf8;
  return true;
}

}  // namespace

OrvDecodedPage OrvDecodePage(const char* text, size_t size, ORV_CHARSET charset,
                             const char* contentType) {
  OrvDecodedPage page;
  bool asBytes = charset == ORV_CHARSET_BYTES;
  if (asBytes)
    page.charset.kind = Kind::kLatin1;
  else
    page.charset = OrvDecidePageCharset(text, size, contentType);
  Kind kind = page.charset.kind;
  bool wide = kind == Kind::kUtf16Le || kind == Kind::kUtf16Be;
  page.owned = OrvTamePage(text, size, wide);
  page.text = page.owned ? page.owned.get() : text;
  page.size = size;
  if (!asBytes && page.size >= page.charset.bomLength) {
    page.text += page.charset.bomLength;
    page.size -= page.charset.bomLength;
  }
  bool windows1252 = kind == Kind::kWindows1252;
  // The parser's own Latin-1 decoder goes a byte at a time; most pages are
  // ASCII, whose bytes are their UTF-8, and the rest is decoded here in runs.
  bool latin1 = kind == Kind::kLatin1;
  if (latin1 && OrvIsAscii(Bytes(page), page.size)) {
    latin1 = false;
    page.charset.kind = Kind::kUtf8;
  }
  bool converted = (kind == Kind::kOther || wide) && DecodeLegacyOrWide(page);
  // The parser meets an ill-formed UTF-8 sequence by reading on as Latin-1
  // from a point that depends on its buffers, so the same page could give
  // different text; browsers put one U+FFFD in its place and read on.
  bool illFormed = !converted && !asBytes && page.charset.kind == Kind::kUtf8 &&
                   !OrvIsValidUtf8(Bytes(page), page.size);
  if ((windows1252 || latin1 || illFormed) && page.size <= size_t(INT_MAX) / 3) {
    OrvOwned<char> utf8 = OrvAllocOwned<char>(3 * page.size);
    size_t written;
    if (windows1252)
      written = OrvWindows1252ToUtf8(utf8.get(), Bytes(page), page.size);
    else if (latin1)
      written = OrvLatin1ToUtf8(utf8.get(), Bytes(page), page.size);
    else
      written = OrvRepairUtf8(utf8.get(), Bytes(page), page.size);
    Take(page, std::move(utf8), written);
    page.charset.kind = Kind::kUtf8;
    converted = true;
  }
  page.plainUtf8 = page.charset.kind == Kind::kUtf8 && !(illFormed && !converted);
  return page;
}
