#include "orvwebpage/OrvWebPageUrls.h"

#include <cstdint>
#include <utility>

#include "core/OrvMemory.h"
#include "core/OrvShared.h"
#include "links/OrvUrlClassifier.h"
#include "orvwebpage/OrvWebPageUrl.h"

namespace {

// The list of a class, or NULL when the handle is not below the class count.
// The handle is compared as an unsigned number, so one made from a negative
// index is out of range too.
OrvLinkList* ClassList(OrvUrlClassStore* results, void* handle) {
  uintptr_t index = reinterpret_cast<uintptr_t>(handle);
  if (index >= uintptr_t(results->classes.count)) return nullptr;
  OrvLinkList** list = results->classes.GetAt(uint32_t(index));
  return list ? *list : nullptr;
}

}  // namespace

OrvWebPageUrls::OrvWebPageUrls() {
  extractor = OrvNew<OrvUrlFilterExtractor>();
  enabledExtractors = OrvNew<OrvByteList>();
  results = OrvNew<OrvUrlClassStore>();
  classifier = OrvNew<OrvUrlClassifier>(extractor, enabledExtractors, results);
}

// The classifier carries the count for all four objects.
OrvWebPageUrls::OrvWebPageUrls(const OrvWebPageUrls& other)
    : classifier(OrvShare(other.classifier)),
      extractor(other.extractor),
      enabledExtractors(other.enabledExtractors),
      results(other.results) {}

OrvWebPageUrls::~OrvWebPageUrls() {
  if (!OrvLetGo(classifier)) return;
  // The classifier's lists point into the records that results owns.
  OrvDelete(classifier);
  OrvDelete(results);
  OrvDelete(extractor);
  OrvDelete(enabledExtractors);
}

OrvWebPageUrls& OrvWebPageUrls::operator=(const OrvWebPageUrls& other) {
  OrvWebPageUrls copy(other);
  std::swap(classifier, copy.classifier);
  std::swap(extractor, copy.extractor);
  std::swap(enabledExtractors, copy.enabledExtractors);
  std::swap(results, copy.results);
  return *this;
}

int OrvWebPageUrls::SetEntryUrl(const OrvString& url) {
  OrvWebPageUrl entry;
  entry.url = url;
  entry.Parse(1);
  extractor->SetEntryHost(entry.host);
  return 1;
}

void OrvWebPageUrls::EnableUrlFilterExtractor(unsigned char level) {
  enabledExtractors->Add(level);
}

int OrvWebPageUrls::AddLink(const OrvString& url, const OrvString& label, void* userData) {
  classifier->AddLink(url, label, userData);
  return 1;
}

int OrvWebPageUrls::ClassifyUrls() {
  results->DropFlat();
  OrvString noKey;
  classifier->Classify(noKey, classifier->links, 0);
  return 1;
}

void OrvWebPageUrls::ClearLinks() {
  classifier->ClearGroups();
  results->Clear();
}

int OrvWebPageUrls::GetClassCount() { return int(results->classes.count); }

// The handle is the class's index, as the interface has it.
void* OrvWebPageUrls::FetchClass(int index) {
  return reinterpret_cast<void*>(intptr_t(index));  // NOLINT(performance-no-int-to-ptr)
}

int OrvWebPageUrls::GetClassKeyStr(void* handle, OrvString& key) {
  const char* text = nullptr;
  int32_t textLen = 0;
  uintptr_t index = reinterpret_cast<uintptr_t>(handle);
  if (index >= uintptr_t(results->classes.count)) return 0;
  if (!results->classes.GetAt(uint32_t(index), &text, &textLen)) return 0;
  key.CopyBuf(text, textLen);
  return 1;
}

int OrvWebPageUrls::GetUrlCount(void* handle) {
  OrvLinkList* list = ClassList(results, handle);
  return list ? list->count : 0;
}

int OrvWebPageUrls::FetchUrl(void* handle, int index, OrvString& url, OrvString& label,
                             void*& userData) {
  OrvLinkList* list = ClassList(results, handle);
  if (!list || index < 0 || index >= list->count) return 0;
  const OrvWebPageLink* link = list->items[index];
  url.CopyBuf(link->url, link->urlLen);
  label.CopyBuf(link->label, link->labelLen);
  userData = link->userData;
  return 1;
}
