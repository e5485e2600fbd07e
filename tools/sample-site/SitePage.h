#pragma once

#include <cstdint>
#include <string>
#include <utility>
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

// A request target split into its path and its query parameters, in order.
struct SiteRequest {
  std::string path;
  std::vector<std::pair<std::string, std::string>> params;

  // The value of the first parameter of that name, or nullptr.
  const std::string* Param(const std::string& name) const;
  // Only the parameters named, each once and in the order given.
  bool HasExactly(const std::vector<std::string>& names) const;
};

// Splits "/path?a=1&b=2" (percent-decoding the path and the values).
SiteRequest ParseTarget(const std::string& target);

// A whole decimal number from 0 to 2^31 - 1 without sign, blanks or leading
// zeros; -1 for anything else.
int64_t ParseCount(const std::string* text);

SitePage NotFound();
SitePage Resource(const std::string& contentType, const std::string& body);
