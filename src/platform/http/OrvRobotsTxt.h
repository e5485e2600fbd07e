#pragma once

#include <cstdint>
#include <vector>

#include "core/OrvMemory.h"
#include "orvwebpage/OrvString.h"

// The rules of one robots.txt for one crawler: the groups whose user-agent
// is the crawler's product token (compared without regard to case), or the
// "*" groups when none is, merged into one list. A path is allowed unless its
// longest matching rule is a Disallow; an Allow of the same length wins.
class OrvRobotsTxt {
 public:
  // Files are read up to this many bytes; a line cut there is dropped.
  static constexpr long kMaxBytes = 500 * 1024;

  // Replaces the rules with those text gives the crawler whose User-Agent is
  // agent: its product token is the part before the first '/' or blank.
  void Parse(const char* text, long length, const char* agent, long agentLength);
  // No file, or one that could not be read: every path allowed, or none.
  void AllowAll();
  void DisallowAll();

  // path: the path and query of a URL as sent, "/" when empty.
  [[nodiscard]] bool Allows(const char* path, long length) const;
  // The Crawl-delay of the chosen groups, in milliseconds; 0 when none.
  int64_t CrawlDelayMs() const { return crawlDelayMs; }
  // The Sitemap lines of the whole file, in file order.
  const OrvStrArray& Sitemaps() const { return sitemaps; }

 private:
  struct Rule {
    OrvString pattern;  // percent-encoding normalised, '*' and a final '$' kept
    int allow;
  };
  std::vector<Rule, OrvAllocator<Rule>> rules;
  int disallowAll = 0;
  int64_t crawlDelayMs = 0;
  OrvStrArray sitemaps;
};

// Writes text to out with percent-encoding in one form: unreserved characters
// plain, other escapes in upper-case hex, bytes outside printable ASCII escaped.
void OrvNormalizeRobotsPath(const char* text, long length, OrvString& out);
