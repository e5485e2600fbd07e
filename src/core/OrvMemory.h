#pragma once

#include <malloc.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <utility>

// Exhausted memory has no recovery path anywhere in the library, so every
// allocation goes through here and ends the process instead of handing on NULL.

[[noreturn]] inline void OrvOutOfMemory() { std::abort(); }

// Bytes the byte helpers hold, over the process (OrvGetHeldBytes reads it), so
// that a caller can stop a run before the machine runs out.
extern std::atomic<int64_t> orvHeldBytes;

inline void* OrvAllocBytes(std::size_t bytes) {
  void* p = std::malloc(bytes ? bytes : 1);
  if (!p) OrvOutOfMemory();
  orvHeldBytes.fetch_add(int64_t(malloc_usable_size(p)), std::memory_order_relaxed);
  return p;
}

inline void OrvFreeBytes(void* p) {
  if (!p) return;
  orvHeldBytes.fetch_sub(int64_t(malloc_usable_size(p)), std::memory_order_relaxed);
  std::free(p);
}

inline void* OrvReallocBytes(void* p, std::size_t bytes) {
  int64_t before = p ? int64_t(malloc_usable_size(p)) : 0;
  void* q = std::realloc(p, bytes ? bytes : 1);
  if (!q) OrvOutOfMemory();
  orvHeldBytes.fetch_add(int64_t(malloc_usable_size(q)) - before, std::memory_order_relaxed);
  return q;
}

// Frees every block of a chain whose link to the next is the member `link`.
template <class Block>
void OrvFreeChain(Block* block, Block* Block::*link) {
  while (block) {
    Block* next = block->*link;
    OrvFreeBytes(block);
    block = next;
  }
}

template <class T, class... Args>
T* OrvNew(Args&&... args) {
  T* p = new (std::nothrow) T(std::forward<Args>(args)...);
  if (!p) OrvOutOfMemory();
  return p;
}

template <class T>
void OrvDelete(T* p) {
  delete p;
}

// Value-initialised array of n elements (n may be 0).
template <class T>
T* OrvNewArray(std::size_t n) {
  T* p = new (std::nothrow) T[n ? n : 1]();
  if (!p) OrvOutOfMemory();
  return p;
}

template <class T>
void OrvDeleteArray(T* p) {
  delete[] p;
}

// For standard containers inside the library: same policy, no bad_alloc.
template <class T>
struct OrvAllocator {
  using value_type = T;
  OrvAllocator() noexcept = default;
  template <class U>
  OrvAllocator(const OrvAllocator<U>&) noexcept {}
  T* allocate(std::size_t n) {
    // NOLINTNEXTLINE(bugprone-sizeof-expression): T may be a pointer, and that is its size
    return static_cast<T*>(OrvAllocBytes(n * sizeof(T)));
  }
  void deallocate(T* p, std::size_t) noexcept { OrvFreeBytes(p); }
  template <class U>
  bool operator==(const OrvAllocator<U>&) const noexcept {
    return true;
  }
};
