#pragma once

#include "orvwebpage/OrvExport.h"
#include "orvwebpage/OrvItem.h"

// How Open turns the page's bytes into the texts of the tree.
enum ORV_CHARSET {
  // The bytes as they came: a byte above 127 stays that byte in texts and
  // attribute values, whatever the page declares. Characters that only a
  // reference can name (&euro;, &#x4E00;) stay in UTF-8.
  ORV_CHARSET_BYTES = 0,
  // Decoded into UTF-8 the way browsers read a page: by its byte-order mark,
  // else the charset of the Content-Type it came with (see OrvHtml::Open),
  // else its meta declaration, else as UTF-8 when it is valid UTF-8, else as
  // windows-1252.
  ORV_CHARSET_UTF8 = 1,
};

struct OrvDocArena;

// A parsed page: a forest of var_item records whose first top-level item is
// `root`, the first data member behind the table of virtual operations.
// The records live in memory owned by the document until Close or the
// destructor. Tag numbers: `a` ORV_TAG_LINK with its `href` attribute
// ORV_ATTR_LINK_TARGET, `script` ORV_TAG_NO_TEXT_A, `style` ORV_TAG_NO_TEXT_B,
// `title` ORV_TAG_NO_TEXT_C, text runs 0 named "$text"; every other element
// and attribute a number of its name that is none of those. Comments,
// processing instructions and the doctype make no items, nor do text runs
// made only of ASCII whitespace.
class ORV_API OrvBitsDoc {
 public:
  var_item* root;

  OrvBitsDoc();
  OrvBitsDoc(const OrvBitsDoc&) = delete;
  OrvBitsDoc& operator=(const OrvBitsDoc&) = delete;
  virtual ~OrvBitsDoc();

  // Drops the tree; harmless on a closed document. Always 0.
  virtual int Close();

 protected:
  // Parses text into the tree, closing any tree held before. 0 on success.
  int Build(char* text, long length, ORV_CHARSET charset, const char* contentType = nullptr);

 private:
  OrvDocArena* arena;
};

// The document of a crawled page.
class ORV_API OrvHtml : public OrvBitsDoc {
 public:
  OrvHtml();
  ~OrvHtml() override;

  // Any bytes are a page. A negative length means text is NUL-terminated.
  // 0 on success, when root holds the page's tree (null for a page without
  // items); otherwise no tree is held.
  virtual int Open(char* text, long length, ORV_CHARSET charset);
  // The same for a page fetched over HTTP: contentType is the response's
  // Content-Type (OrvHttp::GetContentType; null for none), whose charset
  // ORV_CHARSET_UTF8 takes before the page's own declaration.
  int Open(char* text, long length, ORV_CHARSET charset, const char* contentType);
};

// The document of a probed listing page; the same contract and tree as OrvHtml.
class ORV_API OrvHtmlDoc : public OrvBitsDoc {
 public:
  OrvHtmlDoc();
  ~OrvHtmlDoc() override;

  virtual int Open(char* text, long length, ORV_CHARSET charset);
};
