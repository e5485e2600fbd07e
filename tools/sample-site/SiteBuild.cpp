#include "SiteBuild.h"

#include "SiteText.h"

SitePage PlainPage(const std::string& title) {
  SitePage page;
  page.title = title;
  page.blocks.push_back({SiteBlockKind::Heading, "", {title}, {}});
  return page;
}

void AddNote(SitePage& page, const std::string& text) {
  page.blocks.push_back({SiteBlockKind::Note, "note", {text}, {}});
}

void AddLinks(SitePage& page, const std::string& cls, std::vector<SiteLink> links) {
  page.blocks.push_back({SiteBlockKind::Links, cls, {}, std::move(links)});
}

void AddEntries(SitePage& page, const std::string& cls, std::vector<std::string> texts) {
  page.blocks.push_back({SiteBlockKind::Entries, cls, std::move(texts), {}});
}

void AddBody(SitePage& page, SiteRandom& random, int paragraphs) {
  SiteBlock body{SiteBlockKind::Body, "", {}, {}};
  for (int i = 0; i < paragraphs; ++i) body.texts.push_back(SiteParagraph(random, 240));
  page.blocks.push_back(std::move(body));
}

SitePage NotFound() {
  SitePage page;
  page.status = 404;
  page.title = "Not found";
  page.blocks.push_back({SiteBlockKind::Heading, "", {"Not found"}, {}});
  return page;
}

SitePage Resource(const std::string& contentType, const std::string& body) {
  SitePage page;
  page.contentType = contentType;
  page.raw = body.empty() ? std::string(" ") : body;
  return page;
}
