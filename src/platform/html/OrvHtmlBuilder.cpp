#include "platform/html/OrvHtmlBuilder.h"

#include <libxml/HTMLparser.h>
#include <libxml/parserInternals.h>
#include <libxml/xmlerror.h>

#include <climits>
#include <cstring>
#include <mutex>

#include "core/OrvMemory.h"
#include "platform/html/OrvHtmlNames.h"
#include "platform/html/OrvLegacyDecode.h"
#include "platform/html/OrvNameCache.h"
#include "platform/html/OrvPageBytes.h"
#include "platform/html/OrvPageCharset.h"
#include "platform/html/OrvPageTaming.h"
#include "platform/html/OrvQuietParser.h"
#include "platform/html/OrvRawBodies.h"

namespace {

char kTextName[] = "$text";
char kEmptyValue[] = "";

// An end tag that matches no open element makes the parser scan its whole
// stack of open elements, so a deep page followed by many stray end tags
// costs depth times tags. Past this many scanned entries the rest of the page
// is dropped instead of letting the parse run for hours.
constexpr uint64_t kStrayEndTagBudget = uint64_t(1) << 28;

class TreeBuilder {
 public:
  TreeBuilder(OrvDocArena& arena, bool keepBytes, const char* uncut, OrvRawBodies* bodies)
      : arena(arena),
        keepBytes(keepBytes),
        tags(OrvHtmlTagNumber),
        attrs(OrvHtmlAttrNumber),
        uncut(uncut),
        bodies(bodies) {}
  TreeBuilder(const TreeBuilder&) = delete;
  TreeBuilder& operator=(const TreeBuilder&) = delete;
  ~TreeBuilder() { OrvFreeBytes(lastChild); }

  htmlParserCtxtPtr ctxt = nullptr;
  var_item* first = nullptr;
  bool lost = false;  // a cut body was not met where it was cut: parse again

  void StartElement(const char* name, const char** atts) {
    FlushText();
    var_item* item = NewItem();
    const OrvCachedName& cached = tags.Get(name, arena);
    item->tag_id = cached.number;
    item->name = cached.copy;
    item->name_len = cached.length;
    var_attr** tail = &item->attr_list;
    for (size_t i = 0; atts && atts[i]; i += 2) {
      var_attr* attr = NewAttr(atts[i], atts[i + 1]);
      *tail = attr;
      tail = &attr->next;
    }
    Append(item);
    PushLevel(item);
    if (bodies && (cached.number == kScript || cached.number == kStyle))
      TakeRawBody(cached.number == kStyle);
  }

  // The parser has just read a script or style start tag up to its '>'.
  void TakeRawBody(bool style) {
    if (lost || bodies->next == bodies->list.size()) return;
    const xmlParserInput* in = ctxt->input;
    size_t at = size_t(in->consumed) + size_t(in->cur - in->base);
    const OrvRawBody& body = bodies->list[bodies->next];
    if (at < body.tagEnd) return;  // not cut: the parser reads it
    if (at > body.tagEnd || *in->cur != '>' || body.style != style) return Lose();
    bodies->next++;
    uint64_t strayEndTags = 0;
    bool read = OrvReadRawBody(
        uncut + body.from, body.to - body.from,
        [](const char* run, size_t length, void* user) {
          static_cast<TreeBuilder*>(user)->Characters(run, static_cast<int>(length));
        },
        this, strayEndTags);
    // Each end tag inside that does not close the element is a mismatch the
    // parser would have reported; the budget must count them alike.
    strayEndTagCost += strayEndTags * (uint64_t(ctxt->nameNr > 0 ? ctxt->nameNr : 0) + 1);
    if (!read || strayEndTagCost > kStrayEndTagBudget) Lose();
  }

  void EndElement() {
    FlushText();
    if (depth == 0) return;
    depth--;
    current = current->parent;
  }

