#pragma once

#include <string>
#include <vector>

// What one URL of the sample site serves, before it is written out as HTML.
// The same description gives the true page count, so what a crawler can reach
// and what the server sends never disagree.

struct SiteLink {
  std::string href;  // empty: shown as plain text (the current page of a pager)
  std::string label;
  std::string cls;   // class attribute; empty: none
  std::string note;  // short text beside the link, outside it
};

enum class SiteBlockKind {
  Heading,  // <h1>
  Note,     // short <p>; plain pages hold only these
  Body,     // long paragraphs side by side: what makes a page an article
  Links,    // a list of links, one per item
  Pager,    // a row of links labelled with page numbers
  Entries,  // a list of short texts without links
};

struct SiteBlock {
  SiteBlockKind kind = SiteBlockKind::Note;
  std::string cls;
  std::vector<std::string> texts;  // Heading, Note: texts[0]; Body, Entries: one per item
  std::vector<SiteLink> links;     // Links, Pager
};

struct SitePage {
  int status = 200;
  std::string contentType = "text/html; charset=utf-8";
  std::string title;
  std::vector<std::string> scripts;  // src of script elements in the head
  std::vector<SiteBlock> blocks;
  std::string raw;  // the body of anything that is not an HTML page

  bool IsHtmlPage() const { return status == 200 && raw.empty(); }
};
