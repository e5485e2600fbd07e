#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "UrlTestSupport.h"
#include "orvwebpage/OrvWebPageUrl.h"

namespace {

// The parse written step by step with the string operations, on a private
// copy that is cut again and again: trim, scheme in the first 11 bytes, host
// up to the next slash, fragment at the last '#', query at the first '?'.
// The record's own parse scans views instead; both must give the same fields.
std::string ReferenceSummary(const std::string& input) {
  OrvString whole(input.data(), long(input.size()));
  whole.TrimBanks();
  OrvString url(whole.buf, -1);  // read as a C text, up to the first NUL

  std::string scheme, host;
  long pos = 0;
  for (long i = 0; i < url.len && i < 11; i++) {
    if (url.buf[i] == ':') {
      scheme.assign(url.buf, size_t(i));
      pos = i + 1;
      break;
    }
  }
  OrvString rest(url.buf + pos, -1);
  if (rest.len >= 2) {
    if (rest.buf[0] == '/' && rest.buf[1] == '/') rest.CutBefore(2);
    if (rest.len > 0) {
      int slash = rest.Findc('/', 0);
      if (slash >= 0) {
        host.assign(rest.buf, size_t(slash));
        rest.CutBefore(slash + 1);
      } else {
        host.assign(rest.buf, size_t(rest.len));
        rest.Clear();
      }
    }
  }

  int hash = rest.RightFindc('#', -1);
  if (hash > 0) rest.Cutlen(hash);
  std::string params;
  int question = rest.Findc('?', 0);
  if (question > 0) {
    OrvString query(rest.buf + question + 1, -1);
    rest.Cutlen(question);
    query.ReplaceAll("&amp;", 5, "&", 1);
    OrvStrArray pairs, tokens;
    pairs.Split(query.buf, '&');
    int added = 0;
    for (int32_t i = 0; i < pairs.count; i++) {
      tokens.Split(pairs[i], '=');
      if (tokens.count == 0) continue;
      OrvString name(tokens[0], -1);
      name.ChangeToChar();
      params += (added++ ? "&" : "") + Str(name) + "=" + (tokens.count >= 2 ? tokens[1] : "");
    }
  }
  std::string dirs;
  const char* p = rest.buf;
  while (const char* slash = std::strchr(p, '/')) {
    if (slash > p) dirs += (dirs.empty() ? "" : ",") + std::string(p, size_t(slash - p));
    p = slash + 1;
  }
  OrvString stem(p, -1), ext;
  int dot = stem.RightFindc('.', -1);
  if (dot >= 0) {
    ext.CopyBuf(stem.buf + dot + 1, -1);
    stem.Cutlen(dot);
  }
  return scheme + " | " + host + " | " + dirs + " | " + Str(stem) + " | " + Str(ext) + " | " +
         params;
}

std::vector<std::string> Inputs() {
  std::vector<std::string> inputs;
  std::ifstream links(ORV_DATA_DIR "/links.txt", std::ios::binary);
  for (std::string line; std::getline(links, line);) inputs.push_back(line);
  EXPECT_GT(inputs.size(), 10000u) << "links.txt not found under " ORV_DATA_DIR;
  // Short texts over the bytes that steer the parse.
  const std::string alphabet = std::string("/:?#&=.%;a1 ") + '\0' + "\t\xff";
  std::mt19937 random(99);
  for (int i = 0; i < 20000; i++) {
    std::string s;
    // Mostly short, some across the 64-byte words of the parser's masks.
    size_t n = i % 4 ? random() % 24 : random() % 400;
    for (size_t k = 0; k < n; k++) s += alphabet[random() % alphabet.size()];
    if (random() % 3 == 0) s.insert(random() % (s.size() + 1), "&amp;");
    inputs.push_back(s);
  }
  return inputs;
}

TEST(OrvWebPageUrl, SameFieldsAsTheStepByStepParse) {
  OrvWebPageUrl reused;
  int mismatches = 0;
  for (const std::string& input : Inputs()) {
    reused.url.CopyBuf(input.data(), long(input.size()));
    reused.Parse(0);
    if (Summary(reused) != ReferenceSummary(input) && ++mismatches <= 10)
      ADD_FAILURE() << "[" << input << "]\n got  " << Summary(reused) << "\n want "
                    << ReferenceSummary(input);
  }
  EXPECT_EQ(mismatches, 0);
}

}  // namespace
