#include <cstring>

#include "core/OrvGrowArray.h"
#include "url/OrvWebPageUrl.h"

// Works on (pointer, length) views of the text instead of a private copy that
// is cut again and again; the pieces are the same.

namespace {

const char* LastByte(const char* text, int32_t n, char c) {
  return n > 0 ? static_cast<const char*>(memrchr(text, c, size_t(n))) : nullptr;
}

const char* FirstByte(const char* text, int32_t n, char c) {
  return n > 0 ? static_cast<const char*>(std::memchr(text, c, size_t(n))) : nullptr;
}

void AddParams(const char* query, int32_t n, OrvUrlParam*& params, int32_t& paramCount,
               int32_t& paramCapacity) {
  // Pairs are the pieces between "&"; an empty one adds nothing. Inside a
  // pair, the name runs to the first "=", the value to the second.
  const char* end = query + n;
  const char* pair = query;
  while (true) {
    const char* amp = FirstByte(pair, int32_t(end - pair), '&');
    const char* pairEnd = amp ? amp : end;
    if (pairEnd > pair) {
      OrvUrlParam* p = OrvGrow::AddSlot(params, paramCount, paramCapacity);
      const char* eq = FirstByte(pair, int32_t(pairEnd - pair), '=');
      p->name.CopyBuf(pair, (eq ? eq : pairEnd) - pair);
      p->name.ChangeToChar();
      if (eq) {
        const char* valueEnd = FirstByte(eq + 1, int32_t(pairEnd - eq - 1), '=');
        p->value.CopyBuf(eq + 1, (valueEnd ? valueEnd : pairEnd) - eq - 1);
      } else {
        p->value.Clear();
      }
    }
    if (!amp) break;
    pair = amp + 1;
  }
}

}  // namespace

void OrvWebPageUrl::SplitPath(OrvStrArray& dirs, OrvString& stem, OrvString& ext,
                              OrvUrlParam*& params, int32_t& paramCount, int32_t& paramCapacity,
                              const char* text, long length) {
  int32_t n = 0;
  if (text) n = length < 0 ? int32_t(Orvstrlen(text)) : int32_t(length);
  // The parts end at a NUL, as in a C text.
  if (const char* nul = FirstByte(text, n, '\0')) n = int32_t(nul - text);

  // The last "#" cuts the fragment off, unless it is the first byte.
  const char* hash = LastByte(text, n, '#');
  if (hash && hash > text) n = int32_t(hash - text);

  paramCount = 0;
  // A "?" opens the query only behind the first byte.
  const char* question = FirstByte(text, n, '?');
  if (question && question > text) {
    const char* query = question + 1;
    int32_t queryLength = int32_t(text + n - query);
    n = int32_t(question - text);
    static const char kAmp[] = "&amp;";
    if (queryLength >= 5 && memmem(query, size_t(queryLength), kAmp, 5)) {
      OrvString decoded(query, queryLength);
      decoded.ReplaceAll(kAmp, 5, "&", 1);
      AddParams(decoded.buf, decoded.len, params, paramCount, paramCapacity);
    } else {
      AddParams(query, queryLength, params, paramCount, paramCapacity);
    }
  }

  // Every run that ends at a "/" is a directory, empty runs skipped; what
  // follows the last "/" is the file part.
  dirs.RemoveAll(0);
  const char* segment = text;
  const char* end = text + n;
  while (const char* slash = FirstByte(segment, int32_t(end - segment), '/')) {
    if (slash > segment) dirs.AddString(segment, slash - segment);
    segment = slash + 1;
  }

  // A dot at index 0 counts: ".htaccess" has an empty stem.
  int32_t fileLength = int32_t(end - segment);
  const char* dot = LastByte(segment, fileLength, '.');
  if (dot) {
    stem.CopyBuf(segment, dot - segment);
    ext.CopyBuf(dot + 1, end - dot - 1);
  } else {
    stem.CopyBuf(segment, fileLength);
    ext.Clear();
  }
}
