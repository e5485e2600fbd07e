#include "size/OrvRobotsSitemaps.h"

#include <cstring>

#include "size/OrvSiteScope.h"
#include "size/OrvSizeFetch.h"

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v'; }

bool StartsWithSitemap(const char* line) {
  for (int i = 0; i < 7; i++)
    if ((line[i] | 0x20) != "sitemap"[i]) return false;
  return true;
}

}  // namespace

int32_t OrvReadSitemapLines(const char* body, long len, int32_t max, OrvStrArray& sitemaps) {
  int32_t added = 0;
  for (long start = 0; body && start < len && added < max;) {
    const char* end =
        static_cast<const char*>(std::memchr(body + start, '\n', size_t(len - start)));
    long stop = end ? long(end - body) : len;
    const char* line = body + start;
    long n = stop - start;
    start = stop + 1;
    const char* hash = static_cast<const char*>(std::memchr(line, '#', size_t(n)));
    if (hash) n = long(hash - line);
    while (n > 0 && IsBlank(*line)) line++, n--;
    if (n < 8 || !StartsWithSitemap(line)) continue;
    long i = 7;
    while (i < n && IsBlank(line[i])) i++;
    if (i >= n || line[i] != ':') continue;
    i++;
    while (i < n && IsBlank(line[i])) i++;
    while (n > i && IsBlank(line[n - 1])) n--;
    if (n > i && n - i <= 8192) {
      sitemaps.AddString(line + i, n - i);
      added++;
    }
  }
  return added;
}

int OrvFetchRobotsSitemaps(OrvHttp& client, const char* url, long len, int32_t max,
                           OrvStrArray& sitemaps, OrvString& problem, int32_t& fetches) {
  OrvString robots, body;
  problem.Clear();
  if (!OrvOriginText(url, len, robots)) {
    problem = "not an http(s) URL";
    return 0;
  }
  robots += "/robots.txt";
  ORV_HTTP_STATUS status;
  fetches++;
  if (!OrvSizeFetch(client, robots.buf, robots.len, body, problem, status)) {
    long code = client.GetResponseCode();
    if (status == ORV_HTTP_NOT_2XX && (code == 404 || code == 410)) {
      problem.Clear();
      return 1;
    }
    return 0;
  }
  OrvReadSitemapLines(body.buf, body.len, max, sitemaps);
  return 1;
}
