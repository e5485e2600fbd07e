#include "SiteRender.h"

namespace {

void Escaped(std::string& out, const std::string& text) {
  for (char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        out += c;
    }
  }
}

void ClassAttribute(std::string& out, const std::string& cls) {
  if (cls.empty()) return;
  out += " class=\"";
  Escaped(out, cls);
  out += '"';
}

void Anchor(std::string& out, const SiteLink& link) {
  out += "<a href=\"";
  Escaped(out, link.href);
  out += '"';
  ClassAttribute(out, link.cls);
  out += '>';
  Escaped(out, link.label);
  out += "</a>";
}

// A short text in its own element: <h1> or a <p> that may carry a class.
void TextBlock(std::string& out, const SiteBlock& block, const char* tag, bool withClass) {
  out += '<';
  out += tag;
  if (withClass) ClassAttribute(out, block.cls);
  out += '>';
  Escaped(out, block.texts.empty() ? std::string() : block.texts[0]);
  out += "</";
  out += tag;
  out += ">\n";
}

// Paragraphs one level deeper than notes, so short notes never dilute them.
void BodyBlock(std::string& out, const SiteBlock& block) {
  out += "<div class=\"body\">\n";
  for (const std::string& text : block.texts) {
    out += "<p>";
    Escaped(out, text);
    out += "</p>\n";
  }
  out += "</div>\n";
}

void EntriesBlock(std::string& out, const SiteBlock& block) {
  out += "<ul";
  ClassAttribute(out, block.cls);
  out += ">\n";
  for (const std::string& text : block.texts) {
    out += "<li>";
    Escaped(out, text);
    out += "</li>\n";
  }
  out += "</ul>\n";
}

void LinksBlock(std::string& out, const SiteBlock& block) {
  out += "<ul";
  ClassAttribute(out, block.cls);
  out += ">\n";
  for (const SiteLink& link : block.links) {
    out += "<li>";
    Anchor(out, link);
    if (!link.note.empty()) {
      out += " <span>";
      Escaped(out, link.note);
      out += "</span>";
    }
    out += "</li>\n";
  }
  out += "</ul>\n";
}

// The current page of a pager is a span without a link.
void PagerBlock(std::string& out, const SiteBlock& block) {
  out += "<div";
  ClassAttribute(out, block.cls);
  out += ">\n";
  for (const SiteLink& link : block.links) {
    if (link.href.empty()) {
      out += "<span";
      ClassAttribute(out, link.cls);
      out += '>';
      Escaped(out, link.label);
      out += "</span>\n";
    } else {
      Anchor(out, link);
      out += '\n';
    }
  }
  out += "</div>\n";
}

void Block(std::string& out, const SiteBlock& block) {
  switch (block.kind) {
    case SiteBlockKind::Heading:
      return TextBlock(out, block, "h1", false);
    case SiteBlockKind::Note:
      return TextBlock(out, block, "p", true);
    case SiteBlockKind::Body:
      return BodyBlock(out, block);
    case SiteBlockKind::Entries:
      return EntriesBlock(out, block);
    case SiteBlockKind::Links:
      return LinksBlock(out, block);
    case SiteBlockKind::Pager:
      return PagerBlock(out, block);
  }
}

}  // namespace

std::string RenderPage(const SitePage& page) {
  if (!page.raw.empty()) return page.raw;
  std::string out = "<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n<title>";
  Escaped(out, page.title);
  out += "</title>\n";
  for (const std::string& src : page.scripts) {
    out += "<script src=\"";
    Escaped(out, src);
    out += "\"></script>\n";
  }
  out +=
      "<style>body { font-family: sans-serif; }</style>\n</head>\n<body>\n<div class=\"page\">\n";
  for (const SiteBlock& block : page.blocks) Block(out, block);
  out += "</div>\n</body>\n</html>\n";
  return out;
}
