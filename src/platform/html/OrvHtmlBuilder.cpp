#include "platform/html/OrvHtmlBuilder.h"

#include <libxml/HTMLparser.h>
#include <libxml/parserInternals.h>

#include <climits>
#include <cstring>
#include <mutex>

#include "core/OrvOwned.h"
#include "platform/html/OrvPageDecoding.h"
#include "platform/html/OrvQuietParser.h"
#include "platform/html/OrvRawBodies.h"
#include "platform/html/OrvTreeBuilder.h"

namespace {

std::once_flag parserReady;

// Fixes the encoding of the parse: declarations met while parsing change
// nothing, as the decision was made before.
void UseEncoding(htmlParserCtxtPtr ctxt, xmlCharEncoding known, xmlCharEncodingHandlerPtr handler,
                 const char* name) {
  if (handler)
    xmlSwitchToEncoding(ctxt, handler);
  else
    xmlSwitchEncoding(ctxt, known);
  xmlFree(const_cast<xmlChar*>(ctxt->encoding));
  ctxt->encoding = xmlStrdup(reinterpret_cast<const xmlChar*>(name));
  ctxt->options |= HTML_PARSE_IGNORE_ENC;
}

void UseDecided(htmlParserCtxtPtr ctxt, const OrvPageCharset& decided) {
  switch (decided.kind) {
    case OrvPageCharsetKind::kUtf8:
      UseEncoding(ctxt, XML_CHAR_ENCODING_UTF8, nullptr, "UTF-8");
      break;
    case OrvPageCharsetKind::kWindows1252:  // too large to convert beforehand
    case OrvPageCharsetKind::kLatin1:
      UseEncoding(ctxt, XML_CHAR_ENCODING_8859_1, nullptr, "ISO-8859-1");
      break;
    case OrvPageCharsetKind::kUtf16Le:
      UseEncoding(ctxt, XML_CHAR_ENCODING_UTF16LE, nullptr, "UTF-16LE");
      break;
    case OrvPageCharsetKind::kUtf16Be:
      UseEncoding(ctxt, XML_CHAR_ENCODING_UTF16BE, nullptr, "UTF-16BE");
      break;
    case OrvPageCharsetKind::kOther: {
      xmlCharEncodingHandlerPtr handler = xmlFindCharEncodingHandler(decided.label);
      if (handler)
        UseEncoding(ctxt, XML_CHAR_ENCODING_ERROR, handler, decided.label);
      else
        UseEncoding(ctxt, XML_CHAR_ENCODING_8859_1, nullptr, "ISO-8859-1");
      break;
    }
  }
}

constexpr int kLost = -1;

// 0, 1 when the parser could not start, or kLost when a cut body was not met
// where it was cut (the arena then holds a tree to throw away).
[[nodiscard]] int ParsePage(const char* page, size_t size, const OrvPageCharset& decided,
                            bool keepBytes, const char* uncut, OrvRawBodies* bodies,
                            OrvTreeScope scope, OrvDocArena& arena, var_item*& root,
                            const OrvLinkSink* sink) {
  root = nullptr;
  htmlParserCtxtPtr ctxt = htmlCreateMemoryParserCtxt(page, int(size));
  if (!ctxt) return 1;
  OrvTreeBuilder builder(arena, keepBytes, uncut, bodies, scope);
  builder.ctxt = ctxt;
  builder.sink = sink;
  htmlCtxtUseOptions(
      ctxt, HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_NONET);
  ctxt->options |= XML_PARSE_HUGE;
  *ctxt->sax = OrvTreeBuilder::Handler();
  ctxt->userData = &builder;
  // Setting the context's encoding also keeps byte-order marks from being
  // looked for in pages read as bytes.
  UseDecided(ctxt, decided);
  htmlParseDocument(ctxt);
  builder.FlushText();
  builder.HandOver();
  ctxt->userData = ctxt;
  htmlFreeParserCtxt(ctxt);
  if (builder.lost || (bodies && bodies->next != bodies->list.size())) return kLost;
  root = builder.first;
  return 0;
}

// Parses the page with its script and style bodies cut out when mayCut, and
// again whole when a cut body was not met where it was cut.
[[nodiscard]] int ParseCutOrWhole(const char* page, size_t size, const OrvPageCharset& decided,
                                  bool keepBytes, bool mayCut, OrvTreeScope scope,
                                  OrvDocArena& arena, var_item*& root, int& parses,
                                  const OrvLinkSink* sink) {
  OrvRawBodies bodies;
  size_t cutSize = 0;
  OrvOwned<char> cut = mayCut ? OrvCutRawBodies(page, size, bodies, cutSize) : nullptr;
  if (cut) {
    int result =
        ParsePage(cut.get(), cutSize, decided, keepBytes, page, &bodies, scope, arena, root, sink);
    parses++;
    cut.reset();
    if (result != kLost) return result;
    arena.Reset();
    if (sink && sink->restart) sink->restart(sink->user);
  }
  parses++;
  return ParsePage(page, size, decided, keepBytes, nullptr, nullptr, scope, arena, root, sink);
}

}  // namespace

int OrvBuildHtmlTree(const char* text, long length, ORV_CHARSET charset, const char* contentType,
                     OrvDocArena& arena, var_item*& root, bool cutRawBodies, int* parses,
                     OrvTreeScope scope, const OrvLinkSink* sink) {
  root = nullptr;
  int parsed = 0;
  if (!parses) parses = &parsed;
  *parses = 0;
  if (!text) length = 0;
  if (length < 0) length = long(std::strlen(text));
  if (length > long(INT_MAX)) return 1;
  if (length == 0) return 0;
  std::call_once(parserReady, [] { xmlInitParser(); });
  OrvDecodedPage page = OrvDecodePage(text, size_t(length), charset, contentType);
  if (page.size == 0) return 0;
  OrvQuietParser quiet;
  return ParseCutOrWhole(page.text, page.size, page.charset, charset == ORV_CHARSET_BYTES,
                         cutRawBodies && page.plainUtf8, scope, arena, root, *parses, sink);
}
