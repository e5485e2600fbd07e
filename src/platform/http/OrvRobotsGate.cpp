#include "platform/http/OrvRobotsGate.h"

#include "platform/http/OrvHttpGate.h"
#include "platform/http/OrvHttpRunState.h"
#include "platform/http/OrvHttpSession.h"

namespace {

void OriginKey(const OrvRequestTarget& target, OrvString& key) {
  key.Format("%s://%s:%ld", target.scheme.buf ? target.scheme.buf : "",
             target.host.buf ? target.host.buf : "", target.port);
  for (long i = 0; i < key.len; i++)
    if (key.buf[i] >= 'A' && key.buf[i] <= 'Z') key.buf[i] = char(key.buf[i] - 'A' + 'a');
}

// The URL's path and query as sent, "/" when there is no path.
void PathOf(CURLU* url, OrvString& path) {
  char* part = nullptr;
  path.CopyBuf("/", 1);
  if (curl_url_get(url, CURLUPART_PATH, &part, 0) == CURLUE_OK && part && part[0])
    path.CopyBuf(part, -1);
  curl_free(part);
  part = nullptr;
  if (curl_url_get(url, CURLUPART_QUERY, &part, 0) == CURLUE_OK && part) {
    path += '?';
    path += part;
  }
  curl_free(part);
}

// Reads the origin's robots.txt into origin. Gives ORV_HTTP_OK once the
// origin has its answer, a file or a rule for its absence.
ORV_HTTP_STATUS ReadRobots(OrvHttpRunState& run, const OrvRequestTarget& target,
                           OrvHttpOrigin& origin, OrvString& why) {
  OrvHttpSession session;
  session.url.Format("%s://%s:%ld/robots.txt", target.scheme.buf, target.host.buf, target.port);
  OrvFetchPlan plan;
  plan.obeyRobots = 0;
  plan.countFetch = 0;
  plan.maxRedirects = 5;
  plan.cutAt = OrvRobotsTxt::kMaxBytes;
  plan.noteFailures = 0;  // a site without robots.txt is no failure
  ORV_HTTP_STATUS status = OrvSessionFetch(session, run, plan);
  switch (status) {
    case ORV_HTTP_BUDGET_SPENT:
    case ORV_HTTP_STOPPED:
      why = session.failure;
      return status;
    case ORV_HTTP_OK: {
      OrvHttpSettings settings;
      {
        std::lock_guard<std::mutex> hold(run.lock);
        settings = run.settings;
      }
      const char* agent =
          settings.userAgent[0] ? settings.userAgent : OrvHttpLimits::DefaultUserAgent();
      origin.robots.Parse(session.body.buf, session.body.len, agent, -1);
      origin.robotsFound = 1;
      break;
    }
    case ORV_HTTP_NOT_2XX:
      // A missing file leaves the site open; a failing server closes it.
      if (session.responseCode >= 500)
        origin.robots.DisallowAll();
      else
        origin.robots.AllowAll();
      break;
    case ORV_HTTP_NETWORK:
      // Too many redirects make the file unavailable, like a 4xx.
      if (session.responseCode >= 300 && session.responseCode <= 399)
        origin.robots.AllowAll();
      else
        origin.robots.DisallowAll();
      break;
    case ORV_HTTP_TIMEOUT:
      origin.robots.DisallowAll();
      break;
    default:  // a redirect to a host not allowed, or a bad URL: unavailable
      origin.robots.AllowAll();
      break;
  }
  origin.refusal = "refused by robots.txt";
  if (!origin.robotsFound && session.failure.len > 0) {
    origin.refusal += " (";
    origin.refusal += session.failure;
    origin.refusal += ")";
  }
  origin.robotsRead = 1;
  return ORV_HTTP_OK;
}

}  // namespace

ORV_HTTP_STATUS OrvRobotsCheck(OrvHttpRunState& run, const OrvRequestTarget& target, CURLU* url,
                               OrvHttpOrigin*& origin, int& allowed, OrvString& why) {
  allowed = 1;
  OrvString key;
  OriginKey(target, key);
  std::lock_guard<std::mutex> reading(run.robotsLock);
  int found = 0;
  int32_t* place;
  {
    std::lock_guard<std::mutex> hold(run.lock);
    place = run.originIndex.Insert(key.buf, int32_t(key.len), &found);
    if (!found) {
      *place = int32_t(run.origins.size());
      run.origins.push_back(OrvNewOwned<OrvHttpOrigin>());
    }
    origin = run.origins[size_t(*place)].get();
  }
  if (!origin->robotsRead) {
    ORV_HTTP_STATUS status = ReadRobots(run, target, *origin, why);
    if (status != ORV_HTTP_OK) return status;
  }
  if (url) {
    OrvString path;
    PathOf(url, path);
    allowed = origin->robots.Allows(path.buf, path.len);
    if (!allowed) why = origin->refusal;
  }
  return ORV_HTTP_OK;
}
