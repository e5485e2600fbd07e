// URL search over 100,000 stored URLs (the real links repeated): one
// SearchUrls, which composes the shape key of every stored URL, and
// ComposeKey alone in ns per URL. AddUrl (our Parse) stands beside uriparser
// parsing the same texts, as a scale for what one pass over a URL costs.
//
// Goal: one search over 100,000 URLs in at most 15 ms.

#include <benchmark/benchmark.h>
#include <uriparser/Uri.h>

#include <fstream>
#include <string>
#include <vector>

#include "orvwebpage/OrvString.h"
#include "orvwebpage/OrvWebPageUrlsSearch.h"
#include "search/OrvUrlSearcher.h"

namespace {

constexpr size_t kStored = 100000;

const std::vector<std::string>& StoredTexts() {
  static const std::vector<std::string> texts = [] {
    std::vector<std::string> base;
    std::ifstream in(std::string(ORV_DATA_DIR) + "/links.txt", std::ios::binary);
    for (std::string line; std::getline(in, line);) base.push_back(line);
    std::vector<std::string> all;
    if (base.empty()) return all;
    all.reserve(kStored);
    for (size_t i = 0; i < kStored; i++) all.push_back(base[i % base.size()]);
    return all;
  }();
  return texts;
}

const OrvString kEntry("https://www.nytimes.com/", -1);

OrvUrlSearcher& FilledSearcher() {
  static OrvUrlSearcher* searcher = [] {
    auto* s = new OrvUrlSearcher;
    s->SetEntryUrl(kEntry);
    for (const auto& text : StoredTexts()) s->AddUrl(OrvString(text.data(), long(text.size())));
    return s;
  }();
  return *searcher;
}

void SetCounters(benchmark::State& state, size_t urlsPerIteration) {
  state.SetItemsProcessed(int64_t(state.iterations() * urlsPerIteration));
  state.counters["ns_per_url"] =
      benchmark::Counter(double(state.iterations() * urlsPerIteration),
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// Examples: a common shape of the data (an article link on the entry site),
// one of an off-site shape, and one that matches nothing.
void BM_SearchUrls(benchmark::State& state) {
  static const char* examples[] = {
      "https://www.nytimes.com/2015/09/01/world/a.html",
      "https://twitter.com/someone",
      "http://example.test/a/b/c.zzz?never=1",
  };
  OrvUrlSearcher& searcher = FilledSearcher();
  OrvString example(examples[state.range(0)], -1);
  OrvString key;
  size_t found = 0;
  for (auto _ : state) {
    searcher.foundUrls.count = 0;  // the found list would otherwise accumulate
    searcher.SearchUrls(example, key);
    found = size_t(searcher.foundUrls.count);
  }
  state.counters["found"] = double(found);
  SetCounters(state, size_t(searcher.GetInCount()));
}
BENCHMARK(BM_SearchUrls)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

void BM_ComposeKey(benchmark::State& state) {
  OrvUrlSearcher& searcher = FilledSearcher();
  OrvString key;
  const int32_t count = searcher.urls.count;
  for (auto _ : state) {
    for (int32_t i = 0; i < count; i++) {
      searcher.ComposeKey(*searcher.urls.items[i], key);
      benchmark::DoNotOptimize(key.len);
    }
  }
  SetCounters(state, size_t(count));
}
BENCHMARK(BM_ComposeKey)->Unit(benchmark::kMillisecond);

void BM_AddUrl(benchmark::State& state) {
  const auto& texts = StoredTexts();
  std::vector<OrvString> urls;
  for (const auto& t : texts) urls.emplace_back(t.data(), long(t.size()));
  OrvWebPageUrlsSearch search;
  for (auto _ : state) {
    search.ClearUrls();
    for (const auto& url : urls) search.AddUrl(url);
  }
  SetCounters(state, urls.size());
}
BENCHMARK(BM_AddUrl)->Unit(benchmark::kMillisecond);

void BM_UriparserParse(benchmark::State& state) {
  const auto& texts = StoredTexts();
  for (auto _ : state) {
    for (const auto& t : texts) {
      UriUriA uri;
      const char* error = nullptr;
      if (uriParseSingleUriExA(&uri, t.data(), t.data() + t.size(), &error) == URI_SUCCESS)
        uriFreeUriMembersA(&uri);
      benchmark::DoNotOptimize(error);
    }
  }
  SetCounters(state, texts.size());
}
BENCHMARK(BM_UriparserParse)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
