#include "orvwebpage/OrvWebPageUrlsSearch.h"

#include "core/OrvMemory.h"
#include "search/OrvUrlSearcher.h"

OrvWebPageUrlsSearch::OrvWebPageUrlsSearch() : searcher(OrvNew<OrvUrlSearcher>()) {}

OrvWebPageUrlsSearch::OrvWebPageUrlsSearch(const OrvWebPageUrlsSearch& other)
    : searcher(other.searcher) {
  if (searcher) searcher->references++;
}

OrvWebPageUrlsSearch::~OrvWebPageUrlsSearch() { Release(); }

OrvWebPageUrlsSearch& OrvWebPageUrlsSearch::operator=(const OrvWebPageUrlsSearch& other) {
  if (searcher == other.searcher) return *this;
  OrvUrlSearcher* shared = other.searcher;
  if (shared) shared->references++;
  Release();
  searcher = shared;
  return *this;
}

void OrvWebPageUrlsSearch::Release() {
  if (searcher && --searcher->references == 0) OrvDelete(searcher);
  searcher = nullptr;
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
