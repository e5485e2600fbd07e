#pragma once

#include <curl/curl.h>

#include "orvwebpage/OrvString.h"

// Resolves many hrefs against one base, which is parsed once.
class OrvUrlResolver {
 public:
  OrvUrlResolver() = default;
  ~OrvUrlResolver();
  OrvUrlResolver(const OrvUrlResolver&) = delete;
  OrvUrlResolver& operator=(const OrvUrlResolver&) = delete;

  // 1 when base is an absolute URL that relative hrefs can resolve against;
  // otherwise only absolute hrefs resolve.
  int SetBase(const char* base, long length);
  int HasBase() const { return parsedBase != nullptr; }
  // See OrvResolveUrl.
  int Resolve(const char* href, long length, OrvString& out) const;

 private:
  int ResolveAgainstBase(OrvString& href, OrvString& out) const;
  int ParseAbsolute(const OrvString& url, CURLU** handle) const;

  CURLU* parsedBase = nullptr;
  OrvString baseScheme;        // lower case
  OrvString baseUnfragmented;  // the base without its fragment
};
