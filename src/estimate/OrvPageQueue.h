#pragma once

#include <cstdint>

#include "estimate/OrvPageRecord.h"

// The crawl frontier: a doubly linked list whose nodes come from blocks of 32
// that live as long as the queue; removed nodes are kept for reuse.
class OrvPageQueue {
 public:
  struct Node {
    Node* previous;
    Node* next;
    OrvPageRecord* record;
  };

  OrvPageQueue() = default;
  OrvPageQueue(const OrvPageQueue&) = delete;
  OrvPageQueue& operator=(const OrvPageQueue&) = delete;
  ~OrvPageQueue();

  void AddHead(OrvPageRecord* record);
  void AddTail(OrvPageRecord* record);
  // The record at the head, or null for an empty queue.
  OrvPageRecord* RemoveHead();
  int32_t Count() const { return count; }

 private:
  static constexpr int32_t kNodesPerBlock = 32;
  struct Block {
    Block* next;
    int32_t used;
    Node nodes[kNodesPerBlock];
  };

  Node* head = nullptr;
  Node* tail = nullptr;
  int32_t count = 0;
  Node* released = nullptr;  // chained through next
  Block* blocks = nullptr;
  Block* lastBlock = nullptr;
  Block* current = nullptr;  // the block new nodes are taken from

  Node* NewNode(OrvPageRecord* record);
};
