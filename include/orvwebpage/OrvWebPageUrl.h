#pragma once

#include <cstdint>

#include "orvwebpage/OrvExport.h"
#include "orvwebpage/OrvString.h"

// One query parameter: the name percent-decoded (`%` and two hex digits), the value raw.
struct ORV_API OrvUrlParam {
  OrvString name;
  OrvString value;
};

using OrvParamCompare = int32_t (*)(const OrvUrlParam* a, const OrvUrlParam* b);

// A URL split into its parts at single bytes. Any text parses: nothing is
// validated, rejected or reported. There is no notion of ports, user names,
// percent escapes in the path or a base URL, so a relative link gets a host
// too (`x/y.html` has the host `x`), and a port stays in the host.
//
// Usage: store the text in `url`, call Parse, read the fields. To change a
// URL, edit the fields and call Rebuild, which writes `url` anew. A record can
// take a new text and a new Parse at any time; nothing of the former parse
// stays visible. Copies are deep.
class ORV_API OrvWebPageUrl {
 public:
  OrvString url;        // the text; Parse trims it, Rebuild overwrites it
  OrvString scheme;     // 1 to 10 bytes before a colon among the first 11 bytes, as written
  OrvString host;       // behind `//` (or the scheme) up to the next `/`, port and all
  OrvStrArray dirs;     // directory segments in order, never an empty one
  OrvString stem;       // the last path part up to its last dot
  OrvString ext;        // behind that dot, as written; `.htaccess` has only an ext
  OrvUrlParam* params;  // paramCapacity constructed slots, paramCount live
  int32_t paramCount;
  int32_t paramCapacity;

  OrvWebPageUrl();
  OrvWebPageUrl(const OrvWebPageUrl& other);
  OrvWebPageUrl& operator=(const OrvWebPageUrl& other);
  ~OrvWebPageUrl();

  // Trims blanks around `url` (in place) and fills every other field from it.
  // The fragment behind the last `#` is dropped; the query behind the first
  // `?` of the path part becomes params (`&amp;` read as `&`, pairs split at
  // `&`, name and value at `=`; a pair without a name token adds nothing).
  // Non-zero sortParams orders the parameters by name (bytes, a prefix first);
  // the order among equal names is fixed and shows in Rebuild's text.
  void Parse(uint8_t sortParams);
  // Writes `url` from the fields: scheme `:`, `//` host, `/`, each directory
  // and `/`, stem `.` ext, then `?name=value` joined by `&`.
  void Rebuild();

  // Splits the text behind the authority into directories, file stem and
  // extension, and the query parameters (what Parse does after the host).
  static void SplitPath(OrvStrArray& dirs, OrvString& stem, OrvString& ext, OrvUrlParam*& params,
                        int32_t& paramCount, int32_t& paramCapacity, const char* text, long length);
  // Three-way order of two names as unsigned bytes, a prefix before the longer
  // name; values take no part.
  static int32_t CompareParamNames(const OrvUrlParam* a, const OrvUrlParam* b);
  // Quicksort of slots first..last, both included, with the first slot as
  // pivot; its order among equal names is part of the result.
  static void SortParams(OrvUrlParam* params, int first, int last, OrvParamCompare compare);
  // Makes `to` a copy of the first fromCount slots of `from`.
  static void AssignParams(OrvUrlParam*& to, int32_t& toCount, int32_t& toCapacity,
                           const OrvUrlParam* from, int32_t fromCount);
  // The names joined by ",", or "[No Query String]" without parameters.
  static void GetParamNames(OrvString& names, const OrvWebPageUrl& url);
};
