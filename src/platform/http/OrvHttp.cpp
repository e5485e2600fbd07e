#include "orvwebpage/OrvHttp.h"

#include <curl/curl.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstring>

#include "core/OrvMemory.h"
#include "platform/http/OrvCurlGlobal.h"
#include "platform/http/OrvHttpGate.h"
#include "platform/http/OrvRequestTarget.h"

struct OrvHttpSession {
  CURL* curl = nullptr;
  CURLU* target = nullptr;  // the request in hand, parsed; libcurl sends what it holds
  OrvRequestTarget aim;
  OrvString url;   // NUL-terminated copy of the request in hand
  OrvString body;  // grows as bytes come; never past maxBody
  int64_t maxBody = 0;
  int tooLarge = 0;
  int hasBody = 0;
  long responseCode = 0;
  OrvString contentType;  // of the last final response; empty when it named none
};

namespace {

size_t ReceiveBody(char* data, size_t size, size_t count, void* context) {
  auto* session = static_cast<OrvHttpSession*>(context);
  size_t bytes = size * count;
  // Decoded bytes are what is held, so a small compressed body cannot blow up.
  if (int64_t(bytes) > session->maxBody - session->body.len) {
    session->tooLarge = 1;
    return 0;  // anything but bytes aborts the transfer
  }
  session->body.Append(data, long(bytes));
  OrvHttpNoteBytes(int64_t(bytes), session->url.buf);
  return bytes;
}

ORV_HTTP_STATUS StatusOf(CURLcode code, const OrvHttpSession& session) {
  switch (code) {
    case CURLE_OK:
      return session.responseCode >= 200 && session.responseCode <= 299 ? ORV_HTTP_OK
                                                                        : ORV_HTTP_NOT_2XX;
    case CURLE_OPERATION_TIMEDOUT:
      return ORV_HTTP_TIMEOUT;
    case CURLE_FILESIZE_EXCEEDED:
      return ORV_HTTP_TOO_LARGE;
    case CURLE_WRITE_ERROR:
      return session.tooLarge ? ORV_HTTP_TOO_LARGE : ORV_HTTP_NETWORK;
    case CURLE_URL_MALFORMAT:
      return ORV_HTTP_BAD_REQUEST;
    default:
      return ORV_HTTP_NETWORK;
  }
}

// Redirects are followed here, not by libcurl, so that each hop passes the gate.
void SetOptions(OrvHttpSession& session, const OrvHttpAdmission& admission, int64_t timeoutMs) {
  CURL* curl = session.curl;
  const OrvHttpSettings& settings = admission.settings;
  const char* agent =
      settings.userAgent[0] ? settings.userAgent : OrvHttpLimits::DefaultUserAgent();
  curl_easy_setopt(curl, CURLOPT_CURLU, session.target);
  curl_easy_setopt(curl, CURLOPT_HTTPGET, 1L);
  curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(curl, CURLOPT_VERBOSE, 0L);
  curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 0L);
  curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(curl, CURLOPT_NOPROXY, "127.0.0.1,localhost,::1");
  curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT_MS,
                   long(std::min(admission.connectTimeoutMs, timeoutMs)));
  curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, long(timeoutMs));
  if (settings.stallSeconds > 0 && settings.stallBytesPerSecond > 0) {
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, long(settings.stallBytesPerSecond));
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, long(settings.stallSeconds));
  } else {
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, 0L);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, 0L);
  }
  // An announced length above the cap fails before any byte is read.
  curl_easy_setopt(curl, CURLOPT_MAXFILESIZE_LARGE, curl_off_t(session.maxBody));
  curl_easy_setopt(curl, CURLOPT_ACCEPT_ENCODING, "gzip, deflate");
  curl_easy_setopt(curl, CURLOPT_USERAGENT, agent);
  curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, ReceiveBody);
  curl_easy_setopt(curl, CURLOPT_WRITEDATA, &session);
}

using Clock = std::chrono::steady_clock;

