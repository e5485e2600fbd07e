#include "size/OrvUrlShape.h"

#include <algorithm>

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
char Lower(char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; }

bool AllDigits(std::string_view s) {
  return !s.empty() && std::all_of(s.begin(), s.end(), IsDigit);
}

// Digits behind a short word: "page7", "index12".
bool WordAndNumber(std::string_view s, std::string_view& word) {
  size_t i = 0;
  while (i < s.size() && IsLetter(s[i])) ++i;
  if (i == 0 || i > 12 || !AllDigits(s.substr(i))) return false;
  word = s.substr(0, i);
  return true;
}

void AppendLower(OrvSizeText& out, std::string_view s) {
  for (char c : s) out += Lower(c);
}

// "#", "word#", or the name kept, or "*".
void SegmentShape(OrvSizeText& out, std::string_view s, bool keepName) {
  std::string_view word;
  if (AllDigits(s))
    out += '#';
  else if (WordAndNumber(s, word))
    AppendLower(out, word), out += '#';
  else if (keepName && s.size() <= 24)
    AppendLower(out, s);
  else
    out += '*';
}

constexpr size_t kLongestPagerUrl = 2048;
constexpr size_t kMostSlots = 4;

constexpr std::string_view kNotPages[] = {
    "jpg",  "jpeg", "png", "gif",  "webp", "svg", "ico",  "bmp",   "tif", "tiff", "css", "js",
    "json", "xml",  "rss", "atom", "txt",  "pdf", "zip",  "gz",    "tgz", "bz2",  "xz",  "7z",
    "rar",  "tar",  "mp3", "mp4",  "m4a",  "ogg", "wav",  "webm",  "avi", "mov",  "doc", "docx",
    "xls",  "xlsx", "ppt", "pptx", "odt",  "ods", "woff", "woff2", "ttf", "eot",  "exe", "dmg",
    "iso",  "deb",  "rpm", "epub", "csv",  "map", "swf",  "bin"};

}  // namespace

OrvSizeText OrvLocalPart(std::string_view url) {
  size_t colon = url.find("://");
  if (colon == std::string_view::npos) return {};
  OrvSizeText scheme;
  AppendLower(scheme, url.substr(0, colon));
  if (scheme != "http" && scheme != "https") return {};
  size_t slash = url.find_first_of("/?#", colon + 3);
  std::string_view rest = slash == std::string_view::npos ? "/" : url.substr(slash);
  rest = rest.substr(0, rest.find('#'));
  size_t q = rest.find('?');
  OrvSizeText out;
  if (!rest.empty() && rest[0] != '/') out += '/';
  out.append(rest.substr(0, q));
  if (q == std::string_view::npos) return out;
  OrvSizeList<std::string_view> pairs;
  std::string_view query = rest.substr(q + 1);
  for (size_t start = 0; start <= query.size();) {
    size_t amp = query.find('&', start);
    if (amp == std::string_view::npos) amp = query.size();
    if (amp > start) pairs.push_back(query.substr(start, amp - start));
    start = amp + 1;
  }
  std::stable_sort(pairs.begin(), pairs.end(), [](std::string_view a, std::string_view b) {
    return a.substr(0, a.find('=')) < b.substr(0, b.find('='));
  });
  for (size_t i = 0; i < pairs.size(); ++i) out += i ? '&' : '?', out.append(pairs[i]);
  return out;
}

bool OrvIsPageLike(std::string_view local) {
  std::string_view path = local.substr(0, local.find('?'));
  std::string_view last = path.substr(path.rfind('/') + 1);
  size_t dot = last.rfind('.');
  if (dot != std::string_view::npos) {
    OrvSizeText ext;
    AppendLower(ext, last.substr(dot + 1));
    for (std::string_view bad : kNotPages)
      if (ext == bad) return false;
  }
  // Feeds and comment feeds, by path or by query.
  if (path.ends_with("/feed") || path.ends_with("/feed/") || path.find("/feed/") != path.npos)
    return false;
  if (local.find("?feed=") != local.npos || local.find("&feed=") != local.npos) return false;
  return true;
}

