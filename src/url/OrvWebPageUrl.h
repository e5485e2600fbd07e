#pragma once

#include <cstdint>

#include "orvwebpage/OrvString.h"

// One query parameter: the name as ChangeToChar left it, the value raw.
struct OrvUrlParam {
  OrvString name;
  OrvString value;
};

using OrvParamCompare = int32_t (*)(const OrvUrlParam* a, const OrvUrlParam* b);

// A URL split into its parts at single bytes. Any text parses: nothing is
// validated, rejected or reported, and a relative link gets a host too.
// Usage: store the text in url, call Parse, read the fields; edit fields and
// call Rebuild to write url anew.
class OrvWebPageUrl {
 public:
  OrvString url;
  OrvString scheme;
  OrvString host;
  OrvStrArray dirs;  // directory segments, never an empty one
  OrvString stem;
  OrvString ext;
  OrvUrlParam* params;  // paramCapacity constructed slots, paramCount live
  int32_t paramCount;
  int32_t paramCapacity;

  OrvWebPageUrl();
  OrvWebPageUrl(const OrvWebPageUrl& other);
  OrvWebPageUrl& operator=(const OrvWebPageUrl& other);
  ~OrvWebPageUrl();

  // Trims url and fills every other field from it; non-zero sortParams orders
  // the parameters by name.
  void Parse(uint8_t sortParams);
  void Rebuild();

  // Splits the text behind the authority into directories, file stem and
  // extension, and the query parameters.
  static void SplitPath(OrvStrArray& dirs, OrvString& stem, OrvString& ext, OrvUrlParam*& params,
                        int32_t& paramCount, int32_t& paramCapacity, const char* text, long length);
  static int32_t CompareParamNames(const OrvUrlParam* a, const OrvUrlParam* b);
  // Quicksort of slots first..last, both included, with the first slot as
  // pivot; its order among equal names is part of the result.
  static void SortParams(OrvUrlParam* params, int first, int last, OrvParamCompare compare);
  static void AssignParams(OrvUrlParam*& to, int32_t& toCount, int32_t& toCapacity,
                           const OrvUrlParam* from, int32_t fromCount);
  // The names joined by ",", or "[No Query String]" without parameters.
  static void GetParamNames(OrvString& names, const OrvWebPageUrl& url);
};
