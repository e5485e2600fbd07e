#pragma once

#include <cstdint>

#include "core/OrvPtrList.h"
#include "core/OrvStrMap.h"
#include "orvwebpage/OrvString.h"

// What the crawl keeps of a page's links: the key and text of each, in one
// byte buffer, held in page order while the walk runs and listed by key once
// the tree is gone. The key map takes the same keys in the same order, and is
// cleared the same way, as the map of the harvest's link lists, so its flat
// order is that map's.
struct OrvLinkTexts {
  struct Chain {
    int32_t first;  // into texts
    int32_t last;
    int32_t count;
  };
  struct Text {
    uint32_t offset;  // into bytes
    int32_t length;
    int32_t next;  // into texts; -1 ends the chain
  };

  OrvStrMap<Chain> chains;
  OrvList<Text> texts;
  // Each held link as the length of its key, the key, the length of its
  // text, the text; a length in 7-bit groups, low first, the last group
  // below 128. The chains point at the texts there.
  OrvString bytes;
  int32_t heldEnd = 0;  // bytes of held links, in page order

  OrvLinkTexts() = default;
  OrvLinkTexts(const OrvLinkTexts&) = delete;
  OrvLinkTexts& operator=(const OrvLinkTexts&) = delete;

  void Hold(const char* key, int32_t keyLength, const char* text, int32_t textLength);
  // Reads the held link at offset: its key and text, and the offset of the
  // next. Gives false past the last.
  bool Next(uint32_t& offset, const char*& key, int32_t& keyLength, uint32_t& textOffset,
            int32_t& textLength) const;
  // Appends a text of bytes to the key's chain.
  void Add(const char* key, int32_t keyLength, uint32_t offset, int32_t length);
  // The chain of the key, or null.
  const Chain* Find(const char* key, int32_t keyLength) { return chains.Find(key, keyLength); }
  const char* At(uint32_t offset) const { return bytes.buf ? bytes.buf + offset : ""; }
  // Clears the key map as a page's lists are cleared and gives the rest back.
  void Reset();
};
