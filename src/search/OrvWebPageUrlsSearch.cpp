#include "orvwebpage/OrvWebPageUrlsSearch.h"

#include "core/OrvMemory.h"
#include "core/OrvShared.h"
#include "search/OrvUrlSearcher.h"

OrvWebPageUrlsSearch::OrvWebPageUrlsSearch() : searcher(OrvNew<OrvUrlSearcher>()) {}

OrvWebPageUrlsSearch::OrvWebPageUrlsSearch(const OrvWebPageUrlsSearch& other)
    : searcher(OrvShare(other.searcher)) {}

OrvWebPageUrlsSearch::~OrvWebPageUrlsSearch() { OrvRelease(searcher); }

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): copy and swap, safe on itself
OrvWebPageUrlsSearch& OrvWebPageUrlsSearch::operator=(const OrvWebPageUrlsSearch& other) {
  return OrvAssignShared(*this, other, &OrvWebPageUrlsSearch::searcher);
}

void OrvWebPageUrlsSearch::SetEntryUrl(const OrvString& url) { searcher->SetEntryUrl(url); }

void OrvWebPageUrlsSearch::AddUrl(const OrvString& url) { searcher->AddUrl(url); }

int OrvWebPageUrlsSearch::GetInCount() { return searcher->GetInCount(); }

void OrvWebPageUrlsSearch::SearchUrls(const OrvString& url, OrvString& key) {
  searcher->SearchUrls(url, key);
}

unsigned int OrvWebPageUrlsSearch::GetFoundUrlsCount() { return searcher->GetFoundUrlsCount(); }

void OrvWebPageUrlsSearch::GetFoundUrl(unsigned int index, OrvString& url) {
  searcher->GetFoundUrl(index, url);
}

void OrvWebPageUrlsSearch::ClearUrls() { searcher->ClearUrls(); }
