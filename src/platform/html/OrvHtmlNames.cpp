#include "platform/html/OrvHtmlNames.h"

#include <cstring>

#include "orvwebpage/OrvItem.h"

namespace {

// Sorted; an element's number is 100 plus its index unless fixed below.
const char* const kTags[] = {
    "a",        "abbr",    "acronym",    "address",  "applet",   "area",     "article",
    "aside",    "audio",   "b",          "base",     "basefont", "bdi",      "bdo",
    "big",      "blink",   "blockquote", "body",     "br",       "button",   "canvas",
    "caption",  "center",  "cite",       "code",     "col",      "colgroup", "data",
    "datalist", "dd",      "del",        "details",  "dfn",      "dialog",   "dir",
    "div",      "dl",      "dt",         "em",       "embed",    "fieldset", "figcaption",
    "figure",   "font",    "footer",     "form",     "frame",    "frameset", "h1",
    "h2",       "h3",      "h4",         "h5",       "h6",       "head",     "header",
    "hgroup",   "hr",      "html",       "i",        "iframe",   "img",      "input",
    "ins",      "isindex", "kbd",        "label",    "legend",   "li",       "link",
    "main",     "map",     "mark",       "marquee",  "menu",     "meta",     "meter",
    "nav",      "nobr",    "noembed",    "noframes", "noscript", "object",   "ol",
    "optgroup", "option",  "output",     "p",        "param",    "picture",  "pre",
    "progress", "q",       "rp",         "rt",       "ruby",     "s",        "samp",
    "script",   "search",  "section",    "select",   "slot",     "small",    "source",
    "span",     "strike",  "strong",     "style",    "sub",      "summary",  "sup",
    "svg",      "table",   "tbody",      "td",       "template", "textarea", "tfoot",
    "th",       "thead",   "time",       "title",    "tr",       "track",    "tt",
    "u",        "ul",      "var",        "video",    "wbr",      "xmp",
};

// Sorted; an attribute's number is 100 plus its index unless fixed below.
const char* const kAttrs[] = {
    "accept",   "action",     "align",    "alt",      "aria-hidden", "aria-label", "async",
    "bgcolor",  "border",     "charset",  "checked",  "class",       "color",      "cols",
    "colspan",  "content",    "data-src", "datetime", "defer",       "dir",        "disabled",
    "download", "enctype",    "face",     "for",      "height",      "hidden",     "href",
    "hreflang", "http-equiv", "id",       "itemprop", "lang",        "loading",    "media",
    "method",   "name",       "onclick",  "onload",   "placeholder", "property",   "rel",
    "role",     "rows",       "rowspan",  "sizes",    "src",         "srcset",     "style",
    "tabindex", "target",     "title",    "type",     "valign",      "value",      "width",
};

int Find(const char* const* table, int count, const char* name) {
  int lo = 0;
  int hi = count - 1;
  while (lo <= hi) {
    int mid = (lo + hi) / 2;
    int c = std::strcmp(table[mid], name);
    if (c == 0) return mid;
    if (c < 0) {
      lo = mid + 1;
    } else {
      hi = mid - 1;
    }
  }
  return -1;
}

uint16_t NumberOfUnknown(const char* name) {
  uint32_t h = 2166136261u;
  for (const unsigned char* p = reinterpret_cast<const unsigned char*>(name); *p; p++) {
    h = (h ^ *p) * 16777619u;
  }
  return static_cast<uint16_t>(1000u + h % 60000u);
}

}  // namespace

uint16_t OrvHtmlTagNumber(const char* name) {
  if (std::strcmp(name, "a") == 0) return ORV_TAG_LINK;
  if (std::strcmp(name, "script") == 0) return ORV_TAG_NO_TEXT_A;
  if (std::strcmp(name, "style") == 0) return ORV_TAG_NO_TEXT_B;
  if (std::strcmp(name, "title") == 0) return ORV_TAG_NO_TEXT_C;
  int i = Find(kTags, int(sizeof(kTags) / sizeof(kTags[0])), name);
  return i >= 0 ? static_cast<uint16_t>(100 + i) : NumberOfUnknown(name);
}

uint16_t OrvHtmlAttrNumber(const char* name) {
  if (std::strcmp(name, "href") == 0) return ORV_ATTR_LINK_TARGET;
  int i = Find(kAttrs, int(sizeof(kAttrs) / sizeof(kAttrs[0])), name);
  return i >= 0 ? static_cast<uint16_t>(100 + i) : NumberOfUnknown(name);
}
