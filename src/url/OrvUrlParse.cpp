#include <cstdint>
#include <cstring>

#include "core/OrvByteMasks.h"
#include "core/OrvGrowArray.h"
#include "orvwebpage/OrvWebPageUrl.h"

// The text is read through byte positions instead of private copies that are
// cut again and again; the pieces are the same. Parts end at the first NUL,
// as in a C text.

namespace {

// The blanks that TrimBanks takes off.
bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

enum UrlByte { kNul, kColon, kSlash, kHash, kQuestion, kDot };
constexpr char kUrlBytes[] = {'\0', ':', '/', '#', '?', '.'};
using UrlMasks = OrvByteMasks<sizeof kUrlBytes>;

enum QueryByte { kAmp, kEquals };
constexpr char kQueryBytes[] = {'&', '='};
using QueryMasks = OrvByteMasks<sizeof kQueryBytes>;

void AddPairs(const char* query, int32_t n, const QueryMasks& m, OrvUrlParam*& params,
              int32_t& paramCount, int32_t& paramCapacity) {
  // Pairs are the pieces between "&"; an empty one adds nothing. Inside a
  // pair, the name runs to the first "=", the value to the second.
  for (int32_t pair = 0;;) {
    int32_t amp = m.First(kAmp, pair, n);
    int32_t pairEnd = amp < 0 ? n : amp;
    if (pairEnd > pair) {
      OrvUrlParam* p = OrvGrowAddSlot(params, paramCount, paramCapacity);
      int32_t eq = m.First(kEquals, pair, pairEnd);
      p->name.CopyBuf(query + pair, (eq < 0 ? pairEnd : eq) - pair);
      p->name.ChangeToChar();
      if (eq >= 0) {
        int32_t valueEnd = m.First(kEquals, eq + 1, pairEnd);
        p->value.CopyBuf(query + eq + 1, (valueEnd < 0 ? pairEnd : valueEnd) - eq - 1);
      } else {
        p->value.Clear();
      }
    }
    if (amp < 0) break;
    pair = amp + 1;
  }
}

void AddParams(const char* query, int32_t n, OrvUrlParam*& params, int32_t& paramCount,
               int32_t& paramCapacity) {
  QueryMasks m(query, n, n, kQueryBytes);
  // "&amp;" stands for "&"; only then is the query rewritten before the split.
  for (int32_t amp = m.First(kAmp, 0, n); amp >= 0; amp = m.First(kAmp, amp + 1, n)) {
    if (n - amp >= 5 && std::memcmp(query + amp + 1, "amp;", 4) == 0) {
      OrvString decoded(query, n);
      decoded.ReplaceAll("&amp;", 5, "&", 1);
      QueryMasks dm(decoded.buf, decoded.len, decoded.len, kQueryBytes);
      AddPairs(decoded.buf, decoded.len, dm, params, paramCount, paramCapacity);
      return;
    }
  }
  AddPairs(query, n, m, params, paramCount, paramCapacity);
}

// SplitPath on text[pos, n), which holds no NUL. Inlined into Parse: the
// call with its ten arguments cost a measurable part of a short URL.
__attribute__((always_inline)) inline void SplitMasked(const UrlMasks& m, const char* text,
                                                       int32_t pos, int32_t n, OrvStrArray& dirs,
                                                       OrvString& stem, OrvString& ext,
                                                       OrvUrlParam*& params, int32_t& paramCount,
                                                       int32_t& paramCapacity) {
  // The last "#" cuts the fragment off, unless it is the first byte.
  int32_t hash = m.Last(kHash, pos, n);
  if (hash > pos) n = hash;

  paramCount = 0;
  // A "?" opens the query only behind the first byte.
  int32_t question = m.First(kQuestion, pos, n);
  if (question > pos) {
    AddParams(text + question + 1, n - question - 1, params, paramCount, paramCapacity);
    n = question;
  }

  // Every run that ends at a "/" is a directory, empty runs skipped; what
  // follows the last "/" is the file part.
  dirs.RemoveAll(0);
  int32_t segment = pos;
  for (int32_t slash = m.First(kSlash, pos, n); slash >= 0; slash = m.First(kSlash, slash + 1, n)) {
    if (slash > segment) dirs.AddString(text + segment, slash - segment);
    segment = slash + 1;
  }

  // A dot at index 0 counts: ".htaccess" has an empty stem.
  int32_t dot = m.Last(kDot, segment, n);
  if (dot >= 0) {
    stem.CopyBuf(text + segment, dot - segment);
    ext.CopyBuf(text + dot + 1, n - dot - 1);
  } else {
    stem.CopyBuf(text + segment, n - segment);
    ext.Clear();
  }
}

}  // namespace

void OrvWebPageUrl::SplitPath(OrvStrArray& dirs, OrvString& stem, OrvString& ext,
                              OrvUrlParam*& params, int32_t& paramCount, int32_t& paramCapacity,
                              const char* text, long length) {
  int32_t n = 0;
  if (text) n = length < 0 ? int32_t(Orvstrlen(text)) : int32_t(length);
  if (!text) text = "";
  UrlMasks m(text, n, n, kUrlBytes);
  int32_t nul = m.First(kNul, 0, n);
  SplitMasked(m, text, 0, nul < 0 ? n : nul, dirs, stem, ext, params, paramCount, paramCapacity);
}

void OrvWebPageUrl::Parse(uint8_t sortParams) {
  if (url.len > 0 && (IsBlank(url.buf[0]) || IsBlank(url.buf[url.len - 1]))) url.TrimBanks();

  const char* text = url.len > 0 ? url.buf : "";
  // The whole allocation may be read, which spares a copy of the last bytes.
  int32_t readable = url.cap > uint32_t(INT32_MAX) ? INT32_MAX : int32_t(url.cap);
  UrlMasks m(text, url.len, url.len > 0 ? readable : 0, kUrlBytes);
  int32_t n = m.First(kNul, 0, url.len);
  if (n < 0) n = url.len > 0 ? url.len : 0;

  // A scheme is 1 to 10 bytes of anything before a colon.
  int32_t pos = 0;
  int32_t colon = m.First(kColon, 0, n < 11 ? n : 11);
  if (colon >= 0) {
    scheme.CopyBuf(text, colon);
    pos = colon + 1;
  } else {
    scheme.Clear();
  }

  bool hostSet = false;
  if (n - pos >= 2) {
    if (text[pos] == '/' && text[pos + 1] == '/') pos += 2;
    if (pos < n) {
      int32_t slash = m.First(kSlash, pos, n);
      int32_t end = slash < 0 ? n : slash;
      host.CopyBuf(text + pos, end - pos);
      hostSet = true;
      pos = slash < 0 ? n : end + 1;
    }
  }
  if (!hostSet) host.Clear();

  SplitMasked(m, text, pos, n, dirs, stem, ext, params, paramCount, paramCapacity);
  if (sortParams && paramCount > 1) SortParams(params, 0, paramCount - 1, CompareParamNames);
}
