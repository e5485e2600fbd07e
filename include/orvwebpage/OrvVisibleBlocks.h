#pragma once

#include <cstdint>

#include "orvwebpage/OrvExport.h"
#include "orvwebpage/OrvItem.h"
#include "orvwebpage/OrvString.h"

// The classes of OrvWebPageVisibleNodes as texts, each block class with the
// place of its block: the path (OrvItemPath) of the innermost element that
// holds all of the class's texts, which for a block is the parent of its
// repeated children. The last class is the whole page and has an empty path.
//
// Texts point into the document and are good while it stays open and until
// the next Read. Read forgets the previous page.
class ORV_API OrvVisibleBlocks {
 public:
  OrvVisibleBlocks();
  ~OrvVisibleBlocks();
  OrvVisibleBlocks(const OrvVisibleBlocks&) = delete;
  OrvVisibleBlocks& operator=(const OrvVisibleBlocks&) = delete;

  // root may be null (no classes).
  void Read(var_item* root);
  int GetClassCount() const;
  // 0 for a class out of range.
  int GetTextCount(int cls) const;
  // 1 with the text and its length, or 0 with both untouched when out of range.
  int GetText(int cls, int index, const char*& text, int32_t& length) const;
  // 1 with the path (empty for the page class), or 0 with path emptied.
  int GetPath(int cls, OrvString& path) const;

 private:
  struct Classes;
  Classes* classes;
};
