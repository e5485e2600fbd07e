#include "platform/http/OrvHostPatterns.h"

#include <climits>

namespace {

char Lower(char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; }

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

// Bytes that end or split a URL's authority can never be part of a host.
bool IsHostByte(unsigned char c) {
  if (c <= 0x20 || c == 0x7F) return false;
  switch (c) {
    case '/':
    case '?':
    case '#':
    case '@':
    case '*':
    case ',':
    case '\\':
      return false;
    default:
      return true;
  }
}

bool IsBracketed(const char* host, long length) {
  return length > 2 && host[0] == '[' && host[length - 1] == ']';
}

// "1" to "65535" without sign or leading zero; anything else gives 0.
int32_t ReadPort(const char* text, long length) {
  if (length < 1 || length > 5 || text[0] == '0') return 0;
  int32_t port = 0;
  for (long i = 0; i < length; i++) {
    if (text[i] < '0' || text[i] > '9') return 0;
    port = port * 10 + (text[i] - '0');
  }
  return port <= 65535 ? port : 0;
}

// One pattern between commas, blanks trimmed: gives its host (lower case,
// without a final dot) and port (0 for any), or false when it is malformed.
bool ReadPattern(const char* text, long length, OrvString& host, int32_t& port) {
  port = 0;
  long hostEnd = length;
  long colon = -1;
  for (long i = length - 1; i >= 0 && text[i] != ']'; i--) {
    if (text[i] == ':') {
      colon = i;
      break;
    }
  }
  if (colon >= 0) {
    port = ReadPort(text + colon + 1, length - colon - 1);
    if (!port) return false;
    hostEnd = colon;
  }
  long start = 0;
  bool wildcard = hostEnd >= 2 && text[0] == '*' && text[1] == '.';
  if (wildcard) start = 2;
  if (hostEnd > start && text[hostEnd - 1] == '.') hostEnd--;
  if (hostEnd <= start) return false;
  const char* name = text + start;
  long nameLength = hostEnd - start;
  bool bracketed = IsBracketed(name, nameLength);
  if (wildcard && bracketed) return false;
  for (long i = 0; i < nameLength; i++) {
    unsigned char c = static_cast<unsigned char>(name[i]);
    bool inBrackets = bracketed && i > 0 && i < nameLength - 1;
    if (!IsHostByte(c) || ((c == '[' || c == ']') && !bracketed) || (c == ':' && !inBrackets))
      return false;
  }
  host.CopyBuf(wildcard ? "*." : "", wildcard ? 2 : 0);
  for (long i = 0; i < nameLength; i++) host += Lower(name[i]);
  return true;
}

bool SameText(const char* a, const char* b, long length) {
  for (long i = 0; i < length; i++)
    if (Lower(a[i]) != b[i]) return false;
  return true;
}

}  // namespace

bool OrvHostPatterns::Set(const char* patterns, long length) {
  if (!patterns) length = 0;
  if (length < 0) length = Orvstrlen(patterns);
  if (length > INT32_MAX / 2) return false;
  OrvString cleaned;
  cleaned.CopyBuf("", 0);
  OrvStrArray newHosts;
  std::vector<int32_t, OrvAllocator<int32_t>> newPorts;
  OrvString host;
  long blanks = 0;
  while (blanks < length && IsBlank(patterns[blanks])) blanks++;
  if (blanks < length) {
    for (long start = 0; start <= length;) {
      long end = start;
      while (end < length && patterns[end] != ',') end++;
      long from = start, to = end;
      while (from < to && IsBlank(patterns[from])) from++;
      while (to > from && IsBlank(patterns[to - 1])) to--;
      int32_t port = 0;
      if (!ReadPattern(patterns + from, to - from, host, port)) return false;
      newHosts.AddString(host.buf, host.len);
      newPorts.push_back(port);
      if (cleaned.len > 0) cleaned += ',';
      cleaned += host;
      if (port) {
        OrvString suffix;
        suffix.Format(":%d", int(port));
        cleaned += suffix;
      }
      start = end + 1;
    }
  }
  text = cleaned;
  hosts = newHosts;
  ports.swap(newPorts);
  return true;
}

bool OrvHostPatterns::Allows(const char* host, long length, long port) const {
  if (hosts.count == 0) return true;
  if (!host) return false;
  if (length < 0) length = Orvstrlen(host);
  if (length > 0 && host[length - 1] == '.') length--;
  if (length < 1) return false;
  for (int32_t i = 0; i < hosts.count; i++) {
    if (ports[size_t(i)] && ports[size_t(i)] != port) continue;
    const char* pattern = hosts[i];
    long patternLength = hosts.GetStringLen(i);
    if (patternLength >= 2 && pattern[0] == '*' && pattern[1] == '.') {
      // The dot before the domain is part of what must match: a.site.test, not asite.test.
      long tail = patternLength - 1;
      if (length > tail && SameText(host + length - tail, pattern + 1, tail)) return true;
    } else if (length == patternLength && SameText(host, pattern, length)) {
      return true;
    }
  }
  return false;
}
