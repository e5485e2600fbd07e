#include "platform/http/OrvRobotsTxt.h"

#include <strings.h>

#include <cstring>
#include <string_view>

namespace {

using View = std::string_view;

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

View Trim(View text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

bool SameWord(View a, const char* b) {
  return a.size() == std::strlen(b) && strncasecmp(a.data(), b, a.size()) == 0;
}

// The product token at the start of a user-agent value: letters, '_' and '-'.
View ProductToken(View text) {
  size_t n = 0;
  while (n < text.size()) {
    char c = text[n];
    if (!((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '-')) break;
    n++;
  }
  return text.substr(0, n);
}

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

bool IsUnreserved(unsigned char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
         c == '.' || c == '_' || c == '~';
}

// Seconds as written ("5", "0.5"); -1 when the value is no number.
int64_t DelayMs(View text) {
  int64_t ms = 0;
  size_t i = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; i++)
    if (ms < int64_t(86400) * 1000) ms = ms * 10 + (text[i] - '0') * 1000;
  if (i == 0) return -1;
  if (i < text.size() && text[i] == '.') {
    int64_t scale = 100;
    for (i++; i < text.size() && text[i] >= '0' && text[i] <= '9'; i++, scale /= 10)
      ms += (text[i] - '0') * scale;
  }
  if (i != text.size()) return -1;
  return ms < int64_t(86400) * 1000 ? ms : int64_t(86400) * 1000;
}

// pattern (a final '$' anchors it at the end) against the start of path.
// Each '*'-separated piece is placed at its leftmost fit, which finds a match
// whenever there is one, in time linear per piece.
bool Matches(const OrvString& rule, const char* path, long length) {
  View pattern(rule.buf, size_t(rule.len));
  View text(path, size_t(length));
  bool anchored = !pattern.empty() && pattern.back() == '$';
  if (anchored) pattern.remove_suffix(1);
  size_t star = pattern.find('*');
  View first = pattern.substr(0, star);
  if (text.substr(0, first.size()) != first) return false;
  if (star == View::npos) return !anchored || text.size() == first.size();
  size_t at = first.size();
  pattern.remove_prefix(star + 1);
  for (;;) {
    star = pattern.find('*');
    View piece = pattern.substr(0, star);
    if (star == View::npos) {
      if (!anchored) return text.find(piece, at) != View::npos;
      return text.size() - at >= piece.size() && text.substr(text.size() - piece.size()) == piece;
    }
    size_t found = text.find(piece, at);
    if (found == View::npos) return false;
    at = found + piece.size();
    pattern.remove_prefix(star + 1);
  }
}

}  // namespace

void OrvNormalizeRobotsPath(const char* text, long length, OrvString& out) {
  static const char kHex[] = "0123456789ABCDEF";
  out.Clear();
  for (long i = 0; i < length; i++) {
    unsigned char c = static_cast<unsigned char>(text[i]);
    if (c == '%' && i + 2 < length && HexValue(text[i + 1]) >= 0 && HexValue(text[i + 2]) >= 0) {
      unsigned char value =
          static_cast<unsigned char>(HexValue(text[i + 1]) * 16 + HexValue(text[i + 2]));
      i += 2;
      if (IsUnreserved(value)) {
        out += char(value);
        continue;
      }
      c = value;
    } else if (c > 0x20 && c < 0x7f) {
      out += char(c);
      continue;
    }
    out += '%';
    out += kHex[c >> 4];
    out += kHex[c & 15];
  }
}

void OrvRobotsTxt::AllowAll() {
  rules.clear();
  disallowAll = 0;
  crawlDelayMs = 0;
  sitemaps.RemoveAll(0);
}

void OrvRobotsTxt::DisallowAll() {
  AllowAll();
  disallowAll = 1;
}

void OrvRobotsTxt::Parse(const char* text, long length, const char* agent, long agentLength) {
  AllowAll();
  if (!text || length < 0) length = 0;
  View agentText(agent ? agent : "",
                 agent ? size_t(agentLength < 0 ? std::strlen(agent) : size_t(agentLength)) : 0);
  View token = ProductToken(Trim(agentText));
  View file(text ? text : "", size_t(length));
  if (file.size() > size_t(kMaxBytes)) {
    file = file.substr(0, size_t(kMaxBytes));
    size_t end = file.find_last_of("\r\n");
    file = file.substr(0, end == View::npos ? 0 : end);
  }
  if (file.substr(0, 3) == "\xEF\xBB\xBF") file.remove_prefix(3);

  // Rules are kept for both kinds of group as they come; the "*" ones are
  // used only when no group names the token.
  std::vector<Rule, OrvAllocator<Rule>> starRules;
  int64_t starDelay = 0, ownDelay = 0;
  bool ownSeen = false;
  bool groupOwn = false, groupStar = false, inAgents = false;
  OrvString normal;
  while (!file.empty()) {
    size_t end = file.find_first_of("\r\n");
    View line = file.substr(0, end);
    file.remove_prefix(end == View::npos ? file.size() : end + 1);
    line = line.substr(0, line.find('#'));
    size_t colon = line.find(':');
    if (colon == View::npos) continue;
    View key = Trim(line.substr(0, colon)), value = Trim(line.substr(colon + 1));
    if (SameWord(key, "user-agent")) {
      if (!inAgents) groupOwn = groupStar = false;
      inAgents = true;
      View name = ProductToken(value);
      if (value == "*") {
        groupStar = true;
      } else if (!token.empty() && name.size() == token.size() &&
                 strncasecmp(name.data(), token.data(), name.size()) == 0) {
        groupOwn = ownSeen = true;
      }
      continue;
    }
    if (SameWord(key, "sitemap")) {
      if (!value.empty()) sitemaps.AddString(value.data(), long(value.size()));
      continue;
    }
    bool allow = SameWord(key, "allow");
    bool isRule = allow || SameWord(key, "disallow");
    bool isDelay = SameWord(key, "crawl-delay");
    if (!isRule && !isDelay) continue;
    inAgents = false;
    if (isDelay) {
      int64_t ms = DelayMs(value);
      if (groupOwn && ms > ownDelay) ownDelay = ms;
      if (groupStar && ms > starDelay) starDelay = ms;
      continue;
    }
    if (value.empty() || (!groupOwn && !groupStar)) continue;
    OrvNormalizeRobotsPath(value.data(), long(value.size()), normal);
    if (groupOwn) rules.push_back(Rule{normal, allow ? 1 : 0});
    if (groupStar) starRules.push_back(Rule{normal, allow ? 1 : 0});
  }
  if (!ownSeen) rules.swap(starRules);
  crawlDelayMs = ownSeen ? ownDelay : starDelay;
}

bool OrvRobotsTxt::Allows(const char* path, long length) const {
  if (disallowAll) return false;
  if (!path || length <= 0) path = "/", length = 1;
  OrvString normal;
  OrvNormalizeRobotsPath(path, length, normal);
  // The file itself is always there to be read.
  if (normal.len == 11 && std::memcmp(normal.buf, "/robots.txt", 11) == 0) return true;
  long best = -1;
  int allowed = 1;
  for (const Rule& rule : rules) {
    if (rule.pattern.len < best || (rule.pattern.len == best && !rule.allow)) continue;
    if (!Matches(rule.pattern, normal.buf, normal.len)) continue;
    best = rule.pattern.len;
    allowed = rule.allow;
  }
  return allowed != 0;
}
