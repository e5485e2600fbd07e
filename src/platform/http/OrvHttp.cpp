#include "orvwebpage/OrvHttp.h"

#include <climits>
#include <cstring>
#include <utility>

#include "core/OrvMemory.h"
#include "platform/http/OrvCurlGlobal.h"
#include "platform/http/OrvHttpGate.h"
#include "platform/http/OrvHttpRunState.h"
#include "platform/http/OrvHttpSession.h"

OrvHttp::OrvHttp() : session(OrvNew<OrvHttpSession>()) {}

OrvHttp::~OrvHttp() { OrvDelete(session); }

ORV_HTTP_STATUS OrvHttp::Run(char* url, long length, ORV_HTTP_METHOD method) {
  OrvHttpSession& s = *session;
  OrvHttpRunState& run = OrvCurrentRun();
  s.run = &run;
  s.hasBody = 0;
  s.responseCode = 0;
  s.body.Clear();
  s.contentType.Clear();
  if (method != ORV_HTTP_GET || !url) {
    OrvHttpNoteFailure(run, "", "bad request");
    return ORV_HTTP_BAD_REQUEST;
  }
  if (length < 0) length = Orvstrlen(url);
  // libcurl reads up to the first NUL, which would be another URL than asked.
  if (length == 0 || length > INT32_MAX - 1 || std::memchr(url, 0, size_t(length))) {
    OrvHttpNoteFailure(run, "", "not a URL");
    return ORV_HTTP_BAD_REQUEST;
  }
  s.url.CopyBuf(url, length);
  if (!OrvCurlGlobalInit()) {
    OrvHttpNoteFailure(run, s.url.buf, "network library unavailable");
    return ORV_HTTP_NETWORK;
  }
  return OrvSessionFetch(s, run, OrvFetchPlan());
}

int OrvHttp::GetBody(OrvString& body) {
  if (!session->hasBody) {
    body.CopyBuf("", 0);
    return 0;
  }
  body.CopyBuf(session->body.buf, session->body.len);
  return 1;
}

int OrvHttp::TakeBody(OrvString& body) {
  if (!session->hasBody) {
    body.CopyBuf("", 0);
    return 0;
  }
  body = std::move(session->body);
  session->body = OrvString();
  return 1;
}

long OrvHttp::GetResponseCode() const { return session->responseCode; }

int OrvHttp::GetContentType(OrvString& type) {
  type.CopyBuf(session->contentType.buf, session->contentType.len);
  return session->contentType.len > 0 ? 1 : 0;
}
