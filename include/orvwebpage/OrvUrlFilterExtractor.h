#pragma once

#include <cstdint>

#include "orvwebpage/OrvExport.h"
#include "orvwebpage/OrvString.h"
#include "orvwebpage/OrvWebPageUrl.h"

// The four shape keys of a parsed URL, with the entry domain that the host
// level judges against. Levels: 0 host, 1 path, 2 extension, 3 query. Two URLs
// with equal keys at a level have the same shape there. Keys are compared byte
// for byte and never interpreted; link classification splits links level by
// level with them. The search key of OrvWebPageUrlsSearch joins all four of an
// unsorted parse (SearchUrls hands it back).
//
// Usage: construct, SetEntryHost with the entry URL's parsed host, then
// Extract as often as needed. After SetEntryHost the object is only read.
class ORV_API OrvUrlFilterExtractor {
 public:
  using Operation = void (*)(const OrvUrlFilterExtractor& self, OrvString& key,
                             const OrvWebPageUrl& url);

  Operation slots[4];
  OrvString entryDomain;  // entry host without its first label; empty without a dot

  OrvUrlFilterExtractor();

  // Replaces key with the URL's key at that level. A level of 4 or more
  // leaves key as it was.
  void Extract(uint8_t level, OrvString& key, const OrvWebPageUrl& url) const {
    if (level < 4) slots[level](*this, key, url);
  }

  // Keeps the host's tail as the entry domain (www.site.test gives site.test).
  void SetEntryHost(const OrvString& host) { HostTail(entryDomain, host.buf, host.len); }

  // The text behind the first dot: web.site.test gives site.test, h.test:80
  // gives test:80, localhost gives the empty text. No knowledge of top-level
  // domains.
  static void HostTail(OrvString& tail, const char* text, long length);

  // 1 for an ASCII letter, 2 for a digit, 0 for any other first byte, 255 for
  // no text at all.
  static uint16_t FirstCharClass(const char* text, long length);

  // Level 0: `\$` for a URL without a host or whose host holds the entry domain
  // anywhere (byte for byte), `^\$` for another host; without an entry domain,
  // the host's own tail.
  static void ExtractHost(const OrvUrlFilterExtractor& self, OrvString& key,
                          const OrvWebPageUrl& url);
  // Level 1: per directory `/\s` (letter first), `/\d` (digit first) or `/\S`.
  static void ExtractPath(const OrvUrlFilterExtractor& self, OrvString& key,
                          const OrvWebPageUrl& url);
  // Level 2: `/` and the first family pattern that holds the extension
  // case-blind (web pages, images, scripts and styles, audio, video), `/` alone
  // for an unknown extension, `(/\S\E,/\E)` for none.
  static void ExtractExtension(const OrvUrlFilterExtractor& self, OrvString& key,
                               const OrvWebPageUrl& url);
  // Level 3: `?` and the parameter names in array order joined by `;&`, or
  // `^?` without parameters.
  static void ExtractQuery(const OrvUrlFilterExtractor& self, OrvString& key,
                           const OrvWebPageUrl& url);
};
