#include "size/OrvSitemapSize.h"

#include <cstring>

#include "orvwebpage/OrvHttp.h"
#include "orvwebpage/OrvHttpLimits.h"
#include "size/OrvSitemapParse.h"
#include "size/OrvSitemapSource.h"
#include "size/OrvSitemapTotals.h"
#include "size/OrvSizeFetch.h"
#include "size/OrvUrlHashSet.h"

using OrvFileList = std::vector<OrvSitemapFile, OrvAllocator<OrvSitemapFile>>;
using OrvTextList = std::vector<OrvString, OrvAllocator<OrvString>>;

struct OrvSitemapState {
  OrvSitemapLimits limits;
  OrvSiteOrigin entry;
  OrvString origin;  // "scheme://host[:port]" of the entry
  OrvFileList files;
  OrvUrlHashSet pagesSeen, sitemapsSeen;
  int64_t pages = 0, low = 0, high = 0;
  int found = 0;
  int32_t fetches = 0, requests = 0, maxFetches = 0;
  int budgetSpent = 0;
  OrvTextList kept;  // the sample while it is drawn
  int64_t offered = 0;
  uint64_t draw = 0;
  OrvStrArray sample;
  OrvSitemapFile none;
  OrvHttp client;  // one for the whole read, so that its connection is kept

  // What the file in hand is reading.
  OrvSitemapFile* current = nullptr;
  const OrvSitemapParseResult* parsing = nullptr;
  int64_t offHost = 0;
  OrvStrArray children;

  void Reset();
  void Plan(const char* url, long len, int32_t parent, int32_t sampled);
  void ReadFile(int32_t index);
  void PlanChildren(int32_t index, int32_t next);
  void TakePage(const char* url, int32_t len);
  void Keep(const char* url, int32_t len);
};

namespace {

void Note(OrvString& problem, const char* text) {
  if (problem.len > 0) problem += "; ";
  problem += text;
}

// Drops the fragment: the same page under two anchors is one page.
int32_t WithoutFragment(const char* url, int32_t len) {
  const void* hash = std::memchr(url, '#', size_t(len));
  return hash ? int32_t(static_cast<const char*>(hash) - url) : len;
}

void OnLoc(const char* loc, int32_t len, void* context) {
  auto* s = static_cast<OrvSitemapState*>(context);
  len = WithoutFragment(loc, len);
  if (len <= 0) return;
  if (s->parsing->kind == ORV_SITEMAP_INDEX)
    s->children.AddString(loc, len);
  else
    s->TakePage(loc, len);
}

}  // namespace

void OrvSitemapState::Reset() {
  files.clear();
  pagesSeen.Clear();
  sitemapsSeen.Clear();
  pagesSeen.SetLimit(limits.maxDistinctUrls);
  pages = low = high = 0;
  found = 0;
  fetches = requests = 0;
  budgetSpent = 0;
  kept.clear();
  offered = 0;
  draw = 0x9e3779b97f4a7c15ull;
  sample.RemoveAll(0);
}

// A sitemap to read, unless it was planned before or lies off the site.
void OrvSitemapState::Plan(const char* url, long len, int32_t parent, int32_t sampled) {
  OrvString text(url, len);
  text.TrimBanks();
  text.Cutlen(WithoutFragment(text.buf, text.len));
  if (text.len == 0 || !sitemapsSeen.Insert(text.buf, text.len)) return;
  OrvSitemapFile& file = files.emplace_back();
  file.url = text;
  file.parent = parent;
  file.sampled = sampled;
  if (!OrvIsOnSite(entry, text.buf, text.len)) file.problem = "not read: on another site";
}

void OrvSitemapState::Keep(const char* url, int32_t len) {
  int32_t want = limits.sampleUrls;
  if (want <= 0) return;
  offered++;
  if (int64_t(kept.size()) < want) {
    kept.emplace_back(url, len);
    return;
  }
  // A fixed generator, so that the same site gives the same sample.
  draw = draw * 6364136223846793005ull + 1442695040888963407ull;
  uint64_t slot = (draw >> 11) % uint64_t(offered);
  if (slot < uint64_t(want)) kept[size_t(slot)].CopyBuf(url, len);
}

