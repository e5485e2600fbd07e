#include "links/OrvUrlClassifier.h"

namespace {

// The map refuses a NULL key, and an empty level key is a real key.
const char* KeyText(const OrvString& s) { return s.buf ? s.buf : ""; }

}  // namespace

void OrvUrlClassifier::AddLink(const OrvString& url, const OrvString& label, void* userData) {
  links.Add(results->records.Add(url, label, userData, *extractor));
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
  if (level >= levelCount) {
    // No key at all: every link joins the group of the empty key.
    for (int32_t i = 0; i < links.count; i++) Group(KeyText(token), token.len)->Add(links.items[i]);
    return;
  }
  // Links share few keys: each key meets the map once per node, the first
  // time one of its links comes by, so the map fills in the same order.
  OrvLinkKeys& keys = results->records.levels[level];
  uint32_t stamp = results->records.NextStamp();
  OrvWebPageUrl host;
  for (int32_t i = 0; i < links.count; i++) {
    OrvWebPageLink* link = links.items[i];
    OrvLinkKey& key = keys.keys.items[link->keyIds[level]];
    if (key.stamp != stamp) {
      key.stamp = stamp;
      if (level == 0) {
        // The entry domain may have changed since the link came.
        host.host.CopyBuf(key.text, key.len);
        extractor->Extract(0, token, host);
        key.group = Group(KeyText(token), token.len);
      } else {
        key.group = Group(key.text ? key.text : "", key.len);
      }
    }
    key.group->Add(link);
  }
}

OrvLinkList* OrvUrlClassifier::Group(const char* key, int32_t len) {
  int found = 0;
  OrvLinkList** group = groups.classes.Insert(key, len, &found);
  if (!found) *group = groups.listPool.Alloc();
  return *group;
}

void OrvUrlClassifier::ClearGroups() {
  links.count = 0;
  groups.Clear();
}
