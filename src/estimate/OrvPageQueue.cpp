#include "estimate/OrvPageQueue.h"

#include "core/OrvMemory.h"

OrvPageQueue::~OrvPageQueue() {
  while (blocks) {
    Block* b = blocks;
    blocks = b->next;
    OrvFreeBytes(b);
  }
}

OrvPageQueue::Node* OrvPageQueue::NewNode(OrvPageRecord* record) {
  Node* node = released;
  if (node) {
    released = node->next;
  } else {
    // A later block with room, else a new block at the end of the chain.
    while (current && current->used == kNodesPerBlock) current = current->next;
    if (!current) {
      auto* b = static_cast<Block*>(OrvAllocBytes(sizeof(Block)));
      b->next = nullptr;
      b->used = 0;
      if (lastBlock)
        lastBlock->next = b;
      else
        blocks = b;
      lastBlock = b;
      current = b;
    }
    node = &current->nodes[current->used++];
  }
  node->record = record;
  node->previous = nullptr;
  node->next = nullptr;
  return node;
}

void OrvPageQueue::AddHead(OrvPageRecord* record) {
  Node* node = NewNode(record);
  node->next = head;
  if (head)
    head->previous = node;
  else
    tail = node;
  head = node;
  count++;
}

void OrvPageQueue::AddTail(OrvPageRecord* record) {
  Node* node = NewNode(record);
  node->previous = tail;
  if (tail)
    tail->next = node;
  else
    head = node;
  tail = node;
  count++;
}

OrvPageRecord* OrvPageQueue::RemoveHead() {
  Node* node = head;
  if (!node) return nullptr;
  head = node->next;
  if (head)
    head->previous = nullptr;
  else
    tail = nullptr;
  count--;
  OrvPageRecord* record = node->record;
  node->next = released;
  released = node;
  return record;
}
