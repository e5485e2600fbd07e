#pragma once

#include "orvwebpage/OrvExport.h"
#include "orvwebpage/OrvHtml.h"
#include "orvwebpage/OrvItem.h"
#include "orvwebpage/OrvString.h"

// Resolves href against base as a browser does: leading and trailing control
// bytes and spaces are dropped and tabs and line breaks inside removed first;
// for http(s) a backslash before the query counts as a slash; scheme and host
// are lower-cased, a default port, "." and ".." segments dropped, and bytes a
// browser would escape are percent-encoded. A reference with a scheme other
// than http(s) (javascript:, mailto:, ...) is its own result. Negative lengths
// mean NUL-terminated texts. 1 with the absolute URL in out, or 0 with out
// empty when there is none (a relative href without a usable base, a host
// that cannot be).
ORV_API int OrvResolveUrl(const char* base, long baseLen, const char* href, long hrefLen,
                          OrvString& out);

class OrvPageLinksImpl;

// The links of a parsed page, as a crawler reads them: the `a` elements with
// an href and the `area` elements with an href, in document order, duplicates
// kept. Each href is resolved against the page's base: the first `<base
// href>` of the document resolved against the page URL, else the page URL.
// An `a` is labelled by the text below it, its runs joined by a space and
// every stretch of blanks made one space; an `area` by its alt text.
class ORV_API OrvPageLinks {
 public:
  OrvPageLinks();
  ~OrvPageLinks();
  OrvPageLinks(const OrvPageLinks&) = delete;
  OrvPageLinks& operator=(const OrvPageLinks&) = delete;

  // Replaces what was read before. root is the first top-level item of the
  // page (null for none); pageUrl may be empty. Without a usable base every
  // href is kept as written, and so is an href that does not resolve.
  // Always 1.
  int Read(var_item* root, const char* pageUrl, long len);

  // The same reading in steps, for a page handed over a part at a time (see
  // OrvLinkHtml::Stream): Begin forgets what was read before, each Add reads
  // a forest of complete top-level items that follow the ones added before,
  // in document order, and End resolves the links, as Read does. Items need
  // not outlive Add. Get and HasBase read what End finished. End returns 1.
  void Begin(const char* pageUrl, long len);
  void Add(var_item* first);
  int End();
  // Between Begin and End: adds the links of a whole page, read while it is
  // parsed (OrvLinkHtml::Stream), so that no tree of it is held. text,
  // length, charset and contentType as for OrvLinkHtml::Open. 0 on success;
  // otherwise nothing of the page is added.
  int AddPage(const char* text, long length, ORV_CHARSET charset, const char* contentType);

  // 1 when the last Read had a base to resolve against.
  int HasBase() const;
  int GetCount() const;
  // 1 with link i (from 0), else 0 with both texts empty.
  int Get(int i, OrvString& url, OrvString& label) const;
  // As Get, but moves the texts out and leaves link i with empty ones: for a
  // reader that keeps the links elsewhere and wants no second copy alive.
  int Take(int i, OrvString& url, OrvString& label);

 private:
  OrvPageLinksImpl* impl;
};
