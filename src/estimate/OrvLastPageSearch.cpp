// How many pages a listing has: probe page numbers from 100, halving on a
// probe that shows no pager and moving up on one that links beyond itself,
// until a pager ends short of the next page to try.

#include "estimate/OrvWebPageCountEstimateImpl.h"
#include "orvwebpage/OrvHtml.h"
#include "orvwebpage/OrvHttp.h"

namespace {

constexpr int32_t kFirstProbe = 100;
// A search that has not settled by then never will; it counts as not found.
constexpr int32_t kMostProbes = 64;

int32_t Plus(int32_t a, int32_t b) { return int32_t(uint32_t(a) + uint32_t(b)); }

}  // namespace

int32_t OrvWebPageCountEstimateImpl::FindLastPage(const OrvPageTemplate& pageTemplate) {
  if (pageTemplate.paramIndex < 0) return -1;
  OrvHttp client;
  OrvHtmlDoc document;
  OrvPageHarvest probe;
  OrvLinkRecord probeUrl;
  OrvString body;
  probe.SetEntry(entryUrl.url);

  int32_t page = kFirstProbe;
  int32_t upper = kFirstProbe;
  int32_t result = -1;
  int32_t probes = 0;
  while (IsRunning() && page > 0) {
    if (probes == kMostProbes) return -1;
    probes++;
    result = -1;
    int32_t probed = page;
    MakePageUrl(probeUrl, page, pageTemplate);
    probeUrl.Rebuild();
    bool read = client.Run(probeUrl.url.buf, probeUrl.url.len, ORV_HTTP_METHOD(0)) == 0;
    if (read) {
      client.GetBody(body);
      read = document.Open(body.buf, body.len, ORV_CHARSET(0)) == 0;
    }
    if (read) {
      OrvHarvestWalk walk;
      walk.go = 1;
      walk.harvest = &probe;
      walk.HarvestLinks(document.root, 1);
      probe.DetectRuns();
      read = probe.runs.map.count > 0;
    }
    if (read) {
      const OrvPtrList* run = *probe.runs.map.GetAt(0);
      result = probe.runs.At(run, run->count - 1)->number;
      if (result >= page)
        page = result < upper ? Plus(page, (upper - result) / 2) : Plus(result, result);
    } else {
      upper = page;
      page -= page / 2;
    }
    probe.ResetLinks();
    document.Close();
    if (result > 0 && result < page) return result + 1;
    // The same page again would give the same answer.
    if (page == probed) return result;
  }
  return result;
}
