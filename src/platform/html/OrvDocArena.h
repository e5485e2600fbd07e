#pragma once

#include <cstddef>
#include <cstdint>

// Memory of one document's tree: records and texts are bumped out of large
// chunks and released all at once, by walking the chunk chain, never item by
// item. Reset keeps the chunks (up to kSpareLimit bytes) for the next tree, so
// a document reused for page after page writes into memory it has touched
// before instead of faulting in fresh pages for every page.
struct OrvDocChunk {
  OrvDocChunk* next;
  size_t size;  // usable bytes behind the header
};

struct OrvDocArena {
  OrvDocChunk* chunks = nullptr;  // newest first
  OrvDocChunk* spares = nullptr;  // kept by Reset, for AddChunk to take
  size_t spareBytes = 0;
  char* cursor = nullptr;
  char* limit = nullptr;
  size_t nextSize = kFirstChunk;

  static constexpr size_t kFirstChunk = 64 * 1024;
  static constexpr size_t kLargestChunk = 4 * 1024 * 1024;
  static constexpr size_t kSpareLimit = 64 * 1024 * 1024;

  OrvDocArena() = default;
  OrvDocArena(const OrvDocArena&) = delete;
  OrvDocArena& operator=(const OrvDocArena&) = delete;
  ~OrvDocArena() { Release(); }

  // Uninitialised bytes, aligned for any record.
  void* Alloc(size_t bytes) {
    size_t rounded = (bytes + 7) & ~size_t(7);
    if (size_t(limit - cursor) < rounded) AddChunk(rounded);
    void* p = cursor;
    cursor += rounded;
    return p;
  }

  // Room at the cursor for a text being written there: its first held bytes
  // stay in front (moved to a new chunk when this one is full), more may
  // follow, and a NUL after them. Alloc then takes the text where it lies.
  char* TextRoom(size_t held, size_t more) {
    if (size_t(limit - cursor) < held + more + 8) MoveText(held, more);
    return cursor;
  }

  // Empties the arena, keeping its chunks for the next tree.
  void Reset();
  // Gives every chunk back.
  void Release();

 private:
  void AddChunk(size_t atLeast);
  void MoveText(size_t held, size_t more);
  OrvDocChunk* TakeSpare(size_t atLeast);
};
