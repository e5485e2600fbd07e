#include "orvwebpage/OrvHttp.h"

#include <curl/curl.h>

#include <climits>
#include <cstring>

#include "core/OrvMemory.h"
#include "platform/http/OrvCurlGlobal.h"
#include "platform/http/OrvHttpGate.h"

struct OrvHttpSession {
  CURL* curl = nullptr;
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

void SetOptions(OrvHttpSession& session, const OrvHttpAdmission& admission) {
  CURL* curl = session.curl;
  const OrvHttpSettings& settings = admission.settings;
  const char* agent =
      settings.userAgent[0] ? settings.userAgent : OrvHttpLimits::DefaultUserAgent();
  curl_easy_setopt(curl, CURLOPT_URL, session.url.buf);
  curl_easy_setopt(curl, CURLOPT_HTTPGET, 1L);
  curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(curl, CURLOPT_VERBOSE, 0L);
  curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
  curl_easy_setopt(curl, CURLOPT_MAXREDIRS,
                   long(settings.maxRedirects < 0 ? 0 : settings.maxRedirects));
  curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(curl, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(curl, CURLOPT_NOPROXY, "127.0.0.1,localhost,::1");
  curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT_MS, long(admission.connectTimeoutMs));
  curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, long(admission.requestTimeoutMs));
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

}  // namespace

OrvHttp::OrvHttp() : session(OrvNew<OrvHttpSession>()) {}

OrvHttp::~OrvHttp() {
  if (session->curl) curl_easy_cleanup(session->curl);
  OrvDelete(session);
}

ORV_HTTP_STATUS OrvHttp::Run(char* url, long length, ORV_HTTP_METHOD method) {
  OrvHttpSession& s = *session;
  s.hasBody = 0;
  s.tooLarge = 0;
  s.responseCode = 0;
  s.body.Clear();
  s.contentType.Clear();
  if (method != ORV_HTTP_GET || !url) return ORV_HTTP_BAD_REQUEST;
  if (length < 0) length = Orvstrlen(url);
  // libcurl reads up to the first NUL, which would be another URL than asked.
  if (length == 0 || length > INT32_MAX - 1 || std::memchr(url, 0, size_t(length)))
    return ORV_HTTP_BAD_REQUEST;
  s.url.CopyBuf(url, length);

  OrvHttpAdmission admission;
  if (!OrvHttpAdmit(s.url.buf, admission)) return ORV_HTTP_BUDGET_SPENT;
  if (!OrvCurlGlobalInit()) {
    OrvHttpNoteFinished(s.url.buf);
    return ORV_HTTP_NETWORK;
  }
  if (!s.curl) s.curl = curl_easy_init();
  if (!s.curl) {
    OrvHttpNoteFinished(s.url.buf);
    return ORV_HTTP_NETWORK;
  }
  s.maxBody = admission.settings.maxBodyBytes;
  if (s.maxBody < 0) s.maxBody = 0;
  if (s.maxBody > INT32_MAX - 1) s.maxBody = INT32_MAX - 1;

  SetOptions(s, admission);
  CURLcode code = curl_easy_perform(s.curl);
  long responseCode = 0;
  curl_easy_getinfo(s.curl, CURLINFO_RESPONSE_CODE, &responseCode);
  s.responseCode = responseCode;
  const char* type = nullptr;
  if (curl_easy_getinfo(s.curl, CURLINFO_CONTENT_TYPE, &type) == CURLE_OK && type)
    s.contentType.CopyBuf(type, -1);
  ORV_HTTP_STATUS status = StatusOf(code, s);
  OrvHttpNoteFinished(s.url.buf);
  if (status != ORV_HTTP_OK) {
    s.body.Clear();
    return status;
  }
  s.hasBody = 1;
  return ORV_HTTP_OK;
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
