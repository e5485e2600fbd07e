#include "SiteText.h"

#include <cctype>

namespace {

const char* const kWords[] = {
    "market",   "river",   "garden",  "council", "station",  "winter",  "harbour", "museum",
    "village",  "engine",  "letter",  "window",  "forest",   "bridge",  "school",  "doctor",
    "season",   "island",  "summer",  "kitchen", "festival", "record",  "signal",  "library",
    "mountain", "factory", "weather", "journey", "theatre",  "orchard", "railway", "canal",
    "report",   "answer",  "number",  "result",  "review",   "design",  "planet",  "silver",
    "quiet",    "early",   "bright",  "narrow",  "local",    "public",  "famous",  "ancient",
    "modern",   "simple",  "careful", "sudden",  "gentle",   "steady",  "open",    "long",
    "builds",   "opens",   "closes",  "follows", "reaches",  "changes", "carries", "shows",
    "finds",    "keeps",   "meets",   "leaves",  "brings",   "turns",   "holds",   "moves",
    "the",      "a",       "of",      "in",      "on",       "for",     "with",    "near",
    "after",    "before",  "under",   "over",
};
constexpr int kWordCount = sizeof(kWords) / sizeof(kWords[0]);

int NonBlank(const std::string& text) {
  int n = 0;
  for (unsigned char c : text) n += std::isspace(c) ? 0 : 1;
  return n;
}

}  // namespace

std::string SiteWord(SiteRandom& random) { return kWords[random.Between(0, kWordCount - 1)]; }

std::string SiteTitle(SiteRandom& random, int words) {
  std::string title;
  for (int i = 0; i < words; ++i) {
    std::string word = SiteWord(random);
    if (i == 0) word[0] = char(std::toupper(static_cast<unsigned char>(word[0])));
    if (i) title += ' ';
    title += word;
  }
  return title;
}

std::string SiteParagraph(SiteRandom& random, int minBytes) {
  std::string text;
  while (NonBlank(text) < minBytes) {
    if (!text.empty()) text += ' ';
    text += SiteTitle(random, int(random.Between(6, 14)));
    text += random.Chance(20) ? ", and so on." : ".";
  }
  return text;
}
