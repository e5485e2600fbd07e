// Sitemap bodies. Input: the whole input is a fetched body, read as it comes
// and, when it is not gzip already, gzipped and read again. Every location
// handed on must lie inside its reader's bounds.

#include <cstdint>
#include <string>

#include "FuzzInput.h"
#include "orvwebpage/OrvString.h"
#include "size/OrvSiteScope.h"
#include "size/OrvSitemapParse.h"
#include "size/OrvSitemapSource.h"
#include "support/Gzip.h"

namespace {

uint32_t touched = 0;

void Touch(const char* loc, int32_t len, void*) {
  touched += FuzzTouch(loc, len);
  touched += uint32_t(OrvIsOnSite("http://www.site.test/", -1, loc, len));
}

void Parse(const char* body, long len) {
  OrvSitemapSource source(body, len, 1 << 20);
  OrvSitemapParseResult result;
  OrvParseSitemap(source, 1000, Touch, nullptr, result);
  if (result.locs > 1000) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const char* body = reinterpret_cast<const char*>(data);
  Parse(body, long(size));
  if (!(size >= 2 && data[0] == 0x1f && data[1] == 0x8b)) {
    std::string packed = Gzip(std::string_view(reinterpret_cast<const char*>(data), size), 1);
    Parse(packed.data(), long(packed.size()));
  }
  return 0;
}
