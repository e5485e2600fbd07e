// Link classification of URLs whose keys all share one hash of the string map
// against as many ordinary URLs of the same length, in one run.
//
// The map's hash runs from the last byte to the first, h = h * 33 + byte, so
// the two-byte blocks "Ab" and "ba" add the same amount at any position
// ('A' + 33 * 'b' == 'b' + 33 * 'a'). Eighteen such blocks in a parameter name
// give 262,144 names, and with them query and class keys, of one hash.

#include <benchmark/benchmark.h>
#include <time.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "core/OrvStrMap.h"
#include "orvwebpage/OrvString.h"
#include "orvwebpage/OrvWebPageUrls.h"

namespace {

constexpr int kBlocks = 18;  // 2^18 = 262,144 keys

// Name number i: block b is "Ab" or "ba" by bit b of i (colliding), or
// letters that vary with i everywhere, its base-26 digits first (ordinary).
std::string Name(uint32_t i, bool colliding) {
  std::string name;
  for (int b = 0; b < kBlocks; b++) name += colliding ? ((i >> b) & 1 ? "ba" : "Ab") : "..";
  if (colliding) return name;
  uint32_t mix = i * 2654435761u + 1u;
  for (size_t p = 0; p < name.size(); p++) {
    mix ^= mix << 13, mix ^= mix >> 17, mix ^= mix << 5;
    name[p] = char('a' + mix % 26);
  }
  for (int p = 0, rest = int(i); p < 4; p++, rest /= 26) name[size_t(p)] = char('a' + rest % 26);
  return name;
}

std::vector<OrvString> MakeLinks(size_t n, bool colliding) {
  std::vector<OrvString> links;
  links.reserve(n);
  for (size_t i = 0; i < n; i++) {
    std::string url = "http://www.site.test/a.html?" + Name(uint32_t(i), colliding) + "=1";
    links.emplace_back(url.data(), long(url.size()));
  }
  return links;
}

double CpuSeconds() {
  timespec t;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

// Seconds to add and classify the links; the class count goes to `classes`.
double Classify(const std::vector<OrvString>& links, int& classes) {
  OrvWebPageUrls urls;
  double t0 = CpuSeconds();
  urls.SetEntryUrl(OrvString("http://www.site.test/", -1));
  for (size_t i = 0; i < links.size(); i++)
    urls.AddLink(links[i], OrvString("", 0), reinterpret_cast<void*>(i));
  urls.ClassifyUrls();
  double seconds = CpuSeconds() - t0;
  classes = urls.GetClassCount();
  return seconds;
}

// Both sets in one run; `distinct_hashes` shows the crafted set shares one hash.
void BM_CollidingAgainstOrdinary(benchmark::State& state) {
  const size_t n = size_t(state.range(0));
  auto crafted = MakeLinks(n, true);
  auto ordinary = MakeLinks(n, false);
  std::vector<uint32_t> hashes;
  for (size_t i = 0; i < n && i < 1024; i++)
    hashes.push_back(OrvStrMap<int>::Hash(crafted[i].buf + 28, 2 * kBlocks));
  std::sort(hashes.begin(), hashes.end());
  double craftedSeconds = 0, ordinarySeconds = 0;
  int craftedClasses = 0, ordinaryClasses = 0;
  for (auto _ : state) {
    ordinarySeconds += Classify(ordinary, ordinaryClasses);
    craftedSeconds += Classify(crafted, craftedClasses);
  }
  double runs = double(state.iterations());
  state.counters["distinct_hashes_of_1024"] =
      double(std::unique(hashes.begin(), hashes.end()) - hashes.begin());
  state.counters["classes"] = craftedClasses;
  state.counters["ordinary_classes"] = ordinaryClasses;
  state.counters["colliding_s"] = craftedSeconds / runs;
  state.counters["ordinary_s"] = ordinarySeconds / runs;
  state.counters["ratio"] = craftedSeconds / ordinarySeconds;
}
BENCHMARK(BM_CollidingAgainstOrdinary)
    ->Arg(65536)
    ->Arg(262144)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
