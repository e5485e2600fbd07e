#pragma once

#include <cstdint>

#include "orvwebpage/OrvString.h"
#include "url/OrvWebPageUrl.h"

// The four shape extractors of a parsed URL, with the entry domain that the
// host level judges against. Levels: 0 host, 1 path, 2 extension, 3 query.
// Each level replaces the key text; two URLs with equal keys at a level have
// the same shape there. Keys are compared byte for byte and never interpreted.
class OrvUrlFilterExtractor {
 public:
  using Operation = void (*)(const OrvUrlFilterExtractor& self, OrvString& key,
                             const OrvWebPageUrl& url);

  Operation slots[4];
  OrvString entryDomain;  // entry host without its first label; empty without a dot

  OrvUrlFilterExtractor();

  // A level of 4 or more leaves key as it was.
  void Extract(uint8_t level, OrvString& key, const OrvWebPageUrl& url) const {
    if (level < 4) slots[level](*this, key, url);
  }

  void SetEntryHost(const OrvString& host) { HostTail(entryDomain, host.buf, host.len); }

  // The text behind the first dot: web.site.test gives site.test, localhost
  // gives the empty text. No knowledge of top-level domains.
  static void HostTail(OrvString& tail, const char* text, long length);

  // 1 for an ASCII letter, 2 for a digit, 0 for any other first byte, 255 for
  // no text at all.
  static uint16_t FirstCharClass(const char* text, long length);

  static void ExtractHost(const OrvUrlFilterExtractor& self, OrvString& key,
                          const OrvWebPageUrl& url);
  static void ExtractPath(const OrvUrlFilterExtractor& self, OrvString& key,
                          const OrvWebPageUrl& url);
  static void ExtractExtension(const OrvUrlFilterExtractor& self, OrvString& key,
                               const OrvWebPageUrl& url);
  static void ExtractQuery(const OrvUrlFilterExtractor& self, OrvString& key,
                           const OrvWebPageUrl& url);
};
