// Parsing the real links once each, in ns per URL: our Parse(1) plus
// GetParamNames on one reused record, uriparser's parse, and libcurl's URL
// API on one reused handle. The last line gives our time over uriparser's.
//
// Goal: ours at most 0.33 of uriparser's time.

#include <benchmark/benchmark.h>
#include <curl/curl.h>
#include <uriparser/Uri.h>

#include <cstdio>
#include <ctime>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "orvwebpage/OrvWebPageUrl.h"

namespace {

const std::vector<std::string>& Links() {
  static const std::vector<std::string> links = [] {
    std::vector<std::string> all;
    std::ifstream in(ORV_DATA_DIR "/links.txt", std::ios::binary);
    for (std::string line; std::getline(in, line);) all.push_back(line);
    return all;
  }();
  return links;
}

// ns per URL of each benchmark's last (measured) run, for the final line.
std::map<std::string, double>& NsPerUrl() {
  static std::map<std::string, double> figures;
  return figures;
}

// CPU time of this thread: the figures stay comparable on a busy machine.
double ThreadNs() {
  timespec t;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return double(t.tv_sec) * 1e9 + double(t.tv_nsec);
}

template <class ParseAll>
void Measure(benchmark::State& state, const char* name, ParseAll parseAll) {
  const auto& links = Links();
  if (links.empty()) {
    state.SkipWithError("links.txt not found under " ORV_DATA_DIR);
    return;
  }
  double start = ThreadNs();
  for (auto _ : state) parseAll(links);
  double ns = ThreadNs() - start;
  double urls = double(state.iterations()) * double(links.size());
  NsPerUrl()[name] = ns / urls;
  state.SetItemsProcessed(int64_t(urls));
  state.counters["ns_per_url"] = ns / urls;
}

void OrvParse(benchmark::State& state) {
  OrvWebPageUrl record;
  OrvString names;
  Measure(state, "orv", [&](const std::vector<std::string>& links) {
    for (const auto& link : links) {
      record.url.CopyBuf(link.data(), long(link.size()));
      record.Parse(1);
      OrvWebPageUrl::GetParamNames(names, record);
      benchmark::DoNotOptimize(names.buf);
    }
  });
}

void UriParserParse(benchmark::State& state) {
  Measure(state, "uriparser", [](const std::vector<std::string>& links) {
    for (const auto& link : links) {
      UriUriA uri;
      const char* errorPos = nullptr;
      if (uriParseSingleUriA(&uri, link.c_str(), &errorPos) == URI_SUCCESS)
        uriFreeUriMembersA(&uri);
      benchmark::DoNotOptimize(errorPos);
    }
  });
}

void CurlUrlParse(benchmark::State& state) {
  CURLU* handle = curl_url();
  Measure(state, "libcurl", [handle](const std::vector<std::string>& links) {
    for (const auto& link : links) {
      CURLUcode rc = curl_url_set(handle, CURLUPART_URL, link.c_str(), CURLU_NON_SUPPORT_SCHEME);
      benchmark::DoNotOptimize(rc);
    }
  });
  curl_url_cleanup(handle);
}

}  // namespace

BENCHMARK(OrvParse)->Unit(benchmark::kMicrosecond);
BENCHMARK(UriParserParse)->Unit(benchmark::kMicrosecond);
BENCHMARK(CurlUrlParse)->Unit(benchmark::kMicrosecond);

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  auto& f = NsPerUrl();
  if (f.count("orv") && f.count("uriparser") && f.count("libcurl"))
    std::printf(
        "ns per URL over %zu links: ours %.1f, uriparser %.1f, libcurl %.1f; ours/uriparser %.3f\n",
        Links().size(), f["orv"], f["uriparser"], f["libcurl"], f["orv"] / f["uriparser"]);
  return 0;
}
