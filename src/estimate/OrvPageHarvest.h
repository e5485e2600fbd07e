#pragma once

#include <cstdint>

#include "estimate/OrvKeyedList.h"
#include "estimate/OrvLinkTexts.h"
#include "orvwebpage/OrvItem.h"
#include "orvwebpage/OrvString.h"
#include "orvwebpage/OrvWebPageUrl.h"

// A link target with the place of its link element in the tree.
struct OrvLinkRecord : OrvWebPageUrl {
  var_item* item = nullptr;  // the link element
  int32_t depth = 0;
};

// A link whose text is a number: one entry of a pager, perhaps. The walk
// keeps only the link element; DetectRuns reads, parses and completes the
// targets of the runs it finds, the only ones whose parts are read, while the
// tree is still open.
struct OrvNumberLink {
  int32_t number = 0;
  var_item* textNode = nullptr;
  int32_t textDepth = 0;
  OrvLinkRecord link;  // item and depth are the enclosing link element's
};

// A visible text run that lies in no link.
struct OrvTextNode : var_item_pos {};

// What one walk gathers from a page: links the crawl may follow, keyed by
// their parameter names, and number-labelled links keyed by the depth of
// their text. The estimator itself is one; the last-page search makes its own.
struct OrvPageHarvest {
  OrvString siteDomain;  // entry host behind its first dot
  OrvWebPageUrl entryUrl;
  OrvKeyedList<OrvLinkRecord> links;
  // 1: links lists a record per listed link. 0: linkTexts holds their keys
  // and texts, lists them once the tree is gone, and links stays empty; the
  // crawl reads nothing else.
  uint8_t allLinks = 1;
  OrvLinkTexts linkTexts;
  OrvKeyedList<OrvNumberLink> numbers;
  // Rising number runs by the depth of the link element; the lists point into
  // numbers, so the record pool here stays unused.
  OrvKeyedList<OrvNumberLink> runs;
  // 1: numbers lists every number link. 0: per depth only what DetectRuns
  // can take from it (see AddNumber), so a page of a million number links
  // holds a few records; the crawl and the probes read nothing else.
  uint8_t allNumbers = 1;
  struct NumberTail {
    OrvNumberLink* records[2];  // the last two of a depth, the latest last
  };
  OrvStrMap<NumberTail> numberTails;  // by depth, with allNumbers 0
  OrvPtrList spareNumbers;            // records to give out again
  OrvString scratchKey;
  OrvStrArray extensions;  // extensions a crawlable link may have
  // The URL texts listed under keys of at least kSearchedLinks
  // links: a set beside the long lists, so refusing a repeated link does not
  // scan its list, while a key of a few links costs no entry.
  static constexpr int32_t kSearchedLinks = 8;
  OrvStrMap<uint8_t> listedUrls;
  OrvString listedKey;
  // Every link target is parsed here; a listed link keeps only its text.
  OrvLinkRecord parsedLink;

  OrvPageHarvest();

  // Parses text as the entry URL (parameters sorted) and takes its domain.
  void SetEntry(const OrvString& text);
  // With allLinks 1, lists the link under scratchKey as ListLink does; with
  // 0, only holds its key and text for ListHeldLinks.
  bool AddLink(const OrvLinkRecord& link);
  // Lists the held links in page order, once the tree is gone.
  void ListHeldLinks();
  // Lists a link under the key unless one of the same text (up to its first
  // NUL) is listed there already: a record of the link's text, item and
  // depth, or, without link, the held text at heldOffset.
  bool ListLink(const char* key, int32_t keyLen, const char* url, int32_t urlLen,
                const OrvLinkRecord* link, uint32_t heldOffset);
  // Takes scheme and host from the entry URL where the link has none.
  void CompleteUrl(OrvWebPageUrl& url);
  // A fresh number record, or a spare one (whatever it held is overwritten).
  OrvNumberLink* NewNumber();
  // Lists the number record under key, as allNumbers says.
  void AddNumber(const OrvString& key, OrvNumberLink* record);
  // Fills runs from numbers: per depth of text, the rising triple nearest the
  // end of the list.
  void DetectRuns();
  // Empties links, numbers and runs and frees their pools.
  void ResetLinks();
  // Empties numbers and runs alone.
  void ResetNumbers();
};

// The context of one walk over a page. The caller sets go to 1 first.
struct OrvHarvestWalk {
  uint8_t go = 1;
  OrvPageHarvest* harvest = nullptr;

  // The full walk of a crawled page; harvest must be the estimator itself,
  // whose stop flag it reads at every item and whose text statistics it fills.
  void HarvestPage(var_item* item, long depth);
  // Links and number links only, for probed pages; never stops early.
  void HarvestLinks(var_item* item, long depth);
};

// Copies a link target attribute into the URL text; a null value is empty.
void OrvCopyTarget(OrvWebPageUrl& url, const var_attr* target);
// Three number links that rise, on link elements of one depth and one class.
bool OrvIsRisingRun(const OrvNumberLink& a, const OrvNumberLink& b, const OrvNumberLink& c);
// Every byte is one of "0123456789 ,"; a length below 1 says yes.
bool OrvIsNumberText(const char* text, long length);
// The extension equals one entry of the list, letters folded.
bool HasListedExtension(const OrvWebPageUrl& url, OrvStrArray& list);
// The decimal text of a depth, as "%d" writes it.
void OrvFormatDepth(OrvString& key, int32_t depth);
