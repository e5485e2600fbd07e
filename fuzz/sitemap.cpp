// Sitemap bodies. Input: the whole input is a fetched body, read as it comes
// and, when it is not gzip already, gzipped and read again. Every location
// handed on must lie inside its reader's bounds.

#include <zlib.h>

#include <cstdint>
#include <string>

#include "FuzzInput.h"
#include "orvwebpage/OrvString.h"
#include "size/OrvSiteScope.h"
#include "size/OrvSitemapParse.h"
#include "size/OrvSitemapSource.h"

namespace {

uint32_t touched = 0;

void Touch(const char* loc, int32_t len, void*) {
  touched += FuzzTouch(loc, len);
  touched += uint32_t(OrvIsOnSite("http://www.site.test/", -1, loc, len));
}

std::string Gzip(const uint8_t* data, size_t size) {
  z_stream z{};
  deflateInit2(&z, 1, Z_DEFLATED, 16 + MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
  std::string out(deflateBound(&z, uLong(size)) + 64, '\0');
  z.next_in = const_cast<Bytef*>(data);
  z.avail_in = uInt(size);
  z.next_out = reinterpret_cast<Bytef*>(out.data());
  z.avail_out = uInt(out.size());
  deflate(&z, Z_FINISH);
  out.resize(z.total_out);
  deflateEnd(&z);
  return out;
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
    std::string packed = Gzip(data, size);
    Parse(packed.data(), long(packed.size()));
  }
  return 0;
}
