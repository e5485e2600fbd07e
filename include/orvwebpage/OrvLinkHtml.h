#pragma once

#include "orvwebpage/OrvExport.h"
#include "orvwebpage/OrvHtml.h"
#include "orvwebpage/OrvItem.h"

struct OrvDocArena;

// The part of a page that OrvPageLinks reads, for pages too large to hold
// whole: its `a`, `area` and `base` elements with their `href` and `alt`
// attributes, and the text runs inside an `a` element, each under its nearest
// such ancestor, in document order. OrvPageLinks reads the same links from it as from the
// whole tree of OrvHtml, in a fraction of the memory on most pages.
class ORV_API OrvLinkHtml {
 public:
  var_item* root = nullptr;

  OrvLinkHtml();
  OrvLinkHtml(const OrvLinkHtml&) = delete;
  OrvLinkHtml& operator=(const OrvLinkHtml&) = delete;
  ~OrvLinkHtml();

  // As OrvHtml::Open: any bytes are a page, a negative length means text is
  // NUL-terminated, contentType (null for none) decides the decoding before
  // the page's own declaration. 0 on success; otherwise no tree is held.
  int Open(const char* text, long length, ORV_CHARSET charset, const char* contentType = nullptr);
  // Drops the tree; harmless on a closed document. Always 0.
  int Close();

 private:
  OrvDocArena* arena = nullptr;
};
