#include "size/OrvSiteScope.h"

#include <curl/curl.h>

#include <cstring>

namespace {

void LowerCase(OrvString& text) {
  for (int32_t i = 0; i < text.len; i++)
    if (text.buf[i] >= 'A' && text.buf[i] <= 'Z') text.buf[i] = char(text.buf[i] + 32);
}

// The URL API wants a NUL-terminated text without NULs inside.
struct ParsedUrl {
  CURLU* handle = curl_url();
  ~ParsedUrl() { curl_url_cleanup(handle); }
  int Set(const char* url, long len) {
    if (!handle || !url) return 0;
    if (len < 0) len = long(std::strlen(url));
    if (len == 0 || std::memchr(url, 0, size_t(len))) return 0;
    OrvString text(url, len);
    text.TrimBanks();
    return curl_url_set(handle, CURLUPART_URL, text.buf,
                        CURLU_NON_SUPPORT_SCHEME | CURLU_ALLOW_SPACE) == CURLUE_OK;
  }
  int Get(CURLUPart part, OrvString& out, unsigned flags = 0) {
    char* value = nullptr;
    if (curl_url_get(handle, part, &value, flags) != CURLUE_OK || !value) return 0;
    out.CopyBuf(value, -1);
    curl_free(value);
    return 1;
  }
};

}  // namespace

int OrvReadOrigin(const char* url, long len, OrvSiteOrigin& origin) {
  ParsedUrl parsed;
  if (!parsed.Set(url, len) || !parsed.Get(CURLUPART_SCHEME, origin.scheme) ||
      !parsed.Get(CURLUPART_HOST, origin.host) || origin.host.len == 0)
    return 0;
  LowerCase(origin.scheme);
  LowerCase(origin.host);
  int https = origin.scheme.CapsIsEqual("https", 5);
  if (!https && !origin.scheme.CapsIsEqual("http", 4)) return 0;
  if (origin.host.len > 4 && std::memcmp(origin.host.buf, "www.", 4) == 0) origin.host.CutBefore(4);
  OrvString port;
  origin.port = 0;
  if (parsed.Get(CURLUPART_PORT, port)) {
    long number = OrvAtoInt(port.buf, port.len);
    origin.port = int32_t(number == (https ? 443 : 80) ? 0 : number);
  }
  return 1;
}

int OrvIsOnSite(const OrvSiteOrigin& entry, const char* url, long len) {
  OrvSiteOrigin other;
  return OrvReadOrigin(url, len, other) && other.port == entry.port && other.host == entry.host;
}

int OrvIsOnSite(const char* entryUrl, long entryLen, const char* url, long len) {
  OrvSiteOrigin entry;
  return OrvReadOrigin(entryUrl, entryLen, entry) && OrvIsOnSite(entry, url, len);
}

int OrvOriginText(const char* url, long len, OrvString& origin) {
  ParsedUrl parsed;
  OrvString scheme, host, port;
  origin.Clear();
  if (!parsed.Set(url, len) || !parsed.Get(CURLUPART_SCHEME, scheme) ||
      !parsed.Get(CURLUPART_HOST, host) || host.len == 0)
    return 0;
  LowerCase(scheme);
  LowerCase(host);
  origin = scheme;
  origin += "://";
  origin += host;
  if (parsed.Get(CURLUPART_PORT, port)) {
    origin += ':';
    origin += port;
  }
  return 1;
}
