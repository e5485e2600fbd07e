#pragma once

#include "orvwebpage/OrvExport.h"
#include "orvwebpage/OrvHtml.h"
#include "orvwebpage/OrvItem.h"

struct OrvDocArena;

// The part of a page that OrvWebPageVisibleNodes and OrvVisibleBlocks read,
// for pages too large to hold whole: the text runs that IsVisibleText can
// accept (those whose parent is an element other than script, style and
// title) and the elements above them, with their `id` and `class` attributes,
// in document order. Elements with no such text inside make no item. Both
// classes give the same classes, texts and paths on it as on the whole tree
// of OrvHtml, in a fraction of the memory on pages heavy in markup.
class ORV_API OrvVisibleHtml {
 public:
  var_item* root = nullptr;

  OrvVisibleHtml();
  OrvVisibleHtml(const OrvVisibleHtml&) = delete;
  OrvVisibleHtml& operator=(const OrvVisibleHtml&) = delete;
  ~OrvVisibleHtml();

  // As OrvHtml::Open: any bytes are a page, a negative length means text is
  // NUL-terminated, contentType (null for none) decides the decoding before
  // the page's own declaration. 0 on success; otherwise no tree is held.
  int Open(const char* text, long length, ORV_CHARSET charset, const char* contentType = nullptr);
  // Drops the tree; harmless on a closed document. Always 0.
  int Close();

 private:
  OrvDocArena* arena = nullptr;
};