  // The run is written where its item's text will lie: at the arena's
  // cursor, which nothing else moves until FlushText.
  void Characters(const char* chars, int count) {
    if (count <= 0) return;
    char* run = arena.TextRoom(runLength, size_t(count));
    if (keepBytes) {
      runLength += OrvUtf8ToPageBytes(run + runLength,
                                      reinterpret_cast<const unsigned char*>(chars), size_t(count));
    } else {
      std::memcpy(run + runLength, chars, size_t(count));
      runLength += size_t(count);
    }
  }

  void OnError(const xmlError* error) {
    if (error->code != XML_ERR_TAG_NAME_MISMATCH || !ctxt) return;
    strayEndTagCost += uint64_t(ctxt->nameNr > 0 ? ctxt->nameNr : 0) + 1;
    if (strayEndTagCost > kStrayEndTagBudget) xmlStopParser(ctxt);
  }

  // Makes the text run so far an item, unless it is only ASCII whitespace.
  void FlushText() {
    if (runLength == 0) return;
    size_t length = runLength;
    runLength = 0;
    if (length > size_t(INT32_MAX)) return;
    char* text = arena.TextRoom(length, 0);
    size_t i = 0;
    while (i < length && IsAsciiSpace(text[i])) i++;
    if (i == length) return;
    text[length] = '\0';
    arena.Alloc(length + 1);
    var_item* item = NewItem();
    item->name = kTextName;
    item->name_len = 5;
    item->text = text;
    item->text_len = static_cast<int32_t>(length);
    Append(item);
  }

 private:
  void Lose() {
    lost = true;
    xmlStopParser(ctxt);
  }

  static bool IsAsciiSpace(char c) {
    return c == ' ' || c == '\n' || c == '\t' || c == '\r' || c == '\f';
  }

  var_item* NewItem() {
    var_item* item = static_cast<var_item*>(arena.Alloc(sizeof(var_item)));
    *item = var_item{};
    return item;
  }

  var_attr* NewAttr(const char* name, const char* value) {
    var_attr* attr = static_cast<var_attr*>(arena.Alloc(sizeof(var_attr)));
    *attr = var_attr{};
    const OrvCachedName& cached = attrs.Get(name, arena);
    attr->attr_id = cached.number;
    attr->name = cached.copy;
    attr->name_len = cached.length;
    size_t length = value ? std::strlen(value) : 0;
    if (length == 0 || length > size_t(INT32_MAX)) {
      attr->value = kEmptyValue;
      return attr;
    }
    char* copy = static_cast<char*>(arena.Alloc(length + 1));
    if (keepBytes) {
      length = OrvUtf8ToPageBytes(copy, reinterpret_cast<const unsigned char*>(value), length);
    } else {
      std::memcpy(copy, value, length);
    }
    copy[length] = '\0';
    attr->value = copy;
    attr->value_len = static_cast<int32_t>(length);
    return attr;
  }

  // Links item as the last child of the open element, or at the top level.
  void Append(var_item* item) {
    item->parent = current;
    var_item*& last = depth ? lastChild[depth - 1] : lastTop;
    if (last) {
      last->next = item;
    } else if (current) {
      current->child = item;
    } else {
      first = item;
    }
    last = item;
  }

  void PushLevel(var_item* item) {
    if (depth == lastChildCapacity) {
      size_t grown = lastChildCapacity ? lastChildCapacity * 2 : 256;
      lastChild = static_cast<var_item**>(OrvReallocBytes(lastChild, grown * sizeof(var_item*)));
      lastChildCapacity = grown;
    }
    lastChild[depth++] = nullptr;
    current = item;
  }

