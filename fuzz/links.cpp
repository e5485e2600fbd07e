// Link classification. Input: one link a line, "URL" or "URL<TAB>label"; the
// first line is the entry URL and a link as well. Every class and link is
// read back, with reads just out of range on both sides.

#include <cstdint>

#include "FuzzInput.h"
#include "orvwebpage/OrvString.h"
#include "orvwebpage/OrvWebPageUrls.h"

namespace {

OrvString Text(std::string_view s) { return OrvString(s.data(), long(s.size())); }

uint32_t ReadAll(OrvWebPageUrls& urls) {
  uint32_t sum = 0;
  OrvString key, url, label;
  void* userData = nullptr;
  int classes = urls.GetClassCount();
  for (int c = -1; c <= classes; c++) {
    void* handle = urls.FetchClass(c);
    if (urls.GetClassKeyStr(handle, key)) sum += FuzzTouch(key.buf, key.len);
    int count = urls.GetUrlCount(handle);
    for (int i = -1; i <= count; i++) {
      if (urls.FetchUrl(handle, i, url, label, userData))
        sum += FuzzTouch(url.buf, url.len) + FuzzTouch(label.buf, label.len);
    }
  }
  return sum;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<std::string_view> lines = FuzzLines(data, size);
  OrvWebPageUrls urls;
  size_t tab = lines[0].find('\t');
  urls.SetEntryUrl(Text(lines[0].substr(0, tab)));
  for (size_t i = 0; i < lines.size(); i++) {
    std::string_view line = lines[i];
    tab = line.find('\t');
    std::string_view label =
        tab == std::string_view::npos ? std::string_view() : line.substr(tab + 1);
    urls.AddLink(Text(line.substr(0, tab)), Text(label), reinterpret_cast<void*>(i));
  }
  urls.ClassifyUrls();
  volatile uint32_t sink = ReadAll(urls);
  // A copy shares the links; classifying again after a read sees every class.
  OrvWebPageUrls copy(urls);
  copy.ClassifyUrls();
  sink = sink + ReadAll(copy);
  urls.ClearLinks();
  sink = sink + ReadAll(copy);
  return 0;
}
