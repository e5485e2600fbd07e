#include "platform/http/OrvHttpGate.h"

void OrvDescribeFailure(const OrvHttpAdmission& admission, ORV_HTTP_STATUS status, CURLcode code,
                        long responseCode, OrvString& reason) {
  switch (status) {
    case ORV_HTTP_NOT_2XX:
      reason.Format("HTTP %ld", responseCode);
      return;
    case ORV_HTTP_TOO_LARGE:
      reason = "body too large";
      return;
    case ORV_HTTP_STOPPED:
      reason = "stopped";
      return;
    case ORV_HTTP_TIMEOUT:
      reason = admission.deadlineCut ? "deadline passed" : "timed out";
      return;
    default:
      break;
  }
  switch (code) {
    case CURLE_COULDNT_CONNECT:
      reason = "connection refused";
      return;
    case CURLE_COULDNT_RESOLVE_HOST:
      reason = "host not found";
      return;
    case CURLE_GOT_NOTHING:
      reason = "empty reply";
      return;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_CACERT_BADFILE:
      reason = "TLS failure";
      return;
    default:
      reason.Format("network error: %s", curl_easy_strerror(code));
      return;
  }
}