  OrvDocArena& arena;
  bool keepBytes;
  OrvNameCache tags;
  OrvNameCache attrs;
  var_item* current = nullptr;  // the open element; null at the top level
  var_item* lastTop = nullptr;
  var_item** lastChild = nullptr;  // last child of each open element, outermost first
  size_t depth = 0;
  size_t lastChildCapacity = 0;
  size_t runLength = 0;  // bytes of the text run gathered at the arena's cursor
  uint64_t strayEndTagCost = 0;
  const char* uncut;     // the page the cut bodies lie in
  OrvRawBodies* bodies;  // null when nothing was cut
  const uint16_t kScript = OrvHtmlTagNumber("script");
  const uint16_t kStyle = OrvHtmlTagNumber("style");
};

TreeBuilder* Of(void* user) { return static_cast<TreeBuilder*>(user); }

void OnStartElement(void* user, const xmlChar* name, const xmlChar** atts) {
  Of(user)->StartElement(reinterpret_cast<const char*>(name), reinterpret_cast<const char**>(atts));
}

void OnEndElement(void* user, const xmlChar*) { Of(user)->EndElement(); }

void OnCharacters(void* user, const xmlChar* chars, int count) {
  Of(user)->Characters(reinterpret_cast<const char*>(chars), count);
}

void OnStructuredError(void* user, xmlErrorPtr error) { Of(user)->OnError(error); }

htmlSAXHandler MakeHandler() {
  htmlSAXHandler sax;
  std::memset(&sax, 0, sizeof(sax));
  sax.startElement = OnStartElement;
  sax.endElement = OnEndElement;
  // Script and style bodies arrive as CDATA, whitespace the parser thinks
  // ignorable as such: all of it is text of the run.
  sax.characters = OnCharacters;
  sax.cdataBlock = OnCharacters;
  sax.ignorableWhitespace = OnCharacters;
  sax.initialized = XML_SAX2_MAGIC;  // so the structured error hook is used
  sax.serror = OnStructuredError;
  return sax;
}

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
int ParsePage(const char* page, size_t size, const OrvPageCharset& decided, bool keepBytes,
              const char* uncut, OrvRawBodies* bodies, OrvDocArena& arena, var_item*& root) {
  root = nullptr;
  htmlParserCtxtPtr ctxt = htmlCreateMemoryParserCtxt(page, int(size));
  if (!ctxt) return 1;
  TreeBuilder builder(arena, keepBytes, uncut, bodies);
  builder.ctxt = ctxt;
  htmlCtxtUseOptions(
      ctxt, HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_NONET);
  ctxt->options |= XML_PARSE_HUGE;
  *ctxt->sax = MakeHandler();
  ctxt->userData = &builder;
  // Setting the context's encoding also keeps byte-order marks from being
  // looked for in pages read as bytes.
  UseDecided(ctxt, decided);
  htmlParseDocument(ctxt);
  builder.FlushText();
  ctxt->userData = ctxt;
  htmlFreeParserCtxt(ctxt);
  if (builder.lost || (bodies && bodies->next != bodies->list.size())) return kLost;
  root = builder.first;
  return 0;
}

// Parses the page with its script and style bodies cut out when mayCut, and
// again whole when a cut body was not met where it was cut.
int ParseCutOrWhole(const char* page, size_t size, const OrvPageCharset& decided, bool keepBytes,
                    bool mayCut, OrvDocArena& arena, var_item*& root, int& parses) {
  OrvRawBodies bodies;
  size_t cutSize = 0;
  char* cut = mayCut ? OrvCutRawBodies(page, size, bodies, cutSize) : nullptr;
  if (cut) {
    int result = ParsePage(cut, cutSize, decided, keepBytes, page, &bodies, arena, root);
    parses++;
    OrvFreeBytes(cut);
    if (result != kLost) return result;
    arena.Reset();
  }
  parses++;
  return ParsePage(page, size, decided, keepBytes, nullptr, nullptr, arena, root);
}

}  // namespace

