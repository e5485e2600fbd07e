#include "platform/html/OrvDocArena.h"

#include <cstring>

#include "core/OrvMemory.h"

namespace {

char* ChunkData(OrvDocChunk* chunk) { return reinterpret_cast<char*>(chunk + 1); }

}  // namespace

void OrvDocArena::AddChunk(size_t atLeast) {
  OrvDocChunk* chunk = TakeSpare(atLeast);
  if (!chunk) {
    size_t size = nextSize < atLeast ? atLeast : nextSize;
    if (nextSize < kLargestChunk) nextSize *= 2;
    chunk = static_cast<OrvDocChunk*>(OrvAllocBytes(sizeof(OrvDocChunk) + size));
    chunk->size = size;
  }
  chunk->next = chunks;
  chunks = chunk;
  cursor = ChunkData(chunk);
  limit = cursor + chunk->size;
}

// A text that outgrows its chunk takes one twice its size, so a long text
// is copied a bounded number of times over.
void OrvDocArena::MoveText(size_t held, size_t more) {
  const char* text = cursor;
  AddChunk(2 * (held + more) + 8);
  if (held) std::memcpy(cursor, text, held);
}

// The largest spare that holds atLeast bytes: the next tree starts in the
// largest memory the last one used.
OrvDocChunk* OrvDocArena::TakeSpare(size_t atLeast) {
  OrvDocChunk** best = nullptr;
  for (OrvDocChunk** link = &spares; *link; link = &(*link)->next) {
    if ((*link)->size >= atLeast && (!best || (*link)->size > (*best)->size)) best = link;
  }
  if (!best) return nullptr;
  OrvDocChunk* chunk = *best;
  *best = chunk->next;
  spareBytes -= chunk->size;
  return chunk;
}

void OrvDocArena::Reset() {
  OrvDocChunk* chunk = chunks;
  while (chunk) {
    OrvDocChunk* next = chunk->next;
    if (spareBytes + chunk->size <= kSpareLimit) {
      chunk->next = spares;
      spares = chunk;
      spareBytes += chunk->size;
    } else {
      OrvFreeBytes(chunk);
    }
    chunk = next;
  }
  chunks = nullptr;
  cursor = nullptr;
  limit = nullptr;
  nextSize = kFirstChunk;
}

void OrvDocArena::Release() {
  OrvFreeChain(chunks, &OrvDocChunk::next);
  OrvFreeChain(spares, &OrvDocChunk::next);
  chunks = nullptr;
  spares = nullptr;
  spareBytes = 0;
  cursor = nullptr;
  limit = nullptr;
  nextSize = kFirstChunk;
}
