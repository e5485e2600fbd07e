#pragma once

#include "orvwebpage/OrvExport.h"
#include "orvwebpage/OrvString.h"

class OrvUrlSearcher;

// Holds a set of URLs and finds those that have the shape of an example URL:
// the same standing towards the entry site, the same kinds of directory
// names, the same family of file extension and the same parameter names in
// the same order.
//
// Cycle: SetEntryUrl (at any time before a search), AddUrl for each URL,
// SearchUrls, then read the found list by index, then ClearUrls to begin
// again. The found list accumulates: every search appends its matches, in the
// order the URLs were added. Nothing here fails; any text is a URL.
//
// Copies and assignments share one searcher (counted); the last one to go
// destroys it. Like any one object, a shared searcher is for one thread at a
// time.
class ORV_API OrvWebPageUrlsSearch {
 public:
  OrvWebPageUrlsSearch();
  OrvWebPageUrlsSearch(const OrvWebPageUrlsSearch& other);
  ~OrvWebPageUrlsSearch();
  OrvWebPageUrlsSearch& operator=(const OrvWebPageUrlsSearch& other);

  // Only the entry URL's domain (its host without the first label) is kept;
  // without one, hosts are compared by that same tail of their own.
  void SetEntryUrl(const OrvString& url);
  // Stored as given (after trimming blanks); the same text twice stands twice.
  void AddUrl(const OrvString& url);
  int GetInCount();
  // key receives the example's shape key, whatever it held before.
  void SearchUrls(const OrvString& url, OrvString& key);
  unsigned int GetFoundUrlsCount();
  // An index out of range leaves url untouched.
  void GetFoundUrl(unsigned int index, OrvString& url);
  // Forgets the stored and found URLs; the entry URL stays.
  void ClearUrls();

 private:
  OrvUrlSearcher* searcher;
};
