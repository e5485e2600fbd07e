#pragma once

#include <cstdint>
#include <vector>

#include "core/OrvMemory.h"
#include "orvwebpage/OrvString.h"

// The hosts requests may go to, read from text like "site.test,*.site.test:8080".
// A pattern is a host, or "*." and a domain for every host below that domain
// (not the domain itself), with ":PORT" when only that port will do. Hosts
// compare without regard to ASCII case or a final dot.
class OrvHostPatterns {
 public:
  // Replaces the patterns. Gives false, keeping the old ones, when a pattern is
  // malformed. Empty text (or only blanks) leaves no pattern: every host is allowed.
  [[nodiscard]] bool Set(const char* text, long length);
  // The patterns as Set took them, cleaned: lower case, comma between them.
  const OrvString& Text() const { return text; }
  // host as libcurl gives it (IPv6 in brackets), port the one connected to.
  [[nodiscard]] bool Allows(const char* host, long length, long port) const;

 private:
  OrvString text;
  OrvStrArray hosts;  // lower case, without a final dot; "*." kept in front
  std::vector<int32_t, OrvAllocator<int32_t>> ports;  // 0: any port
};
