// URL search. Input: lines; the first is the entry URL, the last the example,
// the ones between are the stored URLs. Every found URL is read, and one index
// past the end.

#include <cstdint>

#include "FuzzInput.h"
#include "orvwebpage/OrvString.h"
#include "orvwebpage/OrvWebPageUrlsSearch.h"

namespace {

OrvString Text(std::string_view s) { return OrvString(s.data(), long(s.size())); }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<std::string_view> lines = FuzzLines(data, size);
  OrvWebPageUrlsSearch search;
  search.SetEntryUrl(Text(lines.front()));
  for (size_t i = 1; i + 1 < lines.size(); i++) search.AddUrl(Text(lines[i]));
  volatile uint32_t sink = uint32_t(search.GetInCount());
  OrvString key, url;
  // Twice: the found list accumulates.
  for (int round = 0; round < 2; round++) {
    search.SearchUrls(Text(lines.back()), key);
    sink = sink + FuzzTouch(key.buf, key.len);
    unsigned found = search.GetFoundUrlsCount();
    for (unsigned i = 0; i <= found; i++) {
      search.GetFoundUrl(i, url);
      sink = sink + FuzzTouch(url.buf, url.len);
    }
  }
  search.ClearUrls();
  search.SearchUrls(Text(lines.back()), key);
  sink = sink + search.GetFoundUrlsCount();
  return 0;
}
