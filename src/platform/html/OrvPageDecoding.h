#pragma once

#include <cstddef>

#include "core/OrvOwned.h"
#include "orvwebpage/OrvHtml.h"
#include "platform/html/OrvPageCharset.h"

// A page made ready for the parser: tamed (OrvPageTaming.h), its byte-order
// mark skipped, and decoded to UTF-8 wherever the parser's own decoders would
// go wrong. text points into owned when a copy was needed, else into the
// caller's page, which must then outlive this.
struct OrvDecodedPage {
  OrvOwned<char> owned;
  const char* text = nullptr;
  size_t size = 0;
  OrvPageCharset charset;  // what the parser still decodes: kUtf8 once converted
  // Well-formed UTF-8 that the parser reads without a decoder of its own, so
  // script and style bodies may be cut out of it (OrvRawBodies.h).
  bool plainUtf8 = false;
};

// charset ORV_CHARSET_BYTES reads every byte as itself; any other decodes by
// the charset the page declares (contentType may be null).
[[nodiscard]] OrvDecodedPage OrvDecodePage(const char* text, size_t size, ORV_CHARSET charset,
                                           const char* contentType);
