#pragma once

#include <cstdint>

#include "orvwebpage/OrvExport.h"
#include "orvwebpage/OrvItem.h"

class OrvVisibleNodeClassifier;

// Sorts the visible text items of a parsed page into classes. Each repeated
// block of the page (a parent with two children of the same element name and
// the same "class" value) gives one class of the visible items below those
// children, outermost blocks only, in order of the parent's depth and place;
// the last class holds every visible item of the page.
//
// Cycle: ClassifyNodes with the root of an open document, read the classes by
// number, ClearNodes before the next page. ClassifyNodes adds to what is
// there. Items handed out belong to the document and are good as long as it
// stays open; class handles are good until ClearNodes or the next
// ClassifyNodes. Visible means IsVisibleText.
//
// Copies and assignments share one classifier (counted); the last one to go
// destroys it. Each classifier has storage of its own, so objects that share
// nothing may be used on different threads.
class ORV_API OrvWebPageVisibleNodes {
 public:
  OrvWebPageVisibleNodes();
  OrvWebPageVisibleNodes(const OrvWebPageVisibleNodes& other);
  ~OrvWebPageVisibleNodes();
  OrvWebPageVisibleNodes& operator=(const OrvWebPageVisibleNodes& other);

  // root may be null. Always 1.
  int ClassifyNodes(var_item* root);
  void ClearNodes();
  int GetClassCount();
  // Null for an index out of range.
  void* FetchClass(int index);
  // handle must come from FetchClass and still be good.
  int GetNodesCount(void* handle);
  // 1 and the item, or 0 with item untouched for an index out of range.
  int FetchNode(void* handle, int index, var_item*& item);

 private:
  OrvVisibleNodeClassifier* classifier;
};
