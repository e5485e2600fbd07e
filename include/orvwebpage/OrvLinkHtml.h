#pragma once

#include "orvwebpage/OrvExport.h"
#include "orvwebpage/OrvHtml.h"
#include "orvwebpage/OrvItem.h"

struct OrvDocArena;

// Where OrvLinkHtml::Stream hands the tree as it is parsed: take gets the
// top-level items completed since its last call, with everything below them,
// which live until take returns. restart, when not null, is called when the
// page is read again from its start: what take got so far is to be forgotten.
struct OrvLinkSink {
  void (*take)(var_item* top, void* user);
  void (*restart)(void* user);
  void* user;
};

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
  // As Open, but hands the tree to sink as it is parsed instead of holding
  // it, so memory follows the largest link rather than the page; root stays
  // null. Items come in document order; OrvPageLinks::Add reads them.
  int Stream(const char* text, long length, ORV_CHARSET charset, const char* contentType,
             const OrvLinkSink& sink);
  // Drops the tree; harmless on a closed document. Always 0.
  int Close();

 private:
  OrvDocArena* arena = nullptr;
};
