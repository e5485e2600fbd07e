#pragma once

// A text as a gzip member, as servers send compressed sitemaps.

#include <zlib.h>

#include <string>
#include <string_view>

inline std::string Gzip(std::string_view text, int level = 9) {
  z_stream z{};
  deflateInit2(&z, level, Z_DEFLATED, 16 + MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
  std::string out(deflateBound(&z, uLong(text.size())) + 64, '\0');
  z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  z.avail_in = uInt(text.size());
  z.next_out = reinterpret_cast<Bytef*>(out.data());
  z.avail_out = uInt(out.size());
  deflate(&z, Z_FINISH);
  out.resize(z.total_out);
  deflateEnd(&z);
  return out;
}
