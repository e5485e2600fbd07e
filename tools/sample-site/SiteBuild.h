#pragma once

#include <string>
#include <vector>

#include "SitePage.h"
#include "SiteRandom.h"

// Small steps that profiles put pages together with.
SitePage NotFound();
SitePage Resource(const std::string& contentType, const std::string& body);
SitePage PlainPage(const std::string& title);
void AddNote(SitePage& page, const std::string& text);
void AddLinks(SitePage& page, const std::string& cls, std::vector<SiteLink> links);
void AddEntries(SitePage& page, const std::string& cls, std::vector<std::string> texts);
// Paragraphs long enough for any reader to call the page an article.
void AddBody(SitePage& page, SiteRandom& random, int paragraphs);
