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

// Client, document and harvest serve every probe of one search.
struct ListingProber {
  OrvHttp client;
  OrvHtmlDoc document;
  OrvPageHarvest harvest;
  OrvLinkRecord pageUrl;
  OrvString body;

  // Fetches that page of the listing and reads the last number of its pager.
  OrvProbeRecord Probe(int32_t page, const OrvPageTemplate& pageTemplate) {
    OrvProbeRecord probe;
    probe.page = page;
    MakePageUrl(pageUrl, page, pageTemplate);
    pageUrl.Rebuild();
    if (client.Run(pageUrl.url.buf, pageUrl.url.len, ORV_HTTP_METHOD(0)) != 0) {
      probe.outcome = ORV_PROBE_UNFETCHED;
    } else {
      client.GetBody(body);
      probe.outcome = document.Open(body.buf, body.len, ORV_CHARSET(0)) == 0 ? ReadPager(probe)
                                                                             : ORV_PROBE_UNPARSED;
    }
    probe.httpStatus = int32_t(client.GetResponseCode());
    harvest.ResetLinks();
    document.Close();
    return probe;
  }

  int32_t ReadPager(OrvProbeRecord& probe) {
    OrvHarvestWalk walk;
    walk.go = 1;
    walk.harvest = &harvest;
    walk.HarvestLinks(document.root, 1);
    harvest.DetectRuns();
    if (harvest.runs.map.count == 0) return ORV_PROBE_NO_PAGER;
    const OrvPtrList* run = *harvest.runs.map.GetAt(0);
    probe.lastNumber = harvest.runs.At(run, run->count - 1)->number;
    return ORV_PROBE_PAGER;
  }
};

}  // namespace

int32_t OrvWebPageCountEstimateImpl::FindLastPage(const OrvPageTemplate& pageTemplate,
                                                  OrvEstimateExplanation* log) {
  if (pageTemplate.paramIndex < 0) return -1;
  ListingProber prober;
  prober.harvest.SetEntry(entryUrl.url);
  prober.harvest.allNumbers = 0;

  int32_t page = kFirstProbe;
  int32_t upper = kFirstProbe;
  int32_t result = -1;
  int32_t probes = 0;
  while (IsRunning() && page > 0) {
    if (probes == kMostProbes) return -1;
    probes++;
    int32_t probed = page;
    OrvProbeRecord probe = prober.Probe(page, pageTemplate);
    if (log) log->AddProbe(probe);
    result = probe.lastNumber;
    if (probe.outcome == ORV_PROBE_PAGER) {
      if (result >= page)
        page = result < upper ? Plus(page, (upper - result) / 2) : Plus(result, result);
    } else {
      upper = page;
      page -= page / 2;
    }
    if (result > 0 && result < page) return result + 1;
    // The same page again would give the same answer.
    if (page == probed) return result;
  }
  return result;
}
