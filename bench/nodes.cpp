// Pages to trees and trees to visible nodes, over the real pages of the data set.
//
// Open: OrvHtml::Open and Close of every page (bytes kept, and decoded to
// UTF-8), beside the parser's own DOM parse (htmlReadMemory and xmlFreeDoc)
// and its SAX parse with empty callbacks of the same bytes, interleaved page by
// page; all as MB/s of page bytes. The summary lines at the end compare them.
//
// Classify: ClassifyNodes and ClearNodes over the same pages, opened before
// the clock starts, as a share of the time Open takes for them. Blocks:
// generated pages of 1,000 to 100,000 repeated blocks, each block a class of
// its own, as time per block; the summary compares 100,000 blocks with 1,000.

#include <benchmark/benchmark.h>
#include <libxml/HTMLparser.h>
#include <libxml/tree.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "orvwebpage/OrvHtml.h"
#include "orvwebpage/OrvItem.h"
#include "orvwebpage/OrvWebPageVisibleNodes.h"

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

const int kParseOptions =
    HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_NONET;

// The parser's own DOM parse, and its SAX events with callbacks that do
// nothing: the floor under any tree built on it.
void ParseToDom(const std::string& page) {
  htmlDocPtr doc = htmlReadMemory(page.data(), int(page.size()), nullptr, nullptr, kParseOptions);
  benchmark::DoNotOptimize(doc);
  xmlFreeDoc(doc);
}

void ParseToNothing(const std::string& page) {
  htmlSAXHandler empty;
  std::memset(&empty, 0, sizeof(empty));
  htmlParserCtxtPtr ctxt = htmlCreateMemoryParserCtxt(page.data(), int(page.size()));
  htmlCtxtUseOptions(ctxt, kParseOptions);
  *ctxt->sax = empty;
  htmlParseDocument(ctxt);
  htmlFreeParserCtxt(ctxt);
}

// Every page goes through all four in turn, each timed on its own, so that a
// neighbour's load falls on all of them alike and the ratios of one run hold.
void OpenPages(benchmark::State& state) {
  std::vector<std::string> pages = Pages();  // Open takes writable text
  OrvHtml bytesDoc;
  OrvHtml utf8Doc;
  double seconds[4] = {0, 0, 0, 0};
  auto timed = [&seconds](int k, auto&& body) {
    double start = ThreadSeconds();
    body();
    seconds[k] += ThreadSeconds() - start;
  };
  for (auto _ : state) {
    for (auto& page : pages) {
      timed(0, [&] {
        bytesDoc.Open(page.data(), long(page.size()), ORV_CHARSET_BYTES);
        benchmark::DoNotOptimize(bytesDoc.root);
        bytesDoc.Close();
      });
      timed(1, [&] {
        utf8Doc.Open(page.data(), long(page.size()), ORV_CHARSET_UTF8);
        benchmark::DoNotOptimize(utf8Doc.root);
        utf8Doc.Close();
      });
      timed(2, [&] { ParseToDom(page); });
      timed(3, [&] { ParseToNothing(page); });
    }
  }
  const char* names[4] = {"orv", "orv-utf8", "libxml2", "libxml2-sax"};
  double bytes = double(state.iterations()) * PageBytes();
  for (int k = 0; k < 4; k++) {
    Figures()[names[k]] = bytes / seconds[k] / 1e6;
    state.counters[std::string(names[k]) + " MB/s"] = Figures()[names[k]];
  }
}

std::map<std::string, double>& Seconds() {
  static std::map<std::string, double> seconds;
  return seconds;
}

void ClassifyPages(benchmark::State& state) {
  std::vector<std::string> pages = Pages();
  std::vector<OrvHtml> docs(pages.size());
  for (size_t i = 0; i < pages.size(); i++)
    docs[i].Open(pages[i].data(), long(pages[i].size()), ORV_CHARSET_BYTES);
  OrvWebPageVisibleNodes nodes;
  size_t classes = 0;
  double start = ThreadSeconds();
  for (auto _ : state) {
    classes = 0;
    for (auto& doc : docs) {
      nodes.ClassifyNodes(doc.root);
      classes += size_t(nodes.GetClassCount());
      nodes.ClearNodes();
    }
  }
  double seconds = ThreadSeconds() - start;
  Seconds()["classify"] = seconds / double(state.iterations());
  state.counters["classes"] = double(classes);
  state.SetBytesProcessed(int64_t(double(state.iterations()) * PageBytes()));
}