void OrvSitemapState::TakePage(const char* url, int32_t len) {
  if (!OrvIsOnSite(entry, url, len)) {
    offHost++;
    return;
  }
  current->listed++;
  if (pagesSeen.Insert(url, len)) {
    current->pages++;
    Keep(url, len);
  }
}

void OrvSitemapState::ReadFile(int32_t index) {
  OrvSitemapFile* file = &files[size_t(index)];
  if (file->problem.len > 0) return;
  if (budgetSpent || fetches >= maxFetches) {
    file->problem = "not read: request budget spent";
    return;
  }
  OrvString body;
  ORV_HTTP_STATUS status;
  fetches++;
  if (!OrvSizeFetch(client, file->url.buf, file->url.len, body, file->problem, status)) {
    // A missing file is known to list nothing; a failed one is unknown.
    file->answered = status == ORV_HTTP_NOT_2XX;
    budgetSpent = status == ORV_HTTP_BUDGET_SPENT;
    return;
  }
  file->answered = 1;
  OrvSitemapSource source(body.buf, body.len, limits.maxInflatedBytes);
  OrvSitemapParseResult result;
  current = file;
  parsing = &result;  // its kind is known from the root before the first location
  offHost = 0;
  children.RemoveAll(0);
  OrvParseSitemap(source, limits.maxUrlsPerFile, OnLoc, this, result);
  parsing = nullptr;
  body = OrvString();
  OrvString& problem = file->problem;
  problem = result.problem;
  found |= result.kind != ORV_SITEMAP_NONE;
  file->isIndex = result.kind == ORV_SITEMAP_INDEX;
  OrvString note;
  if (result.cut) {
    note.Format("cut at %d URLs", limits.maxUrlsPerFile);
    Note(problem, note.buf);
  }
  if (source.HitCap()) {
    note.Format("cut at %lld MB", (long long)(limits.maxInflatedBytes >> 20));
    Note(problem, note.buf);
  }
  if (source.Broken()) Note(problem, "gzip data broken");
  if (result.tooLong > 0) {
    note.Format("over-long URLs skipped: %d", result.tooLong);
    Note(problem, note.buf);
  }
  if (offHost > 0) {
    note.Format("other hosts' URLs skipped: %lld", (long long)offHost);
    Note(problem, note.buf);
  }
}

// The children of an index, all of them or a sample spread evenly through
// it, from the first to the last, when they are more than the limits allow.
void OrvSitemapState::PlanChildren(int32_t index, int32_t next) {
  OrvSitemapFile& file = files[size_t(index)];
  OrvStrArray valid;
  int32_t offSite = 0, loops = 0, repeats = 0;
  OrvString child;
  for (int32_t i = 0; i < children.count; i++) {
    children.GetString(i, child);
    child.TrimBanks();
    if (!OrvIsOnSite(entry, child.buf, child.len)) {
      offSite++;
      continue;
    }
    if (sitemapsSeen.Contains(child.buf, child.len)) {
      bool ancestor = false;
      for (int32_t up = index; up >= 0 && !ancestor; up = files[size_t(up)].parent)
        ancestor = files[size_t(up)].url == child;
      (ancestor ? loops : repeats)++;
      continue;
    }
    valid.AddString(child.buf, child.len);
  }
  OrvString note;
  if (loops > 0) Note(file.problem, "index loop");
  if (repeats > 0) {
    note.Format("sitemaps named before skipped: %d", repeats);
    Note(file.problem, note.buf);
  }
  if (offSite > 0) {
    note.Format("other sites' sitemaps skipped: %d", offSite);
    Note(file.problem, note.buf);
  }
  int32_t m = valid.count;
  file.children = m;
  int64_t pending = int64_t(files.size()) - next - 1;
  int64_t room = int64_t(maxFetches) - fetches - pending;
  int64_t k = m;
  if (k > limits.maxChildrenPerIndex) k = limits.maxChildrenPerIndex;
  if (k > room) k = room;
  if (k < 1 && m > 0 && maxFetches > fetches) k = 1;
  if (k < 0) k = 0;
  if (k < m) {
    note.Format("sample of %lld of %d sitemaps read", (long long)k, m);
    Note(file.problem, note.buf);
  }
  int32_t sampled = k < m;
  for (int64_t i = 0; i < k; i++) {
    // The first and the last are in: they are the ones that differ most
    // often (an index of fixed-size parts ends with a partial one).
    int64_t at = k == 1 ? 0 : i * (m - 1) / (k - 1);
    int32_t parent = index;
    Plan(valid[at], valid.GetStringLen(at), parent, sampled);
  }
}