int OrvBuildHtmlTree(const char* text, long length, ORV_CHARSET charset, const char* contentType,
                     OrvDocArena& arena, var_item*& root, bool cutRawBodies, int* parses) {
  root = nullptr;
  int parsed = 0;
  if (!parses) parses = &parsed;
  *parses = 0;
  if (!text) length = 0;
  if (length < 0) length = long(std::strlen(text));
  if (length > long(INT_MAX)) return 1;
  if (length == 0) return 0;
  std::call_once(parserReady, [] { xmlInitParser(); });

  size_t size = size_t(length);
  OrvPageCharset decided;
  if (charset == ORV_CHARSET_BYTES)
    decided.kind = OrvPageCharsetKind::kLatin1;
  else
    decided = OrvDecidePageCharset(text, size, contentType);
  bool wide =
      decided.kind == OrvPageCharsetKind::kUtf16Le || decided.kind == OrvPageCharsetKind::kUtf16Be;
  char* cleaned = OrvTamePage(text, size, wide);
  const char* page = cleaned ? cleaned : text;
  if (charset != ORV_CHARSET_BYTES && size >= decided.bomLength) {
    page += decided.bomLength;
    size -= decided.bomLength;
  }
  const auto* bytes = reinterpret_cast<const unsigned char*>(page);
  bool windows1252 = decided.kind == OrvPageCharsetKind::kWindows1252;
  // The parser's own Latin-1 decoder goes a byte at a time; most pages are
  // ASCII, whose bytes are their UTF-8, and the rest is decoded here in runs.
  bool latin1 = decided.kind == OrvPageCharsetKind::kLatin1;
  if (latin1 && OrvIsAscii(bytes, size)) {
    latin1 = false;
    decided.kind = OrvPageCharsetKind::kUtf8;
  }
  // The parser's own decoders stop at the first byte they cannot decode and
  // drop the rest of the page; these put U+FFFD there and read on.
  bool converted = false;
  if (decided.kind == OrvPageCharsetKind::kOther || wide) {
    size_t decodedSize = 0;
    char* utf8 = nullptr;
    if (!wide) {
      utf8 = OrvLegacyToUtf8(decided.label, bytes, size, size_t(INT_MAX), decodedSize);
    } else if (size / 2 <= size_t(INT_MAX) / 3 - 1) {
      utf8 = static_cast<char*>(OrvAllocBytes(3 * (size / 2) + 3));
      decodedSize = OrvUtf16ToUtf8(utf8, bytes, size, decided.kind == OrvPageCharsetKind::kUtf16Be);
    }
    if (utf8) {
      OrvFreeBytes(cleaned);
      page = cleaned = utf8;
      size = decodedSize;
      bytes = reinterpret_cast<const unsigned char*>(page);
      decided.kind = OrvPageCharsetKind::kUtf8;
      converted = true;
    }
  }
  // The parser meets an ill-formed UTF-8 sequence by reading on as Latin-1
  // from a point that depends on its buffers, so the same page could give
  // different text; browsers put one U+FFFD in its place and read on.
  bool illFormed = !converted && charset != ORV_CHARSET_BYTES &&
                   decided.kind == OrvPageCharsetKind::kUtf8 && !OrvIsValidUtf8(bytes, size);
  if ((windows1252 || latin1 || illFormed) && size <= size_t(INT_MAX) / 3) {
    char* utf8 = static_cast<char*>(OrvAllocBytes(3 * size));
    if (windows1252)
      size = OrvWindows1252ToUtf8(utf8, bytes, size);
    else if (latin1)
      size = OrvLatin1ToUtf8(utf8, bytes, size);
    else
      size = OrvRepairUtf8(utf8, bytes, size);
    OrvFreeBytes(cleaned);
    page = cleaned = utf8;
    decided.kind = OrvPageCharsetKind::kUtf8;
    converted = true;
  }
  if (size == 0) {
    OrvFreeBytes(cleaned);
    return 0;
  }
  OrvQuietParser quiet;
  // Bodies can be read here only where the parser has no decoder of its own
  // and the page is well-formed UTF-8.
  bool mayCut =
      cutRawBodies && decided.kind == OrvPageCharsetKind::kUtf8 && !(illFormed && !converted);
  int result = ParseCutOrWhole(page, size, decided, charset == ORV_CHARSET_BYTES, mayCut, arena,
                               root, *parses);
  OrvFreeBytes(cleaned);
  return result;
}