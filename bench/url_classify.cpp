// Link classification at scale: real links repeated with varied parameter
// values and directory names, through AddLink and ClassifyUrls.
//
// Time comes from Google Benchmark; peak memory from a child process per size,
// which resets its peak resident size after building the input and reads it
// back after classifying (VmHWM of /proc/self/status). As a scale for the
// parsing share, the same links also go through uriparser.

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>
#include <uriparser/Uri.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "orvwebpage/OrvString.h"
#include "orvwebpage/OrvWebPageUrls.h"

namespace {

const std::vector<std::string>& DataLinks() {
  static const std::vector<std::string> links = [] {
    std::vector<std::string> all;
    std::ifstream in(std::string(ORV_DATA_DIR) + "/links.txt", std::ios::binary);
    for (std::string line; std::getline(in, line);) all.push_back(line);
    return all;
  }();
  return links;
}

// Copy number r of a link: each directory name and each parameter value gets
// the tag r, so the copies are new pages of the shapes that the real links have.
std::string Vary(const std::string& link, size_t r) {
  if (r == 0) return link;
  const std::string tag = std::to_string(r);
  size_t scheme = link.find("://");
  size_t path = link.find('/', scheme == std::string::npos ? 0 : scheme + 3);
  size_t query = link.find('?', path == std::string::npos ? 0 : path);
  std::string out;
  out.reserve(link.size() + 4 * tag.size());
  for (size_t i = 0; i < link.size(); i++) {
    char c = link[i];
    bool inPath = path != std::string::npos && i > path && i < query;
    if (inPath && c == '/' && link[i - 1] != '/') out += tag;
    out += c;
    if (query != std::string::npos && i > query && c == '=') out += tag;
  }
  return out;
}

std::vector<OrvString> MakeLinks(size_t n) {
  const auto& base = DataLinks();
  std::vector<OrvString> links;
  links.reserve(n);
  for (size_t i = 0; i < n; i++) {
    std::string link = Vary(base[i % base.size()], i / base.size());
    links.emplace_back(link.data(), long(link.size()));
  }
  return links;
}

const OrvString kEntry("https://medium.com/", -1);
const OrvString kNoLabel("", 0);

int Classify(OrvWebPageUrls& urls, const std::vector<OrvString>& links) {
  urls.SetEntryUrl(kEntry);
  for (size_t i = 0; i < links.size(); i++)
    urls.AddLink(links[i], kNoLabel, reinterpret_cast<void*>(i));
  urls.ClassifyUrls();
  return urls.GetClassCount();
}

// Thread CPU time: the machine may be shared, and the phases should not
// count the time other processes took.
double CpuSeconds() {
  timespec t;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

long StatusKb(const char* field) {
  std::ifstream in("/proc/self/status");
  for (std::string line; std::getline(in, line);)
    if (line.compare(0, std::strlen(field), field) == 0)
      return std::atol(line.c_str() + std::strlen(field) + 1);
  return -1;
}

struct Peak {
  double peakMb = -1;  // growth of the peak resident size during the run
  double heldMb = -1;  // heap still in use once classified (what the results hold)
  int classes = 0;
};

// Runs one classification of n links in a child, so that neither earlier
// sizes nor the benchmark's own repetitions stand in the peak.
Peak MeasurePeak(size_t n) {
  int fds[2];
  Peak peak;
  if (pipe(fds) != 0) return peak;
  pid_t pid = fork();
  if (pid == 0) {
    close(fds[0]);
    auto links = MakeLinks(n);
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5";  // peak resident size := current
    long before = StatusKb("VmHWM:");
    size_t heapBefore = mallinfo2().uordblks;
    Peak out;
    {
      OrvWebPageUrls urls;
      out.classes = Classify(urls, links);
      out.heldMb = double(mallinfo2().uordblks - heapBefore) / (1 << 20);
      out.peakMb = double(StatusKb("VmHWM:") - before) / 1024;
    }
    ssize_t written = write(fds[1], &out, sizeof out);
    _exit(written == sizeof out ? 0 : 1);
  }
  close(fds[1]);
  if (pid > 0) {
    if (read(fds[0], &peak, sizeof peak) != sizeof peak) peak = Peak();
    waitpid(pid, nullptr, 0);
  }
  close(fds[0]);
  return peak;
}

void BM_AddAndClassify(benchmark::State& state) {
  const size_t n = size_t(state.range(0));
  auto links = MakeLinks(n);
  int classes = 0;
  double addSeconds = 0, classifySeconds = 0;
  for (auto _ : state) {
    OrvWebPageUrls urls;
    double t0 = CpuSeconds();
    urls.SetEntryUrl(kEntry);
    for (size_t i = 0; i < links.size(); i++)
      urls.AddLink(links[i], kNoLabel, reinterpret_cast<void*>(i));
    double t1 = CpuSeconds();
    urls.ClassifyUrls();
    double t2 = CpuSeconds();
    classes = urls.GetClassCount();
    addSeconds += t1 - t0;
    classifySeconds += t2 - t1;
    state.PauseTiming();  // the release of the records is not part of the work
    urls.ClearLinks();
    state.ResumeTiming();
  }
  Peak peak = MeasurePeak(n);
  double runs = double(state.iterations());
  state.counters["classes"] = classes;
  // CPU milliseconds per run.
  state.counters["add_ms"] = addSeconds / runs * 1e3;
  state.counters["classify_ms"] = classifySeconds / runs * 1e3;
  state.counters["ns_per_link"] = (addSeconds + classifySeconds) / runs / double(n) * 1e9;
  state.counters["peak_MB"] = peak.peakMb;
  state.counters["held_MB"] = peak.heldMb;
  state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(n));
}
BENCHMARK(BM_AddAndClassify)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

// CPU seconds per link for adding and classifying the links once; the
// release of the records is not counted.
double SecondsPerLink(const std::vector<OrvString>& links) {
  OrvWebPageUrls urls;
  double t0 = CpuSeconds();
  Classify(urls, links);
  double seconds = CpuSeconds() - t0;
  return seconds / double(links.size());
}

double Median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v.empty() ? 0 : v[v.size() / 2];
}