// One request of a Run. Sets next to the absolute URL a redirect points to
// (good until the next transfer), or leaves it NULL for a final response.
ORV_HTTP_STATUS Transfer(OrvHttpSession& s, const OrvHttpAdmission& admission, int64_t& transferMs,
                         const char*& next) {
  next = nullptr;
  s.tooLarge = 0;
  s.body.Clear();
  s.maxBody = admission.settings.maxBodyBytes;
  if (s.maxBody < 0) s.maxBody = 0;
  if (s.maxBody > INT32_MAX - 1) s.maxBody = INT32_MAX - 1;
  int64_t timeoutMs =
      std::max<int64_t>(1, std::min(admission.requestTimeoutMs,
                                    int64_t(admission.settings.requestTimeoutMs) - transferMs));

  SetOptions(s, admission, timeoutMs);
  Clock::time_point start = Clock::now();
  CURLcode code = curl_easy_perform(s.curl);
  transferMs += std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
  long responseCode = 0;
  curl_easy_getinfo(s.curl, CURLINFO_RESPONSE_CODE, &responseCode);
  s.responseCode = responseCode;
  const char* type = nullptr;
  s.contentType.Clear();
  if (curl_easy_getinfo(s.curl, CURLINFO_CONTENT_TYPE, &type) == CURLE_OK && type)
    s.contentType.CopyBuf(type, -1);
  ORV_HTTP_STATUS status = StatusOf(code, s);
  OrvHttpNoteFinished(s.url.buf);
  if (status == ORV_HTTP_NOT_2XX && responseCode >= 300 && responseCode <= 399 &&
      responseCode != 304) {
    char* location = nullptr;
    curl_easy_getinfo(s.curl, CURLINFO_REDIRECT_URL, &location);
    next = location;
  }
  if (status != ORV_HTTP_OK) {
    s.body.Clear();
    return status;
  }
  s.hasBody = 1;
  return ORV_HTTP_OK;
}

}  // namespace

OrvHttp::OrvHttp() : session(OrvNew<OrvHttpSession>()) {}

OrvHttp::~OrvHttp() {
  if (session->curl) curl_easy_cleanup(session->curl);
  if (session->target) curl_url_cleanup(session->target);
  OrvDelete(session);
}

ORV_HTTP_STATUS OrvHttp::Run(char* url, long length, ORV_HTTP_METHOD method) {
  OrvHttpSession& s = *session;
  s.hasBody = 0;
  s.responseCode = 0;
  s.body.Clear();
  s.contentType.Clear();
  if (method != ORV_HTTP_GET || !url) return ORV_HTTP_BAD_REQUEST;
  if (length < 0) length = Orvstrlen(url);
  // libcurl reads up to the first NUL, which would be another URL than asked.
  if (length == 0 || length > INT32_MAX - 1 || std::memchr(url, 0, size_t(length)))
    return ORV_HTTP_BAD_REQUEST;
  s.url.CopyBuf(url, length);
  if (!OrvCurlGlobalInit()) return ORV_HTTP_NETWORK;
  if (!s.curl) s.curl = curl_easy_init();
  if (!s.target) s.target = curl_url();
  if (!s.curl || !s.target) return ORV_HTTP_NETWORK;

  int64_t transferMs = 0;  // so far in this Run: the hops share one request timeout
  for (int32_t redirects = 0;; redirects++) {
    ORV_HTTP_STATUS status = OrvAimRequest(s.target, s.url.buf, s.aim);
    if (status != ORV_HTTP_OK) return redirects > 0 ? ORV_HTTP_NETWORK : status;
    OrvHttpAdmission admission;
    status = OrvHttpAdmit(s.url.buf, s.aim, redirects == 0, admission);
    if (status != ORV_HTTP_OK) return status;
    const char* next = nullptr;
    status = Transfer(s, admission, transferMs, next);
    if (!next) return status;
    if (redirects >= admission.settings.maxRedirects) return ORV_HTTP_NETWORK;
    s.url.CopyBuf(next, -1);
  }
}

int OrvHttp::GetBody(OrvString& body) {
  if (!session->hasBody) {
    body.CopyBuf("", 0);
    return 0;
  }
  body.CopyBuf(session->body.buf, session->body.len);
  return 1;
}

long OrvHttp::GetResponseCode() const { return session->responseCode; }

int OrvHttp::GetContentType(OrvString& type) {
  type.CopyBuf(session->contentType.buf, session->contentType.len);
  return session->contentType.len > 0 ? 1 : 0;
}