OrvSitemapSize::OrvSitemapSize() : state(OrvNewOwned<OrvSitemapState>()) {}
OrvSitemapSize::~OrvSitemapSize() = default;  // where the state is a complete type

void OrvSitemapSize::SetLimits(const OrvSitemapLimits& limits) { state->limits = limits; }

void OrvSitemapSize::Read(const char* entryUrl, long len, const OrvStrArray& hints,
                          int32_t maxFetches) {
  OrvSitemapState& s = *state;
  s.Reset();
  s.maxFetches = maxFetches > 0 ? maxFetches : 0;
  if (!OrvReadOrigin(entryUrl, len, s.entry) || !OrvOriginText(entryUrl, len, s.origin)) return;
  int64_t requestsBefore = OrvHttpLimits::GetRequests();

  OrvStrArray named;
  if (s.maxFetches > 0) {
    // Read once a run (another reader of the run may have fetched it), and
    // cut at the robots.txt reader's own cap, so a huge one costs little.
    OrvHttpLimits::GetRobotsSitemaps(entryUrl, len, named);
    if (OrvHttpLimits::GetRequests() > requestsBefore) s.fetches++;
    if (named.count > s.limits.maxRobotsSitemaps) {
      OrvStrArray first;
      for (int32_t i = 0; i < s.limits.maxRobotsSitemaps; i++)
        first.AddString(named[i], named.GetStringLen(i));
      named = first;
    }
  }
  for (int32_t i = 0; i < hints.count; i++) {
    const char* hint = hints[i];
    if (hint[0] == '/' && hint[1] != '/') {
      OrvString absolute = s.origin;
      absolute += hint;
      named.AddString(absolute.buf, absolute.len);
    } else {
      named.AddString(hint, -1);
    }
  }
  for (int32_t i = 0; i < named.count; i++) s.Plan(named[i], named.GetStringLen(i), -1, 0);

  static const char* const kUsual[] = {"/sitemap.xml", "/sitemap_index.xml", "/wp-sitemap.xml"};
  int32_t next = 0;
  for (int32_t guess = 0;; guess++) {
    for (; next < int32_t(s.files.size()); next++) {
      s.ReadFile(next);
      if (s.files[size_t(next)].isIndex) s.PlanChildren(next, next);
    }
    if (s.found || guess >= 3 || s.budgetSpent || s.fetches >= s.maxFetches) break;
    OrvString url = s.origin;
    url += kUsual[guess];
    s.Plan(url.buf, url.len, -1, 0);
  }
  OrvSitemapTotals(s.files.data(), int32_t(s.files.size()), s.pages, s.low, s.high);
  s.requests = int32_t(OrvHttpLimits::GetRequests() - requestsBefore);
  for (const OrvString& url : s.kept) s.sample.AddString(url.buf, url.len);
  s.kept.clear();
}

int64_t OrvSitemapSize::Pages() const { return state->pages; }
int64_t OrvSitemapSize::Low() const { return state->low; }
int64_t OrvSitemapSize::High() const { return state->high; }
int OrvSitemapSize::Found() const { return state->found; }
int32_t OrvSitemapSize::FileCount() const { return int32_t(state->files.size()); }
const OrvSitemapFile& OrvSitemapSize::File(int32_t i) const {
  return i >= 0 && i < FileCount() ? state->files[size_t(i)] : state->none;
}
int32_t OrvSitemapSize::Fetches() const { return state->fetches; }
int32_t OrvSitemapSize::Requests() const { return state->requests; }
const OrvStrArray& OrvSitemapSize::SampleUrls() const { return state->sample; }
