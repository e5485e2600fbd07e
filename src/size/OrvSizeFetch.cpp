#include "size/OrvSizeFetch.h"

#include "orvwebpage/OrvHttpLimits.h"

int OrvSizeFetch(OrvHttp& client, const char* url, long len, OrvString& body, OrvString& problem,
                 ORV_HTTP_STATUS& status) {
  OrvString target(url, len);
  body.Clear();
  problem.Clear();
  status = client.Run(target.buf, target.len, ORV_HTTP_GET);
  switch (status) {
    case ORV_HTTP_OK:
      client.GetBody(body);
      return 1;
    case ORV_HTTP_NOT_2XX:
      problem.Format("HTTP %ld", client.GetResponseCode());
      break;
    case ORV_HTTP_TIMEOUT:
      problem = "timed out";
      break;
    case ORV_HTTP_TOO_LARGE:
      problem.Format("larger than %lld MB", (long long)(OrvHttpLimits::Get().maxBodyBytes >> 20));
      break;
    case ORV_HTTP_BUDGET_SPENT:
      problem = "request budget spent";
      break;
    case ORV_HTTP_HOST_REFUSED:
      problem = "host not allowed";
      break;
    case ORV_HTTP_BAD_REQUEST:
      problem = "not a URL";
      break;
    default:
      problem = "network failure";
      break;
  }
  return 0;
}