// The goal's figures in one run: the two sizes alternate, so that a busy
// machine slows both alike, and the first round only warms the heap up.
void BM_GrowthRatio(benchmark::State& state) {
  const size_t small = 100000, large = 1000000;
  auto smallLinks = MakeLinks(small);
  auto largeLinks = MakeLinks(large);
  std::vector<double> smallTimes, largeTimes;
  for (auto _ : state) {
    for (int round = 0; round < 6; round++) {
      double s = SecondsPerLink(smallLinks);
      double l = SecondsPerLink(largeLinks);
      if (round == 0) continue;
      smallTimes.push_back(s);
      largeTimes.push_back(l);
    }
  }
  Peak peak = MeasurePeak(large);
  state.counters["ns_per_link_100k"] = Median(smallTimes) * 1e9;
  state.counters["ns_per_link_1M"] = Median(largeTimes) * 1e9;
  state.counters["ratio_1M_to_100k"] = Median(largeTimes) / Median(smallTimes);
  state.counters["bytes_per_link_1M"] = peak.heldMb * (1 << 20) / double(large);
}
BENCHMARK(BM_GrowthRatio)->Iterations(1)->Unit(benchmark::kMillisecond);

// The peer: uriparser only parses, with no classification at all.
void BM_UriparserParseOnly(benchmark::State& state) {
  const size_t n = size_t(state.range(0));
  std::vector<std::string> links;
  for (size_t i = 0; i < n; i++)
    links.push_back(Vary(DataLinks()[i % DataLinks().size()], i / DataLinks().size()));
  for (auto _ : state) {
    for (const auto& link : links) {
      UriUriA uri;
      const char* error = nullptr;
      if (uriParseSingleUriExA(&uri, link.data(), link.data() + link.size(), &error) == URI_SUCCESS)
        uriFreeUriMembersA(&uri);
      benchmark::DoNotOptimize(error);
    }
  }
  state.counters["ns_per_link"] = benchmark::Counter(
      double(n), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
  state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(n));
}
BENCHMARK(BM_UriparserParseOnly)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
