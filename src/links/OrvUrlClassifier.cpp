#include "links/OrvUrlClassifier.h"

namespace {

// The map refuses a NULL key, and an empty level key is a real key.
const char* KeyText(const OrvString& s) { return s.buf ? s.buf : ""; }

}  // namespace

void OrvUrlClassifier::AddLink(const OrvString& url, const OrvString& label, void* userData) {
  OrvWebPageLink* link = results->linkPool.Alloc();
  links.Add(link);
  link->userData = userData;
  link->label = label;
  link->url = url;
  link->Parse(1);
}

void OrvUrlClassifier::Classify(const OrvString& key, const OrvLinkList& nodeLinks, uint8_t level) {
  if (level >= levelCount) {
    int found = 0;
    OrvLinkList** list = results->classes.Insert(KeyText(key), key.len, &found);
    if (!found) *list = results->listPool.Alloc();
    // A class met again (a second run) gets the complete new list.
    (*list)->Assign(nodeLinks);
    return;
  }

  // Keys are joined as NUL-terminated texts, "prefix;" then "prefix" + token.
  OrvString prefix;
  prefix.Clear();
  if (key.len > 0) {
    prefix.Append(KeyText(key), -1);
    prefix += ';';
  }

  OrvUrlClassifier node(extractor, enabledExtractors, results);
  node.links.Assign(nodeLinks);
  node.SplitLevel(level);

  // Children in the node map's flat order: that order decides the order in
  // which class keys reach the result map.
  OrvString token;
  OrvString childKey;
  uint32_t groupCount = node.groups.classes.count;
  for (uint32_t i = 0; i < groupCount; i++) {
    const char* text = nullptr;
    int32_t textLen = 0;
    OrvLinkList** group = node.groups.classes.GetAt(i, &text, &textLen);
    if (!group || !*group) continue;
    token.CopyBuf(text, textLen);
    childKey.Clear();
    childKey.Append(prefix.buf, -1);
    childKey.Append(token.buf, -1);
    Classify(childKey, **group, uint8_t(level + 1));
  }
}

void OrvUrlClassifier::SplitLevel(uint8_t level) {
  OrvString token;
  for (int32_t i = 0; i < links.count; i++) {
    OrvWebPageLink* link = links.items[i];
    extractor->Extract(level, token, *link);
    int found = 0;
    OrvLinkList** group = groups.classes.Insert(KeyText(token), token.len, &found);
    if (!found) *group = groups.listPool.Alloc();
    (*group)->Add(link);
  }
}

void OrvUrlClassifier::ClearGroups() {
  links.count = 0;
  groups.Clear();
}
