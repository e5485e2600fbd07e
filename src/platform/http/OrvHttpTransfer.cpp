#include <algorithm>
#include <chrono>
#include <climits>
#include <cstring>

#include "platform/http/OrvHttpGate.h"
#include "platform/http/OrvHttpRunState.h"
#include "platform/http/OrvHttpSession.h"
#include "platform/http/OrvRobotsGate.h"

OrvHttpSession::~OrvHttpSession() {
  if (curl) curl_easy_cleanup(curl);
  if (target) curl_url_cleanup(target);
}

namespace {

size_t ReceiveBody(char* data, size_t size, size_t count, void* context) {
  auto* session = static_cast<OrvHttpSession*>(context);
  size_t bytes = size * count;
  // Decoded bytes are what is held, so a small compressed body cannot blow up.
  if (int64_t(bytes) > session->maxBody - session->body.len) {
    session->tooLarge = 1;
    if (session->cut) {
      int64_t room = session->maxBody - session->body.len;
      session->body.Append(data, long(room));
      OrvHttpNoteBytes(*session->run, room, session->url.buf);
    }
    return 0;  // anything but bytes aborts the transfer
  }
  session->body.Append(data, long(bytes));
  OrvHttpNoteBytes(*session->run, int64_t(bytes), session->url.buf);
  return bytes;
}

// Lets a stop of the run end the transfer in flight.
int CheckStopped(void* context, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
  return static_cast<OrvHttpSession*>(context)->run->stopped.load() ? 1 : 0;
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
      if (session.tooLarge && session.cut) return StatusOf(CURLE_OK, session);
      return session.tooLarge ? ORV_HTTP_TOO_LARGE : ORV_HTTP_NETWORK;
    case CURLE_URL_MALFORMAT:
      return ORV_HTTP_BAD_REQUEST;
    case CURLE_ABORTED_BY_CALLBACK:
      return ORV_HTTP_STOPPED;
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
  // An announced length above the cap fails before any byte is read, unless
  // the body is to be cut there.
  curl_easy_setopt(curl, CURLOPT_MAXFILESIZE_LARGE, curl_off_t(session.cut ? 0 : session.maxBody));
  curl_easy_setopt(curl, CURLOPT_ACCEPT_ENCODING, "gzip, deflate");
  curl_easy_setopt(curl, CURLOPT_USERAGENT, agent);
  curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, ReceiveBody);
  curl_easy_setopt(curl, CURLOPT_WRITEDATA, &session);
  curl_easy_setopt(curl, CURLOPT_NOPROGRESS, 0L);
  curl_easy_setopt(curl, CURLOPT_XFERINFOFUNCTION, CheckStopped);
  curl_easy_setopt(curl, CURLOPT_XFERINFODATA, &session);
}

// One request of a fetch. Sets next to the absolute URL a redirect points to
// (good until the next transfer), or leaves it NULL for a final response.
ORV_HTTP_STATUS Transfer(OrvHttpSession& s, const OrvHttpAdmission& admission, int64_t& transferMs,
                         const char*& next, CURLcode& code) {
  next = nullptr;
  s.tooLarge = 0;
  s.body.Clear();
  if (s.maxBody < 0) s.maxBody = 0;
  if (s.maxBody > INT32_MAX - 1) s.maxBody = INT32_MAX - 1;
  int64_t timeoutMs =
      std::max<int64_t>(1, std::min(admission.requestTimeoutMs,
                                    int64_t(admission.settings.requestTimeoutMs) - transferMs));

  SetOptions(s, admission, timeoutMs);
  // Held for this transfer only, so that the run may end before the client.
  curl_easy_setopt(s.curl, CURLOPT_SHARE, s.run->share.Get());
  OrvHttpClock::time_point start = OrvHttpClock::now();
  code = curl_easy_perform(s.curl);
  curl_easy_setopt(s.curl, CURLOPT_SHARE, nullptr);
  transferMs +=
      std::chrono::duration_cast<std::chrono::milliseconds>(OrvHttpClock::now() - start).count();
  long responseCode = 0;
  curl_easy_getinfo(s.curl, CURLINFO_RESPONSE_CODE, &responseCode);
  s.responseCode = responseCode;
  const char* type = nullptr;
  s.contentType.Clear();
  if (curl_easy_getinfo(s.curl, CURLINFO_CONTENT_TYPE, &type) == CURLE_OK && type)
    s.contentType.CopyBuf(type, -1);
  ORV_HTTP_STATUS status = StatusOf(code, s);
  OrvHttpNoteFinished(*s.run, s.url.buf);
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

ORV_HTTP_STATUS Fail(OrvHttpSession& s, ORV_HTTP_STATUS status, const char* reason) {
  s.failure.CopyBuf(reason, -1);
  if (s.noteFailures) OrvHttpNoteFailure(*s.run, s.url.buf, reason);
  return status;
}

}  // namespace

ORV_HTTP_STATUS OrvSessionFetch(OrvHttpSession& s, OrvHttpRunState& run, const OrvFetchPlan& plan) {
  s.run = &run;
  s.failure.Clear();
  s.noteFailures = plan.noteFailures;
  if (!s.curl) s.curl = curl_easy_init();
  if (!s.target) s.target = curl_url();
  if (!s.curl || !s.target) return Fail(s, ORV_HTTP_NETWORK, "out of resources");
  s.cut = plan.cutAt >= 0;

  int64_t transferMs = 0;  // so far in this fetch: the hops share one request timeout
  for (int32_t redirects = 0;; redirects++) {
    ORV_HTTP_STATUS status = OrvAimRequest(s.target, s.url.buf, s.aim);
    if (status != ORV_HTTP_OK) {
      if (redirects > 0) return Fail(s, ORV_HTTP_NETWORK, "redirect to a bad URL");
      return Fail(s, status, status == ORV_HTTP_BAD_REQUEST ? "not a URL" : "not an http(s) URL");
    }
    if (!OrvHttpHostAllowed(run, s.aim)) return Fail(s, ORV_HTTP_HOST_REFUSED, "host not allowed");
    OrvHttpOrigin* origin = nullptr;
    if (plan.obeyRobots && OrvHttpObeysRobots(run)) {
      int allowed = 1;
      OrvString why;
      status = OrvRobotsCheck(run, s.aim, s.target, origin, allowed, why);
      if (status != ORV_HTTP_OK) return Fail(s, status, why.buf);
      if (!allowed) {
        OrvHttpNoteRobotsRefused(run, s.url.buf);
        return Fail(s, ORV_HTTP_ROBOTS_REFUSED, why.buf);
      }
    }
    OrvHttpAdmission admission;
    const char* reason = nullptr;
    status = OrvHttpAdmit(run, s.url.buf, s.aim, redirects == 0 && plan.countFetch, origin,
                          admission, reason);
    if (status != ORV_HTTP_OK) return Fail(s, status, reason);
    s.maxBody = plan.cutAt >= 0 ? plan.cutAt : admission.settings.maxBodyBytes;
    const char* next = nullptr;
    CURLcode code = CURLE_OK;
    status = Transfer(s, admission, transferMs, next, code);
    if (!next) {
      if (status != ORV_HTTP_OK) {
        OrvString why;
        OrvDescribeFailure(admission, status, code, s.responseCode, why);
        Fail(s, status, why.buf);
      }
      return status;
    }
    int32_t most = plan.maxRedirects >= 0 ? plan.maxRedirects : admission.settings.maxRedirects;
    if (redirects >= most) return Fail(s, ORV_HTTP_NETWORK, "too many redirects");
    s.url.CopyBuf(next, -1);
  }
}
