#include "size/OrvSitemapParse.h"

#include <libxml/xmlreader.h>

#include <cstring>

namespace {

// Far above the protocol's 2,048 bytes; a longer location is skipped.
constexpr int32_t kMaxLocBytes = 8192;

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

// Hands loc on trimmed; gives 0 once maxLocs are handed and another comes.
int Hand(const char* loc, int32_t len, int32_t maxLocs, OrvSitemapLocFn onLoc, void* context,
         OrvSitemapParseResult& result) {
  while (len > 0 && IsBlank(*loc)) loc++, len--;
  while (len > 0 && IsBlank(loc[len - 1])) len--;
  if (len == 0) return 1;
  if (result.locs >= maxLocs) {
    result.cut = 1;
    return 0;
  }
  result.locs++;
  onLoc(loc, len, context);
  return 1;
}

int ReadFromSource(void* context, char* buffer, int len) {
  return static_cast<OrvSitemapSource*>(context)->Read(buffer, len);
}

int CloseNothing(void*) { return 0; }

void KeepQuiet(void*, xmlErrorPtr) {}

bool NameIs(const xmlChar* name, const char* want) {
  return name && want && std::strcmp(reinterpret_cast<const char*>(name), want) == 0;
}

void ParseXml(OrvSitemapSource& source, int32_t maxLocs, OrvSitemapLocFn onLoc, void* context,
              OrvSitemapParseResult& result) {
  xmlTextReaderPtr reader = xmlReaderForIO(ReadFromSource, CloseNothing, &source, nullptr, nullptr,
                                           XML_PARSE_NONET | XML_PARSE_RECOVER | XML_PARSE_NOERROR |
                                               XML_PARSE_NOWARNING | XML_PARSE_NOCDATA);
  if (!reader) {
    result.problem = "not XML";
    return;
  }
  xmlTextReaderSetStructuredErrorHandler(reader, KeepQuiet, nullptr);
  const char* entryName = nullptr;
  bool inEntry = false, inLoc = false, locTooLong = false;
  OrvString loc;
  int status;
  while ((status = xmlTextReaderRead(reader)) == 1) {
    int type = xmlTextReaderNodeType(reader);
    int depth = xmlTextReaderDepth(reader);
    if (type == XML_READER_TYPE_ELEMENT) {
      const xmlChar* name = xmlTextReaderConstLocalName(reader);
      if (depth == 0) {
        if (NameIs(name, "urlset")) {
          result.kind = ORV_SITEMAP_URLSET;
          entryName = "url";
        } else if (NameIs(name, "sitemapindex")) {
          result.kind = ORV_SITEMAP_INDEX;
          entryName = "sitemap";
        } else {
          result.problem.Format("not a sitemap (<%.40s>)", name ? (const char*)name : "");
          break;
        }
      } else if (depth == 1) {
        inEntry = NameIs(name, entryName) && !xmlTextReaderIsEmptyElement(reader);
      } else if (depth == 2 && inEntry && NameIs(name, "loc")) {
        inLoc = !xmlTextReaderIsEmptyElement(reader);
        locTooLong = false;
        loc.Clear();
      }
    } else if (inLoc && depth == 3 &&
               (type == XML_READER_TYPE_TEXT || type == XML_READER_TYPE_CDATA ||
                type == XML_READER_TYPE_SIGNIFICANT_WHITESPACE)) {
      const xmlChar* value = xmlTextReaderConstValue(reader);
      long n = value ? long(std::strlen(reinterpret_cast<const char*>(value))) : 0;
      if (loc.len + n > kMaxLocBytes)
        locTooLong = true;
      else
        loc.Append(reinterpret_cast<const char*>(value), n);
    } else if (type == XML_READER_TYPE_END_ELEMENT) {
      if (depth == 2 && inLoc) {
        inLoc = false;
        if (locTooLong)
          result.tooLong++;
        else if (!Hand(loc.buf, loc.len, maxLocs, onLoc, context, result))
          break;
      } else if (depth == 1) {
        inEntry = false;
      }
    }
  }
  if (status == -1 && result.problem.len == 0) {
    if (result.kind == ORV_SITEMAP_NONE) {
      result.problem = "not XML";
    } else {
      result.broken = 1;
      result.problem.Format("XML broken off after %d locations", result.locs);
    }
  }
  xmlFreeTextReader(reader);
}

bool StartsWithHttp(const char* line, int32_t len) {
  auto prefix = [&](const char* want, int32_t n) {
    if (len < n) return false;
    for (int32_t i = 0; i < n; i++)
      if ((line[i] | 0x20) != want[i] && line[i] != want[i]) return false;
    return true;
  };
  return prefix("http://", 7) || prefix("https://", 8);
}

void ParseText(OrvSitemapSource& source, int32_t maxLocs, OrvSitemapLocFn onLoc, void* context,
               OrvSitemapParseResult& result) {
  OrvString line;
  bool lineTooLong = false;
  int32_t others = 0;
  char chunk[16384];
  bool going = true;
  auto finishLine = [&]() {
    const char* text = line.buf;
    int32_t len = line.len;
    while (len > 0 && IsBlank(*text)) text++, len--;
    if (lineTooLong) {
      result.tooLong++;
    } else if (StartsWithHttp(text, len)) {
      going = Hand(text, len, maxLocs, onLoc, context, result);
    } else if (len > 0) {
      others++;
    }
    line.Clear();
    lineTooLong = false;
  };
  for (int32_t got; going && (got = source.Read(chunk, sizeof chunk)) > 0;) {
    for (int32_t start = 0; going && start < got;) {
      const char* end =
          static_cast<const char*>(std::memchr(chunk + start, '\n', size_t(got - start)));
      int32_t stop = end ? int32_t(end - chunk) : got;
      if (!lineTooLong && line.len + (stop - start) <= kMaxLocBytes)
        line.Append(chunk + start, stop - start);
      else
        lineTooLong = true;
      start = stop + (end ? 1 : 0);
      if (end) finishLine();
    }
    // Text with no URL in its first lines is no text sitemap: stop reading it.
    if (result.locs == 0 && others >= 8) going = false;
  }
  if (going && (line.len > 0 || lineTooLong)) finishLine();
  if (result.locs == 0 && (others > 0 || result.tooLong > 0)) {
    result.kind = ORV_SITEMAP_NONE;
    result.problem = "not a sitemap (no URL lines)";
  } else if (result.locs == 0) {
    result.kind = ORV_SITEMAP_NONE;
    result.problem = "empty";
  }
}

}  // namespace

void OrvParseSitemap(OrvSitemapSource& source, int32_t maxLocs, OrvSitemapLocFn onLoc,
                     void* context, OrvSitemapParseResult& result) {
  result = OrvSitemapParseResult();
  if (maxLocs < 0) maxLocs = 0;
  const char* head;
  int32_t n = source.Peek(head);
  int32_t i = 0;
  if (n >= 3 && std::memcmp(head, "\xEF\xBB\xBF", 3) == 0) i = 3;
  while (i < n && IsBlank(head[i])) i++;
  if (i < n && head[i] == '<') {
    ParseXml(source, maxLocs, onLoc, context, result);
  } else {
    result.kind = ORV_SITEMAP_TEXT;
    ParseText(source, maxLocs, onLoc, context, result);
  }
}
