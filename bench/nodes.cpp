// Pages to trees and trees to visible nodes, over the real pages of the data set.
//
// Open: OrvHtml::Open and Close of every page, beside the parser's own DOM
// parse (htmlReadMemory and xmlFreeDoc) of the same bytes; both as MB/s of
// page bytes. The summary line at the end compares them.

#include <benchmark/benchmark.h>
#include <libxml/HTMLparser.h>
#include <libxml/tree.h>

#include <algorithm>
#include <ctime>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "orvwebpage/OrvHtml.h"
#include "orvwebpage/OrvItem.h"

namespace {

std::vector<std::string>& Pages() {
  static std::vector<std::string> pages = [] {
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(ORV_DATA_DIR "/pages")) {
      if (entry.is_regular_file()) paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    std::vector<std::string> all;
    for (const auto& path : paths) {
      std::ifstream in(path, std::ios::binary);
      std::ostringstream text;
      text << in.rdbuf();
      all.push_back(text.str());
    }
    return all;
  }();
  return pages;
}

double PageBytes() {
  double total = 0;
  for (const auto& page : Pages()) total += double(page.size());
  return total;
}

// MB/s by name, for the summary.
std::map<std::string, double>& Figures() {
  static std::map<std::string, double> figures;
  return figures;
}

// CPU time of this thread: the machine is shared, so wall time would measure
// the neighbours too.
double ThreadSeconds() {
  timespec t;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

template <class Body>
void MeasureMBps(benchmark::State& state, const char* name, Body body) {
  double start = ThreadSeconds();
  for (auto _ : state) body();
  double seconds = ThreadSeconds() - start;
  double bytes = double(state.iterations()) * PageBytes();
  state.SetBytesProcessed(int64_t(bytes));
  Figures()[name] = bytes / seconds / 1e6;
}

void OpenPages(benchmark::State& state, ORV_CHARSET charset, const char* name) {
  std::vector<std::string> pages = Pages();  // Open takes writable text
  OrvHtml doc;
  MeasureMBps(state, name, [&] {
    for (auto& page : pages) {
      int rc = doc.Open(page.data(), long(page.size()), charset);
      benchmark::DoNotOptimize(rc);
      benchmark::DoNotOptimize(doc.root);
      doc.Close();
    }
  });
}

void OrvHtmlOpenBytes(benchmark::State& state) { OpenPages(state, ORV_CHARSET_BYTES, "orv"); }
void OrvHtmlOpenUtf8(benchmark::State& state) { OpenPages(state, ORV_CHARSET_UTF8, "orv-utf8"); }

void LibxmlReadMemory(benchmark::State& state) {
  const int options = HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_NONET;
  MeasureMBps(state, "libxml2", [&] {
    for (const auto& page : Pages()) {
      htmlDocPtr doc = htmlReadMemory(page.data(), int(page.size()), nullptr, nullptr, options);
      benchmark::DoNotOptimize(doc);
      xmlFreeDoc(doc);
    }
  });
}

// ---- Visible-node classification (ClassifyNodes) benchmarks go here. ----

}  // namespace

BENCHMARK(OrvHtmlOpenBytes)->Unit(benchmark::kMillisecond);
BENCHMARK(OrvHtmlOpenUtf8)->Unit(benchmark::kMillisecond);
BENCHMARK(LibxmlReadMemory)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
  xmlInitParser();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  auto& f = Figures();
  if (f.count("orv") && f.count("libxml2")) {
    std::printf("Open over %zu pages (%.1f MB): ours %.1f MB/s (bytes kept), %.1f MB/s (UTF-8); "
                "libxml2 DOM %.1f MB/s; ours/libxml2 %.2f\n",
                Pages().size(), PageBytes() / 1e6, f["orv"], f.count("orv-utf8") ? f["orv-utf8"] : 0.0,
                f["libxml2"], f["orv"] / f["libxml2"]);
  }
  // ---- Summary lines of the classification benchmarks go here. ----
  return 0;
}
