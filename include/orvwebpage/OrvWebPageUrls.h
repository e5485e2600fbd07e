#pragma once

#include <cstdint>

#include "orvwebpage/OrvExport.h"
#include "orvwebpage/OrvString.h"

class OrvUrlClassifier;
class OrvUrlFilterExtractor;
class OrvUrlClassStore;
template <class T>
struct OrvList;

// Sorts the links of a page into classes of like URL shape and names each
// class by a key text.
//
// Cycle: SetEntryUrl (optional), AddLink for each link, ClassifyUrls, then read
// the classes by number, then ClearLinks before the next page. Classes come in
// a fixed order for one sequence of calls; links within a class keep the order
// in which they were added. Nothing here fails: setting-up calls return 1, and
// reading calls return 0 for an index out of range and then leave their
// outputs untouched.
//
// Copies and assignments share one set of parts (counted); the last one to go
// destroys them. Like any one object, a shared set is for one thread at a time.
class ORV_API OrvWebPageUrls {
 public:
  OrvWebPageUrls();
  OrvWebPageUrls(const OrvWebPageUrls& other);
  ~OrvWebPageUrls();
  OrvWebPageUrls& operator=(const OrvWebPageUrls& other);

  // Only the entry URL's domain (its host without the first label) is kept;
  // without one, hosts are sorted by that same tail of their own.
  int SetEntryUrl(const OrvString& url);
  // Recorded only; has no effect on the classes.
  void EnableUrlFilterExtractor(unsigned char level);
  // The label and userData are handed back unread; a link added twice stands twice.
  int AddLink(const OrvString& url, const OrvString& label, void* userData);
  // Runs over every link recorded since the last ClearLinks.
  int ClassifyUrls();
  // Forgets links and classes; the entry domain stays.
  void ClearLinks();

  int GetClassCount();
  // The handle is the number itself; readers check its range.
  void* FetchClass(int index);
  int GetClassKeyStr(void* handle, OrvString& key);
  int GetUrlCount(void* handle);
  int FetchUrl(void* handle, int index, OrvString& url, OrvString& label, void*& userData);

 private:
  OrvUrlClassifier* classifier;
  OrvUrlFilterExtractor* extractor;
  OrvList<uint8_t>* enabledExtractors;
  OrvUrlClassStore* results;
};