OrvSizeText OrvShapeOf(std::string_view local) {
  size_t q = local.find('?');
  std::string_view path = local.substr(0, q);
  OrvSizeList<std::string_view> parts;
  for (size_t start = 0; start < path.size();) {
    size_t slash = path.find('/', start);
    if (slash == std::string_view::npos) slash = path.size();
    if (slash > start) parts.push_back(path.substr(start, slash - start));
    start = slash + 1;
  }
  bool trailing = !path.empty() && path.back() == '/';
  OrvSizeText out;
  for (size_t i = 0; i < parts.size(); ++i) {
    bool isFile = i + 1 == parts.size() && !trailing;
    if (i) out += '/';
    if (isFile) {
      std::string_view name = parts[i];
      size_t dot = name.rfind('.');
      std::string_view stem = name.substr(0, dot);
      bool index = stem == "index" || stem == "default" || stem == "home";
      SegmentShape(out, stem, index);
      if (dot != std::string_view::npos) out += '.', AppendLower(out, name.substr(dot + 1));
    } else {
      bool beforeMore = i + 1 < parts.size();
      bool beforeNumber = beforeMore && AllDigits(parts[i + 1]);
      SegmentShape(out, parts[i], beforeMore && (i == 0 || beforeNumber));
    }
  }
  if (trailing && !parts.empty()) out += '/';
  if (q == std::string_view::npos) return out;
  OrvSizeList<std::string_view> names;
  std::string_view query = local.substr(q + 1);
  for (size_t start = 0; start <= query.size();) {
    size_t amp = query.find('&', start);
    if (amp == std::string_view::npos) amp = query.size();
    std::string_view pair = query.substr(start, amp - start);
    std::string_view name = pair.substr(0, pair.find('='));
    if (!name.empty() && std::find(names.begin(), names.end(), name) == names.end())
      names.push_back(name);
    start = amp + 1;
  }
  std::sort(names.begin(), names.end());
  out += '?';
  for (size_t i = 0; i < names.size(); ++i) out += i ? "," : "", out.append(names[i]);
  return out;
}

OrvSizeText OrvLooseShape(std::string_view shape) {
  size_t slash = shape.find('/');
  size_t query = shape.find('?');
  if (slash == std::string_view::npos || (query != std::string_view::npos && query < slash))
    return OrvSizeText(shape);
  OrvSizeText out("*");
  out.append(shape.substr(slash));
  return out;
}

void OrvNumberSlots(std::string_view local, OrvSizeList<OrvNumberSlot>& slots) {
  slots.clear();
  // A page number sits near the end of a URL of ordinary length; looking no
  // further keeps a URL of a thousand numbers as cheap as any other.
  if (local.size() > kLongestPagerUrl) return;
  size_t runs = 0;
  for (size_t i = local.size(); i > 0 && runs < kMostSlots; --i)
    if (IsDigit(local[i - 1]) && (i == 1 || !IsDigit(local[i - 2]))) ++runs;
  size_t skip = 0;
  for (size_t i = 0, seen = 0; i < local.size(); ++i)
    if (IsDigit(local[i]) && (i == 0 || !IsDigit(local[i - 1])) && ++seen) skip = seen;
  skip = skip > runs ? skip - runs : 0;
  for (size_t i = 0; i < local.size();) {
    if (!IsDigit(local[i])) {
      ++i;
      continue;
    }
    size_t end = i;
    while (end < local.size() && IsDigit(local[end])) ++end;
    // Longer runs are ids or dates, never a page number worth probing.
    if (skip) {
      --skip;
    } else if (end - i <= 9) {
      OrvNumberSlot slot;
      slot.pattern.append(local.substr(0, i)).append("{}").append(local.substr(end));
      for (size_t k = i; k < end; ++k) slot.value = slot.value * 10 + (local[k] - '0');
      slot.padded = local[i] == '0' && end - i > 1;
      slot.last = local.find_first_of("0123456789", end) == std::string_view::npos;
      slots.push_back(std::move(slot));
    }
    i = end;
  }
}

int64_t OrvMatchPattern(std::string_view pattern, std::string_view local) {
  size_t hole = pattern.find("{}");
  if (hole == std::string_view::npos) return -1;
  std::string_view head = pattern.substr(0, hole), tail = pattern.substr(hole + 2);
  if (local.size() <= head.size() + tail.size() || !local.starts_with(head) ||
      !local.ends_with(tail))
    return -1;
  std::string_view digits = local.substr(head.size(), local.size() - head.size() - tail.size());
  if (!AllDigits(digits) || digits.size() > 9) return -1;
  int64_t value = 0;
  for (char c : digits) value = value * 10 + (c - '0');
  return value;
}

OrvSizeText OrvFillPattern(std::string_view pattern, int64_t n) {
  size_t hole = pattern.find("{}");
  OrvSizeText out(pattern.substr(0, hole));
  if (hole == std::string_view::npos) return out;
  char digits[24];
  int len = 0;
  uint64_t v = n < 0 ? 0 : uint64_t(n);
  do digits[len++] = char('0' + v % 10), v /= 10;
  while (v);
  while (len) out += digits[--len];
  out.append(pattern.substr(hole + 2));
  return out;
}
