#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "core/OrvMemory.h"

// Plain values cut from large chunks in the order asked for and dropped all at
// once by Rewind, which keeps the chunks for the next round: a million small
// pieces then cost no header and no free each, and a round over a page like
// the last one writes memory that is already mapped and lies in order.
// T may be a pointer to a record: sizeof(T) is then the size meant.
// NOLINTBEGIN(bugprone-sizeof-expression)
template <class T>
class OrvChunkArena {
  static_assert(std::is_trivially_copyable_v<T>, "the arena holds plain values");
  static_assert(alignof(T) <= 16, "values start 16-byte aligned");

 public:
  OrvChunkArena() = default;
  OrvChunkArena(const OrvChunkArena&) = delete;
  OrvChunkArena& operator=(const OrvChunkArena&) = delete;
  ~OrvChunkArena() {
    Rewind();
    OrvFreeChain(spare, &Chunk::older);
  }

  // Room for n values (n >= 1), uninitialised, until the next Rewind.
  T* Alloc(size_t n) {
    if (n > left) return Fresh(n);
    T* at = next;
    next += n;
    left -= n;
    return at;
  }

  // Chunks of the usual size stay, up to a bound; larger ones go back.
  void Rewind() {
    OrvFreeChain(large, &Chunk::older);
    large = nullptr;
    while (used) {
      Chunk* c = used;
      used = c->older;
      if (keptBytes >= kKeptBytes) {
        OrvFreeBytes(c);
        continue;
      }
      c->older = spare;
      spare = c;
      keptBytes += kChunkBytes;
    }
    next = nullptr;
    left = 0;
  }

 private:
  static constexpr size_t kChunkBytes = size_t(1) << 18;
  static constexpr size_t kKeptBytes = size_t(64) << 20;
  static constexpr size_t kChunkValues = (kChunkBytes - 64) / sizeof(T);

  // A chunk's values start 64 bytes in, past this header.
  struct Chunk {
    Chunk* older;
  };

  Chunk* used = nullptr;   // chunks of this round, newest first
  Chunk* spare = nullptr;  // kept by Rewind for the next round
  Chunk* large = nullptr;  // one request each
  size_t keptBytes = 0;
  T* next = nullptr;
  size_t left = 0;

  static T* ValuesOf(Chunk* c) { return reinterpret_cast<T*>(reinterpret_cast<char*>(c) + 64); }

  T* Fresh(size_t n) {
    if (n > kChunkValues / 4) {
      if (n > (SIZE_MAX - 64) / sizeof(T)) OrvOutOfMemory();
      auto* c = static_cast<Chunk*>(OrvAllocBytes(64 + n * sizeof(T)));
      c->older = large;
      large = c;
      return ValuesOf(c);
    }
    Chunk* c = spare;
    if (c) {
      spare = c->older;
      keptBytes -= kChunkBytes;
    } else {
      c = static_cast<Chunk*>(OrvAllocBytes(kChunkBytes));
    }
    c->older = used;
    used = c;
    next = ValuesOf(c) + n;
    left = kChunkValues - n;
    return ValuesOf(c);
  }
};
// NOLINTEND(bugprone-sizeof-expression)
