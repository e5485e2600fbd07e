#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/OrvMemory.h"

// Byte copies packed into large chunks that are freed all at once. Millions of
// short texts then cost no header each and sit next to each other in memory.
class OrvTextArena {
 public:
  OrvTextArena() = default;
  OrvTextArena(const OrvTextArena&) = delete;
  OrvTextArena& operator=(const OrvTextArena&) = delete;
  ~OrvTextArena() { FreeAll(); }

  // A copy of n bytes that stays put until FreeAll; NULL for n == 0.
  const char* Copy(const char* text, size_t n) {
    if (n == 0 || !text) return nullptr;
    char* at = Room(n);
    std::memcpy(at, text, n);
    return at;
  }

  void FreeAll() {
    OrvFreeChain(current, &Chunk::older);
    OrvFreeChain(large, &Chunk::older);
    current = large = nullptr;
    left = 0;
    next = nullptr;
  }

 private:
  static constexpr size_t kChunkBytes = size_t(1) << 16;

  // Each chunk starts with the link to the one made before it.
  struct Chunk {
    Chunk* older;
  };

  Chunk* current = nullptr;  // where small texts go
  Chunk* large = nullptr;    // one text each: a quarter chunk or more
  char* next = nullptr;
  size_t left = 0;

  static Chunk* NewChunk(size_t bytes, Chunk* older) {
    auto* c = static_cast<Chunk*>(OrvAllocBytes(sizeof(Chunk) + bytes));
    c->older = older;
    return c;
  }

  char* Room(size_t n) {
    if (n >= kChunkBytes / 4) {
      if (n > SIZE_MAX - sizeof(Chunk)) OrvOutOfMemory();
      large = NewChunk(n, large);
      return reinterpret_cast<char*>(large + 1);
    }
    if (n > left) {
      current = NewChunk(kChunkBytes, current);
      next = reinterpret_cast<char*>(current + 1);
      left = kChunkBytes;
    }
    char* at = next;
    next += n;
    left -= n;
    return at;
  }
};