// Body text at depth 3 lets the lists below it form blocks: every list of
// three like entries is one block and one class.
std::string BlocksPage(int blocks) {
  std::string page = "<html><head><title>Blocks</title></head><body>Listing\n";
  for (int i = 0; i < blocks; i++) {
    std::string n = std::to_string(i);
    page += "<div class=\"block\"><h2>Block " + n + "</h2><ul>";
    for (int j = 1; j <= 3; j++) {
      std::string m = std::to_string(j);
      page += "<li class=\"entry\"><a href=\"/b/" + n + "/" + m + "\">Entry " + m + " of " + n +
              "</a> <span class=\"note\">note " + m + "</span></li>";
    }
    page += "</ul></div>\n";
  }
  return page + "</body></html>";
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  size_t n = values.size();
  return n == 0 ? 0.0 : n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

// Pages of 1,000, 10,000 and 100,000 blocks, each with its own classifier,
// classified in turn 100, 10 and 1 times an iteration: the same number of
// blocks for each, a fraction of a second apart. The figures are medians over
// the iterations, the ratios taken within each iteration, so that a burst of
// load on this shared machine moves neither.
void ClassifyBlocks(benchmark::State& state) {
  const int sizes[3] = {1000, 10000, 100000};
  std::vector<std::string> pages;
  std::vector<OrvHtml> docs(3);
  std::vector<OrvWebPageVisibleNodes> nodes(3);
  for (int k = 0; k < 3; k++) {
    pages.push_back(BlocksPage(sizes[k]));
    docs[k].Open(pages[k].data(), long(pages[k].size()), ORV_CHARSET_BYTES);
  }
  std::vector<double> perBlock[3];
  std::vector<double> growth[2];
  for (auto _ : state) {
    double seconds[3];
    for (int k = 0; k < 3; k++) {
      double start = ThreadSeconds();
      for (int round = 0; round < 100000 / sizes[k]; round++) {
        nodes[k].ClassifyNodes(docs[k].root);
        benchmark::DoNotOptimize(nodes[k].GetClassCount());
        nodes[k].ClearNodes();
      }
      seconds[k] = ThreadSeconds() - start;
      perBlock[k].push_back(seconds[k] / 100000);
    }
    growth[0].push_back(seconds[1] / seconds[0]);
    growth[1].push_back(seconds[2] / seconds[0]);
  }
  for (int k = 0; k < 3; k++) {
    Seconds()["blocks" + std::to_string(sizes[k])] = Median(perBlock[k]);
    state.counters["us/block at " + std::to_string(sizes[k])] = Median(perBlock[k]) * 1e6;
  }
  Seconds()["growth10000"] = Median(growth[0]);
  Seconds()["growth100000"] = Median(growth[1]);
}

}  // namespace

BENCHMARK(OpenPages)->MinTime(3)->Unit(benchmark::kMillisecond);
BENCHMARK(ClassifyPages)->Unit(benchmark::kMillisecond);
BENCHMARK(ClassifyBlocks)->MinTime(5)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
  xmlInitParser();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  auto& f = Figures();
  if (f.count("orv")) {
    std::printf(
        "Open over %zu pages (%.1f MB): ours %.1f MB/s (bytes kept), %.1f MB/s (UTF-8); "
        "libxml2 DOM %.1f MB/s; ours/libxml2 %.2f (UTF-8 %.2f)\n",
        Pages().size(), PageBytes() / 1e6, f["orv"], f["orv-utf8"], f["libxml2"],
        f["orv"] / f["libxml2"], f["orv-utf8"] / f["libxml2"]);
    std::printf("libxml2 SAX with empty callbacks %.1f MB/s; ours %.0f%% of it (UTF-8 %.0f%%)\n",
                f["libxml2-sax"], 100.0 * f["orv"] / f["libxml2-sax"],
                100.0 * f["orv-utf8"] / f["libxml2-sax"]);
  }
  auto& s = Seconds();
  if (f.count("orv") && s.count("classify")) {
    double open = PageBytes() / (f["orv"] * 1e6);
    std::printf(
        "ClassifyNodes over the same pages: %.1f ms against %.1f ms for Open, %.1f%% of Open\n",
        s["classify"] * 1e3, open * 1e3, 100.0 * s["classify"] / open);
  }
  if (s.count("blocks1000")) {
    std::printf(
        "ClassifyNodes per block: %.2f us at 1,000, %.2f us at 10,000, %.2f us at 100,000; "
        "10,000/1,000 %.2f, 100,000/1,000 %.2f\n",
        s["blocks1000"] * 1e6, s["blocks10000"] * 1e6, s["blocks100000"] * 1e6, s["growth10000"],
        s["growth100000"]);
  }
  return 0;
}
