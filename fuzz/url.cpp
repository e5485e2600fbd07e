// The URL record. Input: the first line is the entry URL, the rest (line
// breaks included) is the URL, parsed in both modes, rebuilt and keyed. The
// parse that keeps the order must give the fields of the step-by-step one.

#include <cstdint>
#include <cstdlib>
#include <string>

#include "FuzzInput.h"
#include "orvwebpage/OrvString.h"
#include "orvwebpage/OrvUrlFilterExtractor.h"
#include "orvwebpage/OrvWebPageUrl.h"
#include "orvwebpage/OrvWebPageUrlsSearch.h"
#include "support/UrlReference.h"

namespace {

uint32_t TouchUrl(const OrvWebPageUrl& url) {
  uint32_t sum = FuzzTouch(url.url.buf, url.url.len) + FuzzTouch(url.scheme.buf, url.scheme.len) +
                 FuzzTouch(url.host.buf, url.host.len) + FuzzTouch(url.stem.buf, url.stem.len) +
                 FuzzTouch(url.ext.buf, url.ext.len);
  for (int32_t i = 0; i < url.dirs.count; i++)
    sum += FuzzTouch(url.dirs[i], url.dirs.GetStringLen(i));
  for (int32_t i = 0; i < url.paramCount; i++)
    sum += FuzzTouch(url.params[i].name.buf, url.params[i].name.len) +
           FuzzTouch(url.params[i].value.buf, url.params[i].value.len);
  return sum;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string_view all(reinterpret_cast<const char*>(data), size);
  size_t newline = all.find('\n');
  std::string_view entryText = all.substr(0, newline);
  std::string_view text = newline == std::string_view::npos ? all : all.substr(newline + 1);

  OrvWebPageUrl entry;
  entry.url.CopyBuf(entryText.data(), long(entryText.size()));
  entry.Parse(1);
  OrvUrlFilterExtractor extractor;
  extractor.SetEntryHost(entry.host);

  volatile uint32_t sink = 0;
  OrvString key, names;
  for (uint8_t sort = 0; sort < 2; sort++) {
    OrvWebPageUrl url;
    url.url.CopyBuf(text.data(), long(text.size()));
    url.Parse(sort);
    sink = sink + TouchUrl(url);
    if (sort == 0 && Fields(url) != ReferenceFields(std::string(text))) std::abort();
    OrvWebPageUrl::GetParamNames(names, url);
    sink = sink + FuzzTouch(names.buf, names.len);
    for (uint8_t level = 0; level < 5; level++) {
      extractor.Extract(level, key, url);
      sink = sink + FuzzTouch(key.buf, key.len);
    }
    OrvWebPageUrl copy(url);
    copy.Rebuild();
    sink = sink + FuzzTouch(copy.url.buf, copy.url.len);
    // What Rebuild writes parses again.
    copy.Parse(sort);
    sink = sink + TouchUrl(copy);
  }

  OrvWebPageUrlsSearch search;
  search.SetEntryUrl(OrvString(entryText.data(), long(entryText.size())));
  search.SearchUrls(OrvString(text.data(), long(text.size())), key);
  sink = sink + FuzzTouch(key.buf, key.len);
  return 0;
}
