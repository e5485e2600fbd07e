#include "platform/html/OrvDocArena.h"

#include "core/OrvMemory.h"

namespace {

char* ChunkData(OrvDocChunk* chunk) { return reinterpret_cast<char*>(chunk + 1); }

}  // namespace

void OrvDocArena::AddChunk(size_t atLeast) {
  size_t size = nextSize;
  if (size < atLeast) size = atLeast;
  if (nextSize < kLargestChunk) nextSize *= 2;
  OrvDocChunk* chunk = static_cast<OrvDocChunk*>(OrvAllocBytes(sizeof(OrvDocChunk) + size));
  chunk->next = chunks;
  chunk->size = size;
  chunks = chunk;
  cursor = ChunkData(chunk);
  limit = cursor + size;
}

void OrvDocArena::Reset() {
  if (!chunks) return;
  OrvDocChunk* chunk = chunks;
  while (chunk->next) {
    OrvDocChunk* next = chunk->next;
    OrvFreeBytes(chunk);
    chunk = next;
  }
  chunks = chunk;
  cursor = ChunkData(chunk);
  limit = cursor + chunk->size;
  nextSize = kFirstChunk * 2;
}

void OrvDocArena::Release() {
  OrvDocChunk* chunk = chunks;
  while (chunk) {
    OrvDocChunk* next = chunk->next;
    OrvFreeBytes(chunk);
    chunk = next;
  }
  chunks = nullptr;
  cursor = nullptr;
  limit = nullptr;
  nextSize = kFirstChunk;
}
