#include "pagelinks/OrvUrlResolver.h"

#include <cstdint>

#include "orvwebpage/OrvPageLinks.h"

namespace {

// Beyond this an href is no link anyone follows, and the text lengths stay
// far from the 32-bit limit while it is escaped.
constexpr long kLongestHref = 1L << 24;

enum Part { kPath, kQuery, kFragment };

char Lower(char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; }

bool IsAlpha(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// The bytes a browser percent-encodes in each part of a special URL.
bool Escaped(unsigned char c, Part part) {
  if (c <= 0x20 || c >= 0x7F || c == '"' || c == '<' || c == '>') return true;
  switch (part) {
    case kPath:
      return c == '`' || c == '{' || c == '}';
    case kQuery:
      return c == '\'';
    case kFragment:
      return c == '`';
  }
  return false;
}

void AppendEscaped(OrvString& out, const char* text, long length, Part part) {
  static const char kHex[] = "0123456789ABCDEF";
  for (long i = 0; i < length; i++) {
    unsigned char c = static_cast<unsigned char>(text[i]);
    if (Escaped(c, part)) {
      char code[3] = {'%', kHex[c >> 4], kHex[c & 15]};
      out.Append(code, 3);
    } else {
      out += char(c);
    }
  }
}

// Escapes path, query and fragment each by its own set. The query starts at
// the first '?' before any '#', the fragment at the first '#'.
void EscapeUrl(const OrvString& url, OrvString& out) {
  out.Clear();
  out.Reserve(url.len + 16);
  long hash = url.Findc('#', 0);
  long end = hash < 0 ? url.len : hash;
  long question = url.Findc('?', 0);
  if (question > end) question = -1;
  long pathEnd = question < 0 ? end : question;
  AppendEscaped(out, url.buf, pathEnd, kPath);
  if (question >= 0) AppendEscaped(out, url.buf + question, end - question, kQuery);
  if (hash >= 0) AppendEscaped(out, url.buf + hash, url.len - hash, kFragment);
}

// What a browser makes of an attribute value before parsing it.
void Clean(const char* text, long length, OrvString& out) {
  long from = 0, to = length;
  while (from < to && static_cast<unsigned char>(text[from]) <= 0x20) from++;
  while (to > from && static_cast<unsigned char>(text[to - 1]) <= 0x20) to--;
  out.Clear();
  out.Reserve(to - from);
  for (long i = from; i < to; i++)
    if (text[i] != '\t' && text[i] != '\n' && text[i] != '\r') out += text[i];
}

// Length of a leading "scheme:" without the colon, or 0.
long SchemeLength(const OrvString& url) {
  if (url.len == 0 || !IsAlpha(url.buf[0])) return 0;
  for (long i = 1; i < url.len; i++) {
    char c = url.buf[i];
    if (c == ':') return i;
    if (!IsAlpha(c) && !(c >= '0' && c <= '9') && c != '+' && c != '-' && c != '.') return 0;
  }
  return 0;
}

bool IsHttp(const char* scheme, long length) {
  return (length == 4 || length == 5) && Lower(scheme[0]) == 'h' && Lower(scheme[1]) == 't' &&
         Lower(scheme[2]) == 't' && Lower(scheme[3]) == 'p' &&
         (length == 4 || Lower(scheme[4]) == 's');
}

void SlashesForBackslashes(OrvString& url) {
  for (long i = 0; i < url.len && url.buf[i] != '?' && url.buf[i] != '#'; i++)
    if (url.buf[i] == '\\') url.buf[i] = '/';
}

// "scheme://" and what follows the slashes of text, which a browser skips
// however many there are.
void WithAuthority(const char* scheme, long schemeLength, const char* text, long length,
                   OrvString& out) {
  long skip = 0;
  while (skip < length && text[skip] == '/') skip++;
  out.Clear();
  for (long i = 0; i < schemeLength; i++) out += Lower(scheme[i]);
  out += "://";
  out.Append(text + skip, length - skip);
}

// The URL of a parsed handle, its host in lower case; 0 for an http(s) URL
// without a host.
int Finish(CURLU* handle, OrvString& out) {
  char* scheme = nullptr;
  char* host = nullptr;
  char* text = nullptr;
  int ok = 0;
  if (curl_url_get(handle, CURLUPART_SCHEME, &scheme, 0) == CURLUE_OK) {
    bool http = IsHttp(scheme, Orvstrlen(scheme));
    if (curl_url_get(handle, CURLUPART_HOST, &host, 0) == CURLUE_OK && host[0]) {
      bool upper = false;
      for (char* c = host; *c; c++) {
        upper |= *c != Lower(*c);
        *c = Lower(*c);
      }
      ok = !upper || curl_url_set(handle, CURLUPART_HOST, host, 0) == CURLUE_OK;
    } else {
      ok = !http;
    }
  }
  if (ok && curl_url_get(handle, CURLUPART_URL, &text, CURLU_NO_DEFAULT_PORT) == CURLUE_OK)
    out.CopyBuf(text, Orvstrlen(text));
  else
    ok = 0;
  curl_free(scheme);
  curl_free(host);
  curl_free(text);
  if (!ok) out.Clear();
  return ok;
}

}  // namespace

OrvUrlResolver::~OrvUrlResolver() { curl_url_cleanup(parsedBase); }

int OrvUrlResolver::ParseAbsolute(const OrvString& url, CURLU** handle) const {
  OrvString escaped;
  EscapeUrl(url, escaped);
  *handle = curl_url();
  if (*handle &&
      curl_url_set(*handle, CURLUPART_URL, escaped.buf, CURLU_NON_SUPPORT_SCHEME) == CURLUE_OK)
    return 1;
  curl_url_cleanup(*handle);
  *handle = nullptr;
  return 0;
}

int OrvUrlResolver::SetBase(const char* base, long length) {
  curl_url_cleanup(parsedBase);
  parsedBase = nullptr;
  baseScheme.Clear();
  baseUnfragmented.Clear();
  OrvString absolute;
  OrvUrlResolver none;
  if (!none.Resolve(base, length, absolute)) return 0;
  long schemeLength = SchemeLength(absolute);
  // Only a URL with a path takes relative references.
  if (absolute.len <= schemeLength + 2 || absolute.buf[schemeLength + 1] != '/' ||
      !ParseAbsolute(absolute, &parsedBase))
    return 0;
  baseScheme.CopyBuf(absolute.buf, schemeLength);
  CURLU* copy = curl_url_dup(parsedBase);
  int ok = copy && curl_url_set(copy, CURLUPART_FRAGMENT, nullptr, 0) == CURLUE_OK &&
           Finish(copy, baseUnfragmented);
  curl_url_cleanup(copy);
  if (!ok) {
    curl_url_cleanup(parsedBase);
    parsedBase = nullptr;
    baseScheme.Clear();
  }
  return ok;
}

int OrvUrlResolver::Resolve(const char* href, long length, OrvString& out) const {
  out.Clear();
  if (!href) length = 0;
  if (length < 0) length = Orvstrlen(href);
  if (length > kLongestHref) return 0;
  OrvString url;
  Clean(href, length, url);
  long schemeLength = SchemeLength(url);
  if (schemeLength && !IsHttp(url.buf, schemeLength)) {
    for (long i = 0; i < schemeLength; i++) url.buf[i] = Lower(url.buf[i]);
    out = url;
    return 1;
  }
  if (schemeLength) {
    SlashesForBackslashes(url);
    const char* rest = url.buf + schemeLength + 1;
    long restLength = url.len - schemeLength - 1;
    bool sameScheme = parsedBase && baseScheme.CapsIsEqual(url.buf, schemeLength);
    // "http:x" against an http base is a relative reference.
    if (sameScheme && !(restLength >= 2 && rest[0] == '/' && rest[1] == '/')) {
      OrvString relative(rest, restLength);
      return ResolveAgainstBase(relative, out);
    }
    OrvString absolute;
    WithAuthority(url.buf, schemeLength, rest, restLength, absolute);
    CURLU* handle = nullptr;
    int ok = ParseAbsolute(absolute, &handle) && Finish(handle, out);
    curl_url_cleanup(handle);
    return ok;
  }
  return ResolveAgainstBase(url, out);
}

int OrvUrlResolver::ResolveAgainstBase(OrvString& href, OrvString& out) const {
  if (!parsedBase) return 0;
  bool http = IsHttp(baseScheme.buf, baseScheme.len);
  if (http) SlashesForBackslashes(href);
  if (href.len == 0) {
    out = baseUnfragmented;
    return 1;
  }
  if (href.buf[0] == '#') {
    out = baseUnfragmented;
    AppendEscaped(out, href.buf, href.len, kFragment);
    return 1;
  }
  CURLU* handle = nullptr;
  int ok = 0;
  if (http && href.len >= 2 && href.buf[0] == '/' && href.buf[1] == '/') {
    OrvString absolute;
    WithAuthority(baseScheme.buf, baseScheme.len, href.buf, href.len, absolute);
    ok = ParseAbsolute(absolute, &handle) && Finish(handle, out);
  } else {
    OrvString escaped;
    EscapeUrl(href, escaped);
    handle = curl_url_dup(parsedBase);
    ok = handle &&
         curl_url_set(handle, CURLUPART_URL, escaped.buf, CURLU_NON_SUPPORT_SCHEME) == CURLUE_OK &&
         Finish(handle, out);
  }
  curl_url_cleanup(handle);
  if (!ok) out.Clear();
  return ok;
}

int OrvResolveUrl(const char* base, long baseLen, const char* href, long hrefLen, OrvString& out) {
  OrvUrlResolver resolver;
  resolver.SetBase(base, baseLen);
  return resolver.Resolve(href, hrefLen, out);
}
