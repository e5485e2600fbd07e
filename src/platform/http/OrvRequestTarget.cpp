#include "platform/http/OrvRequestTarget.h"

#include <strings.h>

namespace {

// libcurl's own reading of a URL option: a missing scheme is guessed, and an
// unknown one is left for the protocol check to refuse.
constexpr unsigned int kUrlFlags = CURLU_GUESS_SCHEME | CURLU_NON_SUPPORT_SCHEME;

// Copies one part into text; false when the URL has no such part.
bool GetPart(CURLU* handle, CURLUPart part, unsigned int flags, OrvString& text) {
  char* value = nullptr;
  if (curl_url_get(handle, part, &value, flags) != CURLUE_OK || !value) return false;
  text.CopyBuf(value, -1);
  curl_free(value);
  return true;
}

}  // namespace

ORV_HTTP_STATUS OrvAimRequest(CURLU* handle, const char* url, OrvRequestTarget& target) {
  target.scheme.Clear();
  target.host.Clear();
  target.port = 0;
  if (!handle || !url || curl_url_set(handle, CURLUPART_URL, url, kUrlFlags) != CURLUE_OK)
    return ORV_HTTP_BAD_REQUEST;
  OrvString part;
  if (!GetPart(handle, CURLUPART_SCHEME, 0, part)) return ORV_HTTP_BAD_REQUEST;
  if (strcasecmp(part.buf, "http") != 0 && strcasecmp(part.buf, "https") != 0)
    return ORV_HTTP_NETWORK;
  target.scheme.CopyBuf(part.buf[4] ? "https" : "http", -1);
  if (!GetPart(handle, CURLUPART_HOST, 0, target.host) ||
      !GetPart(handle, CURLUPART_PORT, CURLU_DEFAULT_PORT, part))
    return ORV_HTTP_BAD_REQUEST;
  target.port = OrvAtoInt(part.buf, part.len);
  return ORV_HTTP_OK;
}
