#include "orvwebpage/OrvUrlFilterExtractor.h"

#include <cstring>

namespace {

struct Pattern {
  const char* text;
  long length;
};

#define ORV_PATTERN(text) \
  Pattern { text, long(sizeof(text) - 1) }

// Families of file extensions, tried in this order. An extension picks the
// first row whose whole text holds it, punctuation included.
const Pattern kExtensionRows[] = {
    ORV_PATTERN("(.htm\\E,.html\\E,.phtml\\E,.shtml\\E,.jsp\\E,.php\\E,.asp\\E,.ksp\\E)"),
    ORV_PATTERN("(.jpg\\E,.png\\E,.ico\\E)"),
    ORV_PATTERN("(.js\\E,.css\\E)"),
    ORV_PATTERN("(.mp3\\E,.wma\\E)"),
    ORV_PATTERN("(.flv\\E,.gif\\E)"),
};
static_assert(sizeof("(.htm\\E,.html\\E,.phtml\\E,.shtml\\E,.jsp\\E,.php\\E,.asp\\E,.ksp\\E)") -
                  1 ==
              62);

const Pattern kNoExtension = ORV_PATTERN("(/\\S\\E,/\\E)");
const Pattern kOnDomain = ORV_PATTERN("\\$");
const Pattern kOffDomain = ORV_PATTERN("^\\$");
const Pattern kNoQuery = ORV_PATTERN("^?");
const Pattern kDirByClass[3] = {ORV_PATTERN("/\\S"), ORV_PATTERN("/\\s"), ORV_PATTERN("/\\d")};

#undef ORV_PATTERN

inline char FoldAscii(char c) { return (c >= 'A' && c <= 'Z') ? char(c + ('a' - 'A')) : c; }

// Plain substring search in which only the 26 ASCII letters fold.
bool ContainsCaseBlind(const char* text, long textLength, const char* needle, long needleLength) {
  if (needleLength > textLength) return false;
  for (long start = 0; start + needleLength <= textLength; start++) {
    long i = 0;
    while (i < needleLength && FoldAscii(text[start + i]) == FoldAscii(needle[i])) i++;
    if (i == needleLength) return true;
  }
  return false;
}

}  // namespace

OrvUrlFilterExtractor::OrvUrlFilterExtractor()
    : slots{ExtractHost, ExtractPath, ExtractExtension, ExtractQuery} {}

void OrvUrlFilterExtractor::HostTail(OrvString& tail, const char* text, long length) {
  tail.Clear();
  if (!text) return;
  // The dot is looked for up to the first NUL; one at or behind the length
  // does not count, so the scan may stop at the length too.
  long n = length < 0 ? Orvstrlen(text) : length;
  for (long i = 0; i < n && text[i] != '\0'; i++) {
    if (text[i] == '.') {
      tail.CopyBuf(text + i + 1, n - i - 1);
      return;
    }
  }
}

uint16_t OrvUrlFilterExtractor::FirstCharClass(const char* text, long length) {
  if (!text || length < 1) return 255;
  char c = text[0];
  if ((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z')) return 1;
  if (c >= '0' && c <= '9') return 2;
  return 0;
}

void OrvUrlFilterExtractor::ExtractHost(const OrvUrlFilterExtractor& self, OrvString& key,
                                        const OrvWebPageUrl& url) {
  if (self.entryDomain.len < 1) {
    HostTail(key, url.host.buf, url.host.len);
    return;
  }
  // A substring test: the domain may stand anywhere in the host, in its case.
  const Pattern& p =
      (url.host.len > 0 && url.host.Find(self.entryDomain.buf, self.entryDomain.len, 0) < 0)
          ? kOffDomain
          : kOnDomain;
  key.CopyBuf(p.text, p.length);
}

void OrvUrlFilterExtractor::ExtractPath(const OrvUrlFilterExtractor&, OrvString& key,
                                        const OrvWebPageUrl& url) {
  key.Clear();
  const OrvStrArray& dirs = url.dirs;
  for (int32_t i = 0; i < dirs.count; i++) {
    uint16_t cls = FirstCharClass(dirs[i], dirs.GetStringLen(i));
    if (cls < 3) key.Append(kDirByClass[cls].text, kDirByClass[cls].length);
  }
}

void OrvUrlFilterExtractor::ExtractExtension(const OrvUrlFilterExtractor&, OrvString& key,
                                             const OrvWebPageUrl& url) {
  key.Clear();
  const OrvString& ext = url.ext;
  if (ext.len < 1) {
    key.CopyBuf(kNoExtension.text, kNoExtension.length);
    return;
  }
  key.CopyBuf("/", 1);
  for (const Pattern& row : kExtensionRows) {
    if (ContainsCaseBlind(row.text, row.length, ext.buf, ext.len)) {
      key.Append(row.text, row.length);
      return;
    }
  }
}

void OrvUrlFilterExtractor::ExtractQuery(const OrvUrlFilterExtractor&, OrvString& key,
                                         const OrvWebPageUrl& url) {
  key.Clear();
  if (url.paramCount < 1) {
    key.CopyBuf(kNoQuery.text, kNoQuery.length);
    return;
  }
  key.Append("?", 1);
  key += url.params[0].name;
  for (int32_t i = 1; i < url.paramCount; i++) {
    key.Append(";&", 2);
    key += url.params[i].name;
  }
}
